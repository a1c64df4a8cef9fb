#!/usr/bin/env bash
# Checks the sources: clang-format, cppcheck and clang-tidy. Any finding fails the check; a comment
# suppresses a false report at its line. clang-tidy reads the sources in batches, which takes a third of
# the time.
#
# Usage: scripts/lint.sh [--fix | --all]
#   --fix  formats all files instead, and checks nothing
#   --all  clang-tidy reads every source alone, and the examples
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

# A batch is a generated file that includes some sources. The settings of a folder apply to its batches.
prepare_batches() {
    cmake --preset lint --log-level=WARNING > /dev/null
    # Without the last line the analyzer leaves out functions of files that are included.
    printf '%s\n' 'InheritParentConfig: true' 'Checks: -bugprone-suspicious-include' \
        'ExtraArgs: [-Xclang, -analyzer-opt-analyze-headers]' > build/lint/.clang-tidy
    local settings
    for settings in $(git ls-files '*/.clang-tidy'); do
        cp "$settings" "build/lint/$settings"
    done
    sed -n 's/^ *"file": "\(.*x\|.*\.cpp\)"$/\1/p' build/lint/compile_commands.json | grep -v googletest | sort -u
}

if [ "${1:-}" = --all ]; then
    cmake --preset dev --log-level=WARNING > /dev/null
    folder=build/dev
    mapfile -t files < <(git ls-files '*.cpp' | grep -vE "$left_out")
else
    folder=build/lint
    mapfile -t files < <(prepare_batches | grep -vE "$left_out")
fi
say "Running clang-tidy over ${#files[@]} files of $folder"
printf '%s\n' "${files[@]}" | xargs -P "$(nproc)" -n 1 clang-tidy --quiet -p "$folder" 2> >(grep -v 'warnings generated' >&2)
