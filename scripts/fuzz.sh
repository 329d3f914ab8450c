#!/usr/bin/env bash
# Builds the fuzz targets with clang and lets each run for a while (60 seconds each unless told
# otherwise): scripts/fuzz.sh [SECONDS] [TARGET...]. What breaks one is kept in build/fuzz/found,
# what taught it something in build/fuzz/corpus; seeds stand in fuzz/corpus.
#
#   scripts/fuzz.sh --build             only builds
#   scripts/fuzz.sh --test 60 TARGET    what ./test does with a built one: from the seeds alone, with
#                                       a fixed start of its chance
set -euo pipefail

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
mode=explore
case ${1:-} in
    --build | --test)
        mode=${1#--}
        shift
        ;;
esac
seconds=60
if [[ ${1:-} =~ ^[0-9]+$ ]]; then
    seconds=$1
    shift
fi
if [ "$mode" != test ]; then
    "$root/scripts/packages.sh" run fuzz
    "$root/scripts/build.sh" fuzz fuzzers
fi
[ "$mode" = build ] && exit 0
export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 TZ=UTC
export LSAN_OPTIONS=suppressions=$root/tests/lsan.supp
shopt -s nullglob
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for program in "$root"/build/fuzz/bin/fuzz_*; do
        targets+=("$(basename "$program")")
    done
fi
if [ ${#targets[@]} -eq 0 ]; then
    echo "There is no fuzz target in build/fuzz/bin" >&2
    exit 1
fi
for target in "${targets[@]}"; do
    name=${target#fuzz_}
    corpus=$root/build/fuzz/corpus/$name
    options=()
    if [ "$mode" = test ]; then
        corpus=$root/build/fuzz/test/$name
        rm -rf "$corpus"
        # The count makes a fast machine do no other things than a slow one.
        options=(-seed=1 -verbosity=0 -runs=20000)
    fi
    mkdir -p "$corpus" "$root/build/fuzz/found"
    folders=("$corpus")
    [ -d "$root/fuzz/corpus/$name" ] && folders+=("$root/fuzz/corpus/$name")
    echo "== fuzz_$name, $seconds s"
    "$root/build/fuzz/bin/fuzz_$name" -max_total_time="$seconds" -print_final_stats=1 \
        "${options[@]}" \
        -artifact_prefix="$root/build/fuzz/found/$name-" "${folders[@]}"
done
