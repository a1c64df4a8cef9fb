#!/usr/bin/env bash
# Fuzzes the targets of fuzz/ one after the other, each in a private /dev/shm, and fails when one
# breaks a promise, leaks, hangs or runs out of memory; the input that did it is named then.
#
# Usage: scripts/fuzz.sh [--seconds N] [--seed N] [TARGET...]
#        scripts/fuzz.sh --coverage
#   --seconds N  how long each target runs (20)
#   --seed N     starts from the same random choices as every run with that number
#   TARGET       a folder name in fuzz/corpus; all of them when none is named
#   --coverage   instead of fuzzing, shows the lines of the product and the simulator that the
#                checked-in corpus reaches
#
# New inputs worth keeping go to build/fuzz/finds/TARGET, failing ones to build/fuzz/failures/TARGET.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

seconds=20
seed=0
coverage=false
targets=()

fail_usage() {
    echo "$1; see scripts/fuzz.sh --help" >&2
    exit 2
}

while [ $# -gt 0 ]; do
    case $1 in
        --seconds)
            seconds=${2:-}
            [[ $seconds =~ ^[1-9][0-9]*$ ]] || fail_usage "--seconds needs a whole number above 0"
            shift
            ;;
        --seed)
            seed=${2:-}
            [[ $seed =~ ^[1-9][0-9]*$ ]] || fail_usage "--seed needs a whole number above 0"
            shift
            ;;
        --coverage) coverage=true ;;
        -*) fail_usage "there is no option $1" ;;
        *)
            [ -d "fuzz/corpus/$1" ] || fail_usage "there is no target $1"
            targets+=("$1")
            ;;
    esac
    shift
done
if [ "${#targets[@]}" -eq 0 ]; then
    mapfile -t targets < <(ls fuzz/corpus)
fi

show_coverage() {
    say "Building the replay programs (coverage)"
    cmake --preset coverage --log-level=WARNING
    cmake --build --preset coverage --target fuzz_replay private_shared_memory_check
    find build/coverage -name '*.gcda' -delete
    say "Replaying the corpus"
    ctest --preset coverage --label-regex '^corpus$'
    say "Lines that the corpus reaches"
    gcovr --root . --object-directory build/coverage --exclude-throw-branches \
        --filter CoreMisc/ --filter Vantric/ --filter sim/
}

# Prints what became of one target; its output is in the log.
fuzz() {
    local target=$1 log=$2 status=0
    local finds=build/fuzz/finds/$target failures=build/fuzz/failures/$target
    mkdir -p "$finds" "$failures"
    # The outer limit is for a hang that stops the fuzzer's own clock as well.
    timeout --kill-after=10 $((seconds + 120)) "build/fuzz/bin/fuzz_$target" \
        -seed="$seed" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -use_value_profile=1 \
        -print_final_stats=1 -artifact_prefix="$failures/" "$finds" "fuzz/corpus/$target" \
        > "$log" 2>&1 || status=$?
    printf '%-14s %9s executions, %6s a second, %s, %s inputs found\n' "$target" \
        "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" \
        "$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")" \
        "$(grep -o 'cov: [0-9]* ft: [0-9]*' "$log" | tail -n 1)" "$(ls "$finds" | wc -l)"
    if [ "$status" -ne 0 ]; then
        echo "FAILED with status $status; the end of $log:"
        grep -v -E '^#[0-9]+\s' "$log" | tail -n 40
        echo "Run it again: build/fuzz/bin/replay_$target $(ls -t "$failures"/* 2> /dev/null | head -n 1)"
    fi
    return "$status"
}

scripts/install-packages.sh
if $coverage; then
    show_coverage
    exit 0
fi

say "Configuring (fuzz)"
cmake --preset fuzz --log-level=WARNING
say "Building (fuzz)"
cmake --build --preset fuzz
say "Fuzzing for $seconds seconds a target"
failed=0
for target in "${targets[@]}"; do
    fuzz "$target" "build/fuzz/$target.log" || failed=1
done
exit "$failed"
