#!/usr/bin/env bash
# Configures a preset of CMakePresets.json where that is due and builds it: scripts/build.sh PRESET
# [TARGET...]. Takes well under a second when there is nothing to do.
set -euo pipefail

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
preset=${1:?"usage: scripts/build.sh PRESET [TARGET...]"}
shift
build=$root/build/$preset

# Ninja looks after every other file by itself; the presets are read by nobody but cmake.
if [ ! -e "$build/build.ninja" ] || [ "$root/CMakePresets.json" -nt "$build/configured" ]; then
    echo "Configuring ($preset)"
    mkdir -p "$build"
    if ! cmake -S "$root" --preset "$preset" >"$build/configure.log" 2>&1; then
        cat "$build/configure.log" >&2
        exit 1
    fi
    touch "$build/configured"
fi
echo "Building ($preset)"
exec ninja -C "$build" -j "${QUORVANE_JOBS:-$(nproc)}" "$@"
