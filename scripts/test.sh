#!/usr/bin/env bash
# Installs what is missing, builds everything and runs all tests.
#
# Usage: scripts/test.sh [PRESET [OPTION...]]
#   PRESET  dev (default), shared, asan-ubsan, tsan, armhf, bench or fuzz
#   OPTION  for ctest, for example --label-regex units
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"
preset=${1:-dev}
shift || true

groups=(run test)
case $preset in
    armhf) groups+=(arm) ;;
    bench) groups+=(bench) ;;
    fuzz) groups+=(release) ;;
esac
scripts/install-packages.sh "${groups[@]}"
presets=$(ctest --list-presets)
[[ $presets == *"\"$preset\""* ]] || fail "No tests belong to a preset '$preset'; see scripts/test.sh --help."
say "Configuring ($preset)"
cmake --preset "$preset" --log-level=WARNING
say "Building ($preset)"
cmake --build --preset "$preset"
say "Testing ($preset)"
ctest --preset "$preset" "$@"
