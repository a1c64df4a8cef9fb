#!/usr/bin/env bash
# Checks that take too long for the gate: clang-tidy over every file, line coverage of the product, the
# end-to-end tests under valgrind, the library as other projects install it, longer soak and fuzz tests,
# all tests for 32-bit ARM in an emulator and on a virtual device, and the API reference. Run it before a
# release; prints how long each step took.
#
# Usage: scripts/release-check.sh
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"

scripts/install-packages.sh run test arm bench gate release

# Fails below 99 % of the product's lines and lists those that no test reaches.
check_coverage() {
    cmake -S . -B build/coverage -G Ninja --log-level=WARNING -DCMAKE_BUILD_TYPE=Debug -DVANTRIC_COVERAGE=ON \
        -DVANTRIC_BUILD_TESTS=ON
    cmake --build build/coverage
    find build/coverage -name '*.gcda' -delete
    ctest --test-dir build/coverage --parallel 8 --output-on-failure
    gcovr --root . --object-directory build/coverage --filter CoreMisc/ --filter Vantric/ --filter client/ \
        --exclude-throw-branches --fail-under-line 99
}

# A finding gives a program a wrong exit status, but some cases kill a program or ignore its status: the
# reports show a stack for each finding. They show one as well where a program ends by a signal.
check_memory() {
    rm -f build/dev/memcheck.*.log
    cmake --workflow --preset memcheck
    awk '/Process terminating/ { is_end = 1 } /^==[0-9]+== *$/ { is_end = 0 }
        /^==[0-9]+== +(at|by) 0x/ && !is_end { print FILENAME ": " $0; found = 1 }
        END { exit found }' build/dev/memcheck.*.log
}

step scripts/lint.sh --all
step check_coverage
step check_memory
step ctest --preset install
step env VANTRIC_SOAK_SECONDS=60 timeout 10m build/dev/tests/soak_tests
step cmake --workflow --preset fuzz
step scripts/test.sh armhf
step scripts/device-test.sh
step cmake -B build/api --log-level=WARNING -DVANTRIC_BUILD_API_REFERENCE=ON
step cmake --build build/api --target api_reference
print_durations
