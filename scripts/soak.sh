#!/usr/bin/env bash
# Lets real processes work against each other for minutes, in a private /dev/shm: frames in the
# ring, reads of the states, killed clients, racing constructions of a lock. Fails when a property
# that must hold does not.
#
# Usage: scripts/soak.sh [--short] [--seed NUMBER]
#   --short  smaller hunts, about a minute in total
#   --seed   repeats the random choices of an earlier run, which has printed its seeds
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

frames=2000000 reads=10000000 kills=9000 programs=1000 races=200000 time_limit=1800
seed=()
while [ $# -gt 0 ]; do
    case $1 in
        --short) frames=200000 reads=1000000 kills=1000 programs=50 races=20000 time_limit=300 ;;
        --seed)
            seed=(--seed "${2:?--seed needs a number}")
            shift
            ;;
        *)
            echo "Unknown argument $1; see --help" >&2
            exit 2
            ;;
    esac
    shift
done

scripts/install-packages.sh
say "Building (dev)"
cmake --preset dev --log-level=WARNING
cmake --build --preset dev --target soak_hunts

# The other hunts go on when one fails.
status=0
hunt() {
    say "Hunting: $*"
    build/dev/tests/soak_hunts --time-limit "$time_limit" "${seed[@]}" "$@" || status=1
}
hunt frames --count "$frames"
hunt reads --count "$reads"
hunt kills --count "$kills" --programs "$programs"
hunt races --count "$races"
exit "$status"
