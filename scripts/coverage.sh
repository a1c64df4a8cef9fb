#!/usr/bin/env bash
# Runs all tests with line coverage of the product (CoreMisc, Vantric, client), lists the lines that
# no test reached, and fails below 97 %.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

find build/coverage -name '*.gcda' -delete 2> /dev/null || true
scripts/test.sh coverage
say "Line coverage"
gcovr --root . --object-directory build/coverage --filter CoreMisc/ --filter Vantric/ --filter client/ \
    --exclude-throw-branches --fail-under-line 97
