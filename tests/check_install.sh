#!/usr/bin/env bash
# Fails if an installation lacks a file, if the desktop's tools find fault with it, or if installing for one user does
# not leave a working product behind. Tools that are not installed are told and left out.
#
# Usage: check_install.sh SOURCE_FOLDER PREFIX
set -euo pipefail

source=$1
prefix=$2

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT

fail()
{
    echo "$1" >&2
    exit 1
}

# Runs a tool if it is installed.
ask()
{
    if ! command -v "$1" > /dev/null; then
        echo "$1 is not installed: not asked"
        return
    fi
    echo "asking $1"
    "$@" || fail "$1 finds fault"
}

# -- What programs and hosts read at run time, once for each of them

expected=$(cd "$source/resources" && find presets translations help -type f -name '*.*' | sed 's/^presets/Presets/;s/^[a-z]*\///' | sort)
for folder in share/Ambrel lib/vst3/Ambrel.vst3/Contents/Resources lib/lv2/Ambrel.lv2/Contents/Resources \
    lib/vst/Ambrel/Contents/Resources; do
    if [[ $folder != lib/vst/* || -d $prefix/lib/vst ]]; then
        diff <(echo "$expected") <(cd "$prefix/$folder" && find . -type f | sed 's/^\.\///' | sort) ||
            fail "$folder holds other files than resources/"
    fi
done

# -- Desktop, software centres, manual pages

ask desktop-file-validate "$prefix/share/applications/com.veskora.Ambrel.desktop"
ask appstreamcli validate --no-net "$prefix"/share/metainfo/*.xml
ask lv2_validate "$prefix"/lib/lv2/Ambrel.lv2/*.ttl
ask rsvg-convert --output "$home/icon.png" "$prefix/share/icons/hicolor/scalable/apps/com.veskora.Ambrel.svg"
for page in Ambrel ambrel-render; do
    warnings=$(gzip -dc "$prefix/share/man/man1/$page.1.gz" | ask man --warnings -l - 2>&1 > /dev/null)
    [[ -z $warnings ]] || fail "man finds fault with $page.1: $warnings"
done

manual=$(gzip -dc "$prefix/share/man/man1/ambrel-render.1.gz" | sed 's/\\-/-/g')
for option in $("$prefix/bin/ambrel-render" --help | grep -oE '^ +(-[a-z], )?--[a-z-]+' | grep -oE -- '--[a-z-]+'); do
    grep -qE -- "$option([^a-z-]|$)" <<< "$manual" || fail "the manual page does not tell of $option"
done

# -- For one user alone, and away again

rm -f "$home/icon.png"
export HOME=$home XDG_CONFIG_HOME=$home/.config XDG_DATA_HOME=$home/.local/share
"$source/packaging/linux/install" --from "$prefix" --user > /dev/null
[[ -f $home/.lv2/Ambrel.lv2/manifest.ttl && -d $home/.vst3/Ambrel.vst3/Contents/Resources ]] ||
    fail "plug-ins are not where a user's hosts look"
grep -q "^Exec=$home/.local/bin/Ambrel$" "$home/.local/share/applications/com.veskora.Ambrel.desktop" ||
    fail "the desktop entry does not name the user's program"
ask desktop-file-validate "$home/.local/share/applications/com.veskora.Ambrel.desktop"
presets=$("$home/.local/bin/ambrel-render" --list-presets | wc -l)
(( presets == $(grep -c '\.xml$' <<< "$expected") )) || fail "the user's program lists $presets presets"
"$source/packaging/linux/install" --from "$prefix" --user --uninstall > /dev/null
left=$(find "$home" ! -type d)
[[ -z $left ]] || fail "left behind: $left"
echo "The installation is whole"
