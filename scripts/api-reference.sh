#!/usr/bin/env bash
# Builds the reference of the public headers, build/api-reference/html/index.html. Fails on every
# warning, and on a public declaration without a comment.
#
# Usage: scripts/api-reference.sh
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

scripts/install-packages.sh
say "Building the API reference"
cmake --preset api-reference --log-level=WARNING
cmake --build --preset api-reference
echo "See build/api-reference/html/index.html"
