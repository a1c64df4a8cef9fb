#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy over every source file; any finding fails.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

scripts/install-packages.sh
say "Configuring (dev)"
cmake --preset dev --log-level=WARNING
say "Running clang-tidy"
git ls-files '*.cpp' | xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p build/dev 2> >(grep -v 'warnings generated' >&2)
