#!/usr/bin/env bash
# Installs a build as a package is made: below a folder that stands for the root of a system.
#
# Usage: install.sh BUILD_FOLDER STAGE_FOLDER
set -euo pipefail

rm -rf "$2"
DESTDIR=$2 cmake --install "$1" --prefix /usr > /dev/null
