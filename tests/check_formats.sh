#!/usr/bin/env bash
# Fails if a finished format shows other symbols than its entry points, or needs a library at run time that not
# every desktop has.
#
# Usage: check_formats.sh FILE ENTRY_POINT...
set -euo pipefail

file=$1
shift
allowed='^(libpng16|libjpeg|libfreetype|libz|libstdc\+\+|libm|libgcc_s|libc|ld-linux[^.]*)\.so'

visible=$(nm --dynamic --defined-only --format=posix "$file" | cut -d ' ' -f 1 | sort)
expected=$(printf '%s\n' "$@" | sort)
if [[ $visible != "$expected" ]]; then
    printf '%s shows:\n%s\nbut should show:\n%s\n' "$file" "$visible" "$expected" >&2
    exit 1
fi

needed=$(readelf --dynamic --wide "$file" | sed -nE 's/.*\(NEEDED\).*\[(.*)\]/\1/p')
if grep -vE "$allowed" <<< "$needed"; then
    echo "$file needs the libraries above, which are not for a plug-in to ask" >&2
    exit 1
fi
echo "$file: $(wc -w <<< "$needed") libraries needed, entry points: $*"
