#!/usr/bin/env bash
# Runs cppcheck and GCC's static analyzer over everything that is not a test body; any new report
# fails. False reports are named one by one: cppcheck's beside the line, the analyzer's in
# scripts/analyzer-known-reports.txt, where a report that no longer comes fails as well.
#
# Test bodies stay out: this cppcheck cannot read chrono literals nor the framework's macros, and
# they run under the sanitizers.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

known_reports=scripts/analyzer-known-reports.txt
folder=build/static-analysis

scripts/install-packages.sh
mapfile -t sources < <(git ls-files --cached --others --exclude-standard \
    'CoreMisc/*.cpp' 'Vantric/*.cpp' 'client/*.cpp' 'sim/*.cpp' 'fuzz/*.cpp' 'tests/soak/*.cpp' 'tests/support/*.cpp')

# useStlAlgorithm prefers an algorithm to every short loop: a matter of taste, not a fault.
say "Running cppcheck over ${#sources[@]} files"
cppcheck --quiet --language=c++ --std=c++17 -I . -j "$(nproc)" \
    --enable=warning,performance,portability,style --suppress=useStlAlgorithm \
    --library=googletest --inline-suppr --error-exitcode=1 "${sources[@]}"

say "Running GCC's analyzer over the product and the simulator"
cmake -S . -B "$folder" -G Ninja --log-level=WARNING -DCMAKE_BUILD_TYPE=Debug \
    -DVANTRIC_BUILD_SIMULATOR=ON -DVANTRIC_BUILD_TESTS=OFF -DVANTRIC_BUILD_BENCHMARKS=OFF \
    -DCMAKE_CXX_FLAGS="-O1 -fanalyzer -fanalyzer-verbosity=0 -fno-analyzer-state-merge -fdiagnostics-color=never"
LC_ALL=C cmake --build "$folder" --clean-first > "$folder/analyzer.log" || { cat "$folder/analyzer.log"; exit 1; }
# FILE: MESSAGE [FLAG], without positions: an edit above a report does not make it new.
sed -n -E "s|^($PWD/)?([^ :]+):([0-9]+:[0-9]+:)? warning: (.*)\$|\2: \4|p" "$folder/analyzer.log" \
    | sort -u > "$folder/reports.txt"
grep -v -e '^#' -e '^$' "$known_reports" | sort -u > "$folder/known.txt"
if ! diff --unified=0 --label known --label found "$folder/known.txt" "$folder/reports.txt"; then
    echo "The analyzer's reports differ from $known_reports; the whole text is in $folder/analyzer.log" >&2
    exit 1
fi
echo "$(wc -l < "$folder/known.txt") known false reports, no others"
