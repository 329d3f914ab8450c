#!/usr/bin/env bash
# Runs clang-tidy with the list in .clang-tidy over the files named, or over those that differ from
# the last commit. About a quarter of a minute a file, so ./test leaves it out.
# Needs clang-tidy and a configured debug or sanitize preset.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
if ! command -v clang-tidy >/dev/null; then
    echo "clang-tidy is missing: apt-get install --no-install-recommends clang-tidy" >&2
    exit 1
fi
database=
for preset in sanitize debug; do
    [ -e "build/$preset/compile_commands.json" ] && database=build/$preset && break
done
if [ -z "$database" ]; then
    echo "Configure first: cmake --preset debug" >&2
    exit 1
fi
files=("$@")
if [ ${#files[@]} -eq 0 ]; then
    mapfile -t files < <({ git diff --name-only --diff-filter=d HEAD
                           git ls-files -o --exclude-standard; } \
        | grep -E '^(src|tests)/.*\.cpp$' | grep -v '^tests/data/' || true)
fi
[ ${#files[@]} -eq 0 ] && echo "No file has changed." && exit 0
exec clang-tidy --quiet -p "$database" "${files[@]}"
