#!/usr/bin/env bash
# Checks the sources: clang-format, cppcheck and clang-tidy. Any finding fails the check; a comment
# suppresses a false report at its line. clang-tidy checks the product, the simulator, vantricctl, the
# fuzz targets, and those of the other files that changed in the last day.
#
# Usage: scripts/lint.sh [--fix | --all]
#   --fix  formats all files instead, and checks nothing
#   --all  clang-tidy checks every file
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"

scripts/install-packages.sh run test gate
if [ "${1:-}" = --fix ]; then
    git ls-files '*.c' '*.cpp' '*.h' | xargs clang-format -i
    exit
fi

say "Checking the format"
git ls-files '*.c' '*.cpp' '*.h' | xargs clang-format --dry-run -Werror

# Test cases stay out: this cppcheck can read neither chrono literals nor the framework's macros.
# useStlAlgorithm prefers an algorithm to every short loop: a matter of taste, not a fault.
say "Running cppcheck"
git ls-files 'CoreMisc/*.cpp' 'Vantric/*.cpp' 'client/*.cpp' 'ctl/*.cpp' 'sim/*.cpp' 'fuzz/*.cpp' \
    'tests/support/*.cpp' |
    xargs cppcheck --quiet --language=c++ --std=c++17 -I . -j "$(nproc)" \
        --enable=warning,performance,portability,style --suppress=useStlAlgorithm \
        --library=googletest --inline-suppr --error-exitcode=1

# What must not compile, and the empty source of the compiled headers, which clang cannot read.
left_out=(':!*/OverAligned*' ':!tests/support/PrecompiledHeaders.cpp')

chosen_files() {
    git ls-files 'CoreMisc/*.cpp' 'Vantric/*.cpp' 'client/*.cpp' 'ctl/*.cpp' 'sim/*.cpp' 'fuzz/*.cpp'
    local yesterday
    yesterday=$(git rev-list -1 --before='1 day ago' HEAD)
    if [ "${1:-}" = --all ] || [ -z "$yesterday" ]; then
        git ls-files '*.cpp' "${left_out[@]}"
    else
        git diff --name-only --diff-filter=d "$yesterday" -- '*.cpp' "${left_out[@]}"
    fi
}

mapfile -t files < <(chosen_files "$@" | sort -u)
say "Running clang-tidy over ${#files[@]} files"
cmake --preset dev --log-level=WARNING
printf '%s\n' "${files[@]}" | xargs -P "$(nproc)" -n 1 clang-tidy --quiet -p build/dev 2> >(grep -v 'warnings generated' >&2)
