#!/usr/bin/env bash
# Counts what operations of the product cost: instructions, system calls and allocations, which do not
# depend on how busy the machine is. Fails when one is above packaging/perf-budget.txt.
#
# Usage: scripts/perf-check.sh [--self-test]
#   --self-test  compares an operation with a planted slowdown with the budget and fails unless the
#                check notices it in all three figures
#
# Each figure is the difference between a long and a short run of bench/, divided by the number of
# additional repetitions, so that starting and stopping cancel out. Valgrind counts instructions and
# allocations inside the measured function only, strace counts the system calls. The last rows compare
# whole runs of "vantricprobe --help" with /bin/true: their figure is per cent of instructions.
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"

budget_file=packaging/perf-budget.txt
short_run=320
long_run=960
logs=$(mktemp --directory)
trap 'rm -rf "$logs"' EXIT

# Environment and path are fixed: their length moves the stack, and the C library copies differently at
# another alignment. It uses the copy routine that every processor has, not the one for this processor.
plain_copying=(GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2,-AVX512F,-AVX512VL,-AVX512BW,-ERMS,-FSRM,-SSSE3,-SSE4_1,-SSE4_2)
run_in() {
    local folder=$1
    shift
    env -i -C "$folder" PATH=/usr/bin:/bin LC_ALL=C "${plain_copying[@]}" "$@" \
        > "$logs/output" 2>&1 || { echo "Failed: $*" >&2; cat "$logs/output" >&2; exit 1; }
}

# callgrind FOLDER COMMAND...: prints the instructions of a run.
callgrind() {
    local folder=$1
    shift
    run_in "$folder" valgrind --tool=callgrind --callgrind-out-file="$logs/profile" --log-file="$logs/callgrind" "$@"
    sed -n 's/.*Collected : //p' "$logs/callgrind"
}

# counts OPERATION NUMBER: prints the three figures of that many repetitions. Functions are recorded
# with their callers, so that an allocation outside the measured function does not count.
counts() {
    local driver=./performance_driver
    callgrind build/bench/bin --compress-strings=no --separate-callers=20 '--toggle-collect=*measuredSection*' \
        "$driver" count "$@"
    run_in build/bench/bin strace -c -o "$logs/strace" "$driver" count "$@"
    awk '$NF == "total" {print $4}' "$logs/strace"
    awk "/^cfn=(malloc|calloc|realloc)'.*measuredSection/"' {getline; sub(/calls=/, ""); sum += $1} END {print sum + 0}' \
        "$logs/profile"
}

per_cent_of_true() {
    local help true plain_copying=()  # to read that variable would be a good part of a short run
    help=$(callgrind "$1" ./vantricprobe --help)
    true=$(callgrind / /bin/true)
    echo "$((help * 100 / true)) 0 0"
}

# Prints the three figures of one operation. A busy machine adds a system call to a run now and then,
# which one digit does not show.
measure() {
    case $1 in
        help) per_cent_of_true build/release/bin ;;
        staticHelp) per_cent_of_true build/static-release/bin ;;
        *)
            counts "$1" "$short_run" > "$logs/short"
            counts "$1" "$long_run" > "$logs/long"
            paste "$logs/short" "$logs/long" \
                | awk -v runs="$((long_run - short_run))" \
                    '{text = sprintf("%.*f", (NR > 1), ($2 - $1) / runs); printf "%s ", text + 0 == 0 ? 0 : text}'
            ;;
    esac
}

# check OPERATION LIMIT LIMIT LIMIT: prints a line of the table; the status is the number of figures
# above their limit.
check() {
    local operation=$1 limits=("${@:2}") units=(instructions 'system calls' allocations) figures index above=0
    read -ra figures <<< "$(measure "$operation")"
    [ "${#figures[@]}" -eq 3 ] || { echo "$operation could not be measured" >&2; exit 1; }
    printf '%-20s' "$operation"
    printf ' %8s' "${figures[@]}"
    printf '   limits: %s %s %s\n' "${limits[@]}"
    for index in 0 1 2; do
        if [ "${limits[index]}" != - ] && awk "BEGIN {exit !(${figures[index]} > ${limits[index]})}"; then
            echo "$operation is above its limit of ${units[index]}" >&2
            above=$((above + 1))
        fi
    done
    return "$above"
}

limits_of() {
    sed -n "s/^$1 //p" "$budget_file"
}

scripts/install-packages.sh run bench
say "Building"
cmake --preset bench --log-level=WARNING > /dev/null
cmake --build --preset bench --target performance_driver
cmake --preset release --log-level=WARNING > /dev/null
cmake --build --preset release --target vantricprobe
cmake --preset static-release --log-level=WARNING > /dev/null
cmake --build --preset static-release

say "Counting"
printf '%-20s %8s %8s %8s\n' operation instr. calls alloc.
status=0
if [ "${1:-}" = --self-test ]; then
    read -ra limits <<< "$(limits_of getConnectivityType)"
    check plantedSlowdown "${limits[@]}" || status=$?
    [ "$status" -eq 3 ] || { echo "The check did not notice all three" >&2; exit 1; }
    echo "The check noticed the planted slowdown in all three figures"
    exit 0
fi
for operation in $(sed -n 's/^\([A-Za-z0-9]*\) .*/\1/p' "$budget_file"); do
    read -ra limits <<< "$(limits_of "$operation")"
    check "$operation" "${limits[@]}" || status=1
done
exit "$status"
