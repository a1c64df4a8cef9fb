#!/usr/bin/env bash
# Measures the processor time that waiting costs the release's vantricprobe: --switchtowifi until it
# gives up after five minutes, --status for an hour, and the looks of a list query that nobody answers.
#
# Usage: scripts/waiting-cost.sh
#
# Each figure comes from two real runs against vantricsim that are ended after seconds: what the longer
# one used more is extrapolated, and what both used to start is added. Takes about a minute; needs a
# private /dev/shm, which it makes.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

programs=build/release/bin
scripts/install-packages.sh
say "Building vantricprobe and vantricsim"
cmake --preset release --log-level=WARNING > /dev/null
cmake --build --preset release --target vantricprobe vantricsim

figures=$(mktemp --directory)
trap 'rm -rf "$figures"' EXIT
cat > "$figures/ignored_scans.json" << 'SCENARIO'
{"timeline": [{"at": 0, "do": "ignoreCommand", "command": 10}]}
SCENARIO

# measure NAME SECONDS SCENARIO OPTION: leaves the figures in a file.
measure() {
    in_private_shared_memory /dev/shm \
        python3 bench/processor_time.py "$2" "$programs/vantricsim" "$3" "$programs/vantricprobe" "$4" \
        > "$figures/$1-$2"
}

# All at the same time: they sleep nearly always. A run ends in the middle between two looks of its
# command, and the two runs of a command are whole rounds apart.
say "Running vantricprobe six times, for up to 35 seconds"
pids=()
for run in "switch 4.5 sim/scenarios/stuck_switch.json --switchtowifi" \
    "switch 34.5 sim/scenarios/stuck_switch.json --switchtowifi" \
    "status 4 sim/scenarios/default.json --status" "status 30 sim/scenarios/default.json --status" \
    "list 2 $figures/ignored_scans.json --availablewifi" "list 22 $figures/ignored_scans.json --availablewifi"; do
    read -r name seconds scenario option <<< "$run"
    measure "$name" "$seconds" "$scenario" "$option" &
    pids+=("$!")
done
for pid in "${pids[@]}"; do
    wait "$pid"
done

# extrapolate NAME SHORT LONG TOTAL TEXT, in seconds.
extrapolate() {
    local short_time long_time short_wakes long_wakes
    read -r short_time short_wakes < "$figures/$1-$2"
    read -r long_time long_wakes < "$figures/$1-$3"
    awk -v short="$short_time" -v long="$long_time" -v wakes="$((long_wakes - short_wakes))" \
        -v from="$2" -v to="$3" -v total="$4" -v text="$5" 'BEGIN {
            rate = (long - short) / (to - from)
            cost = short + rate * (total - from)
            printf "%-44s %9.1f %9.1f %9.1f %10.1f %12.2f %10.5f\n", text, short / 1000, long / 1000,
                rate, wakes / (to - from), cost / 1000, cost / total / 1e4
        }'
}

say "Processor time (the total is extrapolated from the two runs)"
printf '%-44s %9s %9s %9s %10s %12s %10s\n' '' 'short ms' 'long ms' 'us per s' 'wakes/s' 'total ms' '% of one'
extrapolate switch 4.5 34.5 300 '--switchtowifi, 5 minutes until it gives up'
extrapolate status 4 30 3600 '--status, an hour, scans of 1.5 seconds'
extrapolate list 2 22 30 'a list query until it gives up, 30 seconds'
