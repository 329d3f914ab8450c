#!/usr/bin/env bash
# Sets the C++ sources as .clang-format says, or checks that they are.
#
#   scripts/format.sh [--check]   tells the lines that stand otherwise, of all files
#   scripts/format.sh --fix       sets them
#   scripts/format.sh --changed   sets the files that differ from the last commit
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."

folders=()
for folder in src tests bench fuzz; do
    [ -d "$folder" ] && folders+=("$folder")
done
all() { find "${folders[@]}" -path tests/data -prune -o \( -name '*.cpp' -o -name '*.h' \) -print0; }
changed() {
    { git diff --name-only --diff-filter=d -z HEAD && git ls-files -zo --exclude-standard; } \
        | grep -zE '^(src|tests|bench|fuzz)/.*\.(cpp|h)$' | grep -zv '^tests/data/' || true
}

case "${1:---check}" in
    --check) all | xargs -0r clang-format --dry-run -Werror ;;
    --fix) all | xargs -0r clang-format -i ;;
    --changed) changed | xargs -0r clang-format -i ;;
    *)
        echo "usage: scripts/format.sh [--check | --fix | --changed]" >&2
        exit 2
        ;;
esac
