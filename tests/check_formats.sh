#!/usr/bin/env bash
# Fails if a finished file shows other symbols than its entry points, or needs a library at run time that not
# every desktop has. A program has no entry points; it may need sound and, the renderer, its file formats.
#
# Usage: check_formats.sh FILE [ENTRY_POINT...]      FILE may be a pattern that one file matches
set -euo pipefail

mapfile -t files < <(compgen -G "$1")
if ((${#files[@]} != 1)); then
    echo "${#files[@]} files are called $1" >&2
    exit 1
fi
file=${files[0]}
shift

allowed='libpng16|libjpeg|libfreetype|libz|libstdc\+\+|libm|libgcc_s|libc|ld-linux[^.]*'
if (($# > 0)); then
    visible=$(nm --dynamic --defined-only --format=posix "$file" | cut -d ' ' -f 1 | sort)
    expected=$(printf '%s\n' "$@" | sort)
    if [[ $visible != "$expected" ]]; then
        printf '%s shows:\n%s\nbut should show:\n%s\n' "$file" "$visible" "$expected" >&2
        exit 1
    fi
else
    allowed+='|libasound'
    [[ $file != */ambrel-render ]] || allowed+='|libFLAC|libogg|libvorbis|libvorbisenc|libvorbisfile'
fi

needed=$(readelf --dynamic --wide "$file" | sed -nE 's/.*\(NEEDED\).*\[(.*)\]/\1/p')
if grep -vE "^($allowed)\.so" <<< "$needed"; then
    echo "$file needs the libraries above, which are not for it to ask" >&2
    exit 1
fi
if readelf --dynamic "$file" | grep -E 'RPATH|RUNPATH'; then
    echo "$file looks for libraries where it was built" >&2
    exit 1
fi
echo "$file: $(wc -w <<< "$needed") libraries needed, entry points: ${*:-none}"
