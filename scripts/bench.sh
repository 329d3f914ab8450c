#!/usr/bin/env bash
# Builds the benchmarks and runs every one; arguments go to each of them:
#   scripts/bench.sh --benchmark_filter=Unlock
# What shows windows is measured on an X server of its own, as it would show them to a person.
set -euo pipefail

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
"$root/scripts/packages.sh" run tour bench
"$root/scripts/build.sh" bench
export LC_ALL=C.UTF-8 TZ=UTC
shopt -s nullglob
programs=("$root"/build/bench/bin/bench_*)
if [ ${#programs[@]} -eq 0 ]; then
    echo "There is no benchmark in build/bench/bin" >&2
    exit 1
fi
for program in "${programs[@]}"; do
    echo "== $(basename "$program")"
    case "$program" in
        *_startup | *_editing) "$root/scripts/with-x11" "$program" "$@" 2>/dev/null ;;
        *) "$program" "$@" ;;
    esac
done
