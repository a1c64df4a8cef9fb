#!/usr/bin/env bash
# Counts what each operation of the product costs: instructions, system calls and allocations, which
# do not depend on how busy the machine is. Fails when one is above packaging/perf-budget.txt.
#
# Usage: scripts/perf-check.sh [--self-test | OPERATION...]
#   --self-test  plants a slowdown under one operation and fails unless the check notices it in all
#                three figures
#   OPERATION    only these; names as in the budget
#
# Each figure is the difference between a long and a short run of bench/driver, by the number of
# additional repetitions, so that the cost of starting and stopping cancels out. Instructions are
# counted inside the measured operations only; there the clock is a system call, whose instructions
# are not the program's. The last line compares whole runs of the release's "vantricprobe --help"
# with /bin/true: its first figure is per cent.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

budget_file=packaging/perf-budget.txt
driver_folder=build/bench/bench
driver=./performance_driver
program_folder=build/release/bin
program=./vantricprobe
short_run=320
long_run=960

logs=$(mktemp --directory)
trap 'rm -rf "$logs"' EXIT
# What the environment asks of the C library must not count, nor a time zone. Even its length would: it
# moves the stack, and copying takes another path at another alignment. The same holds for the path of
# the program, which is therefore called from its own folder. And the C library copies and compares in
# the way that suits the processor: here it takes the way of all processors.
plain_processor=glibc.cpu.hwcaps=-AVX2,-AVX512F,-AVX512VL,-AVX512BW,-ERMS,-FSRM,-SSSE3,-SSE4_1,-SSE4_2
folder=$driver_folder
in_fixed_environment() {
    run_or_stop env -i -C "$folder" PATH=/usr/bin:/bin LC_ALL=C "GLIBC_TUNABLES=$plain_processor" "$@"
}

run_or_stop() {
    "$@" > "$logs/output" 2>&1 || { echo "Failed: $*" >&2; cat "$logs/output" >&2; exit 1; }
}

# instructions CALLGRIND_OPTION PROGRAM ARGUMENT...
instructions() {
    in_fixed_environment ${preload:+"LD_PRELOAD=$preload"} \
        valgrind --tool=callgrind --callgrind-out-file=/dev/null --log-file="$logs/callgrind" "$@"
    sed -n 's/.*Collected : //p' "$logs/callgrind"
}

system_calls() {
    in_fixed_environment strace -f -c -o "$logs/strace" ${preload:+-E "LD_PRELOAD=$preload"} "$@"
    awk '$NF == "total" {print $4}' "$logs/strace"
}

allocations() {
    in_fixed_environment "ALLOCATION_COUNT_FILE=$logs/allocations" \
        "LD_PRELOAD=${preload:+$preload:}$PWD/$driver_folder/liballocation_count_preload.so" "$@"
    cat "$logs/allocations"
}

# per_operation DIGITS COUNTER...: what one repetition adds to the counter. A busy machine adds a call of
# the system to a run now and then; one digit behind the point does not show it.
per_operation() {
    local digits=$1 short long
    shift
    short=$("$@" "$short_run") || return
    long=$("$@" "$long_run") || return
    awk -v added="$((long - short))" -v runs="$((long_run - short_run))" -v digits="$digits" \
        'BEGIN {text = sprintf("%.*f", digits, added / runs); sub(/\.0+$/, "", text); sub(/^-0$/, "0", text); print text}'
}

# The three figures of an operation, one a line.
measure() {
    if [ "$1" = helpPercentOfTrue ]; then
        local folder=$program_folder help_cost true_cost
        help_cost=$(instructions --collect-atstart=yes "$program" --help) || return
        true_cost=$(instructions --collect-atstart=yes /bin/true) || return
        echo "$((help_cost * 100 / true_cost))"
        system_calls "$program" --help && allocations "$program" --help
    else
        per_operation 0 instructions '--toggle-collect=*measuredSection*' "$driver" "$1" \
            && per_operation 1 system_calls "$driver" "$1" \
            && per_operation 2 allocations "$driver" "$1"
    fi
}

# Prints a line of the table; the status is the number of figures above the budget. "-" is no budget.
check() {
    local operation=$1 budgets=("$2" "$3" "$4") note=$5 figures=() above=() index
    local units=(instructions 'system calls' allocations)
    mapfile -t figures < <(measure "$operation")
    [[ "${figures[*]}" =~ ^[0-9.]+\ [0-9.]+\ [0-9.]+$ ]] || { echo "$operation could not be measured" >&2; exit 1; }
    printf '%-20s %8s /%8s %5s /%5s %5s /%5s  %s\n' "$operation" "${figures[0]}" "${budgets[0]}" \
        "${figures[1]}" "${budgets[1]}" "${figures[2]}" "${budgets[2]}" "$note"
    for index in 0 1 2; do
        if [ "${budgets[index]}" != - ] \
            && awk "BEGIN {exit !(${figures[index]} > ${budgets[index]})}"; then
            above+=("${units[index]}")
        fi
    done
    [ "${#above[@]}" -ne 0 ] || return 0
    printf "$operation is above its budget of %s\n" "${above[@]}" >&2
    return "${#above[@]}"
}

check_all() {
    local status=0 operation instructions calls allocations note
    printf '%-20s %18s %12s %12s\n' 'figure / budget' instructions 'system calls' allocations
    while read -r operation instructions calls allocations note; do
        if [ "$#" -eq 0 ] || [[ " $* " = *" $operation "* ]]; then
            check "$operation" "$instructions" "$calls" "$allocations" "$note" || status=$?
        fi
    done < <(grep -v -e '^#' -e '^$' "$budget_file")
    return "$status"
}

# Every operation of the driver has a line in the budget, or it would go unnoticed.
require_complete_budget() {
    local operation
    for operation in $("$driver_folder/$driver" --list) "$@"; do
        if ! grep -q "^$operation " "$budget_file"; then
            echo "There is no line for $operation in $budget_file" >&2
            exit 1
        fi
    done
}

scripts/install-packages.sh
say "Building"
cmake --preset bench --log-level=WARNING > /dev/null
cmake --build --preset bench --target performance_driver
cmake --preset release --log-level=WARNING > /dev/null
cmake --build --preset release --target vantricprobe

preload=
if [ "${1:-}" = --self-test ]; then
    say "Counting with a planted slowdown"
    preload=$PWD/$driver_folder/libplanted_slowdown_preload.so
    status=0
    check_all getConnectivityType || status=$?
    [ "$status" -eq 3 ] || { echo "The check did not notice all three" >&2; exit 1; }
    echo "The check noticed the planted slowdown in all three figures"
    exit 0
fi
require_complete_budget "$@"
say "Counting"
check_all "$@" || exit 1
