#!/usr/bin/env bash
# Fails if a source includes a layer above its own, or if the engine knows JUCE.
#
#   core <- dsp <- reverb        core <- plugin <- editor <- product, which also uses reverb
#
# Usage: check_layers.sh [SOURCE_FOLDER]
set -euo pipefail

cd "${1:-$(dirname "$0")/..}"

# The layers that each layer may include, its own among them.
declare -A allowed=(
    [core]="core"
    [dsp]="dsp core"
    [reverb]="reverb dsp core"
    [plugin]="plugin core"
    [editor]="editor plugin core"
    [product]="product editor plugin reverb dsp core"
)
layers="core|dsp|reverb|plugin|editor|product|tools|tests|bench"
failures=0

complain()
{
    echo "$1" >&2
    failures=$((failures + 1))
}

for layer in "${!allowed[@]}"; do
    while IFS=: read -r file line text; do
        included=$(sed -E "s@^[[:space:]]*#[[:space:]]*include[[:space:]]*\"($layers)/.*@\1@" <<< "$text")
        if [[ " ${allowed[$layer]} " != *" $included "* ]]; then
            complain "$file:$line: $layer/ must not include $included/"
        fi
    done < <(grep -rnE "^[[:space:]]*#[[:space:]]*include[[:space:]]*\"($layers)/" \
        --include='*.h' --include='*.cpp' --include='*.mm' "$layer" || true)

    # Paths are given from the root, so that the check above sees every layer that is crossed.
    while IFS= read -r match; do
        complain "$match: include by the path from the root"
    done < <(grep -rnE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"\.\.?/' \
        --include='*.h' --include='*.cpp' --include='*.mm' "$layer" || true)
done

while IFS= read -r match; do
    complain "$match: the engine must build without JUCE"
done < <(grep -rnE '^[[:space:]]*#[[:space:]]*include.*juce|juce::' \
    --include='*.h' --include='*.cpp' core dsp reverb || true)

if ((failures > 0)); then
    echo "$failures layer rule(s) broken" >&2
    exit 1
fi
echo "All includes point downwards"
