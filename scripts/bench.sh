#!/usr/bin/env bash
# Measures the operations beside the same work by hand and beside other ways of doing it, each in a
# private /dev/shm, and prints a table with ratios. The results are in build/bench/results.json.
#
# Usage: scripts/bench.sh [--repetitions NUMBER] [ROW...]
#   --repetitions  the number of interleaved rounds (15)
#   ROW            only these programs: state records list_query enqueue log help contended_state
#                  contended_ring; the results hold these rows alone then
#
# On a busy machine the times, and less so their ratios, are provisional; the table says so.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

repetitions=15
if [ "${1:-}" = --repetitions ]; then
    repetitions=${2:?--repetitions needs a number}
    shift 2
fi
rows=("$@")
[ "$#" -gt 0 ] || rows=(state records list_query enqueue log help contended_state contended_ring)

scripts/install-packages.sh
say "Building"
cmake --preset bench --log-level=WARNING > /dev/null
cmake --build --preset bench --target benchmarks
cmake --preset release --log-level=WARNING > /dev/null
cmake --build --preset release --target vantricprobe

folder=build/bench
# Several turns of all processes, or the figure would be the luck of one; logs that fit into memory.
declare -A minimum_time=([contended_state]=0.1 [log]=0.005)
reports=()
for row in "${rows[@]}"; do
    say "Measuring ($row)"
    VANTRIC_BENCH_PROGRAM=$PWD/build/release/bin/vantricprobe "$folder/bench/bench_$row" \
        --benchmark_repetitions="$repetitions" --benchmark_enable_random_interleaving=true \
        --benchmark_min_time="${minimum_time[$row]:-0.02}" --benchmark_out_format=json --benchmark_out="$folder/$row.json" \
        > "$folder/$row.log" 2>&1 || { cat "$folder/$row.log" >&2; exit 1; }
    reports+=("$folder/$row.json")
done
scripts/bench-merge.py "$folder/results.json" "${reports[@]}"
say "Results ($folder/results.json)"
scripts/bench-table.py "$folder/results.json"
