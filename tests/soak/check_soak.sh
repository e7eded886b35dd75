#!/usr/bin/env bash
# Fails if ambrel-soak finds a fault in a minute of audio, cannot go on where it stopped, or cannot see a drift.
#
# Usage: check_soak.sh PROGRAM
set -euo pipefail

soak=$1
folder=$(mktemp --directory)
trap 'rm -rf "$folder"' EXIT

fail()
{
    printf '%s\n' "$@" >&2
    exit 1
}

run() { "$soak" --hour-length 20 --state "$folder/progress" "$@"; }
hours() { sed -n 's/^hour \([0-9]*\):.*/\1/p' <<< "$1" | xargs; }

first=$(run --hours 1)
rest=$(run --hours 3)
[[ $(hours "$first") == 1 && $(hours "$rest") == "2 3" ]] ||
    fail "one hour, then the second and third, should be in:" "$first" "$rest"

sed -i 's/\("referenceLevel" val="-\)[0-9]*/\180/' "$folder/progress"
if drifted=$(run --hours 4 2>&1); then
    fail "a first hour at -80 dB should make a drift:" "$drifted"
fi
grep -q "off that of the first hour" <<< "$drifted" || fail "another fault than a drift:" "$drifted"

printf '%s\n' "$first" "$rest"
