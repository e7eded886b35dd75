#!/usr/bin/env bash
# Fails if a source of ours is not laid out as .clang-format says.
#
# Usage: check_format.sh [SOURCE_FOLDER]
set -euo pipefail

cd "${1:-$(dirname "$0")/..}"

if ! command -v clang-format > /dev/null; then
    echo "clang-format is not installed (scripts/setup installs it): layout not checked"
    exit 0
fi

find bench core dsp editor fuzz plugin product reverb tests tools -type f \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 clang-format --dry-run -Werror
echo "All sources are laid out by .clang-format"
