#!/usr/bin/env bash
# Runs the end-to-end tests with every vantricprobe and vantricsim that they start under valgrind's
# memcheck, and fails on any finding in any of them: invalid or uninitialised memory, or memory that is
# lost at the end. What is still reachable then is no finding: some objects live on purpose until the
# process ends. A process that a test kills is checked until then, without the search for lost memory.
#
# Usage: scripts/memcheck.sh [--with-transcripts] [CASES]
#   --with-transcripts  runs the transcripts too, which takes several times as long
#   CASES               a regular expression; only the cases whose names match it are run
#
# scripts/memcheck-exceptions.txt names the cases that are left out, and
# scripts/memcheck-suppressions.txt what is no finding. Takes minutes, and ends after 60 at the latest.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"
labels=end_to_end
if [ "${1:-}" = --with-transcripts ]; then
    labels='end_to_end|transcripts'
    shift
fi
cases=${1:-.}
longest_run=60m

scripts/install-packages.sh
say "Building (dev)"
cmake --preset dev --log-level=WARNING
cmake --build --preset dev

logs=$(mktemp --directory)
trap 'rm -rf "$logs"' EXIT

# The cases to leave out as one expression.
exceptions() {
    sed -n 's/^\([^# ]\+\) .*/\1/p' scripts/memcheck-exceptions.txt | paste -sd '|'
}

run_tests() {
    local suppressions=$PWD/scripts/memcheck-suppressions.txt
    VANTRIC_TEST_LAUNCHER="$(command -v valgrind) --vgdb=no --error-exitcode=99 --leak-check=full \
        --show-leak-kinds=definite,indirect,possible --errors-for-leak-kinds=definite,indirect,possible \
        --suppressions=$suppressions --log-file=$logs/%p.log" \
        timeout --kill-after=10 "$longest_run" ctest --test-dir build/dev --label-regex "^($labels)\$" --no-tests=error \
        --parallel "$(($(nproc) * 2))" --output-on-failure --tests-regex "$cases" --exclude-regex "^($(exceptions))\$"
}

# The logs with a finding. A process that was killed has no summary, but a stack for each finding.
logs_with_findings() {
    grep -lE 'ERROR SUMMARY: [1-9]' -r "$logs" || true
    grep -L 'ERROR SUMMARY' -r "$logs" | xargs -r grep -lE '^==[0-9]+== +(at|by) 0x' || true
}

say "Testing under memcheck"
start=$SECONDS
tests_passed=yes
run_tests || tests_passed=no

mapfile -t findings < <(logs_with_findings)
if [ "${#findings[@]}" -ne 0 ]; then
    say "Findings"
    cat "${findings[@]}"
fi
runs=$(find "$logs" -name '*.log' | wc -l)
ended=$({ grep -l 'ERROR SUMMARY' -r "$logs" || true; } | wc -l)
say "$runs processes under memcheck, $ended of them to their end; ${#findings[@]} with findings; $((SECONDS - start)) seconds"
[ "$tests_passed" = yes ] && [ "$runs" -ne 0 ] && [ "${#findings[@]}" -eq 0 ]
