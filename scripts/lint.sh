#!/usr/bin/env bash
# Checks the sources: clang-format, cppcheck and clang-tidy. Any finding fails the check; a comment
# suppresses a false report at its line. clang-tidy reads the sources of the tests in batches, which takes
# a third of the time.
#
# Usage: scripts/lint.sh [--fix | --all]
#   --fix  formats all files instead, and checks nothing
#   --all  clang-tidy reads each source of the tests alone
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"

scripts/install-packages.sh run test bench gate
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
left_out='/Over(Aligned|sized)|PrecompiledHeaders'

alone() {
    cmake --preset dev --log-level=WARNING > /dev/null
    git ls-files '*.cpp' "$@" | sed 's,^,build/dev ,'
}

# A batch is a generated file that includes some sources. The analyzer would leave them out, but it is off
# for the tests, whose settings apply to their batches.
tests_in_batches() {
    cmake --preset dev -B build/lint -D CMAKE_UNITY_BUILD=ON --log-level=WARNING > /dev/null
    printf '%s\n' 'InheritParentConfig: true' 'Checks: -bugprone-suspicious-include' > build/lint/.clang-tidy
    cp tests/.clang-tidy build/lint/tests/
    sed -n 's,^ *"file": "\(.*/tests/.*[px]\)"$,build/lint \1,p' build/lint/compile_commands.json |
        grep -v googletest | sort -u
}

if [ "${1:-}" = --all ]; then
    mapfile -t jobs < <(alone | grep -vE "$left_out")
else
    mapfile -t jobs < <({ alone ':!tests/*'; tests_in_batches; } | grep -vE "$left_out")
fi
say "Running clang-tidy, ${#jobs[@]} times"
printf '%s\n' "${jobs[@]}" | xargs -P "$(nproc)" -n 2 clang-tidy --quiet -p 2> >(grep -v 'warnings generated' >&2)
