#!/usr/bin/env bash
# Checks that every C and C++ file is as .clang-format has it. With --fix, formats them.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

scripts/install-packages.sh
mode=(--dry-run -Werror)
if [ "${1:-}" = --fix ]; then
    mode=(-i)
fi
git ls-files '*.c' '*.cpp' '*.h' | xargs clang-format "${mode[@]}"
