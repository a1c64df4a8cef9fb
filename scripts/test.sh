#!/usr/bin/env bash
# Installs what is missing, builds everything and runs all tests.
#
# Usage: scripts/test.sh [PRESET]
#   PRESET  dev (default), asan-ubsan, coverage, armhf or bench
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"
preset=${1:-dev}

scripts/install-packages.sh
presets=$(ctest --list-presets)
[[ $presets == *"\"$preset\""* ]] || fail "No tests belong to a preset '$preset'; see scripts/test.sh --help."
say "Configuring ($preset)"
cmake --preset "$preset" --log-level=WARNING
say "Building ($preset)"
cmake --build --preset "$preset"
say "Testing ($preset)"
ctest --preset "$preset"
