#!/usr/bin/env bash
# Times the operations beside the same work by hand and beside other ways to do it, in a private
# /dev/shm, and prints a table with ratios. The results are in build/bench/results.tsv.
#
# Usage: scripts/bench.sh [--rounds NUMBER] [ROW]
#   --rounds  the number of interleaved rounds (15)
#   ROW       only rows whose name contains this text: state, list, enqueue, text, log, start
#
# On a busy machine the times, and less so their ratios, are provisional; the table says so.
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"

rounds=15
if [ "${1:-}" = --rounds ]; then
    rounds=${2:?--rounds needs a number}
    shift 2
fi
read -r load _ < /proc/loadavg  # before our own work adds to it

scripts/install-packages.sh run bench
say "Building"
cmake --preset bench --log-level=WARNING > /dev/null
cmake --build --preset bench --target performance_driver
cmake --preset release --log-level=WARNING > /dev/null
cmake --build --preset release --target vantricprobe

version() {
    dpkg-query -W -f '${Version}' "$1" | sed 's/^[0-9]*://; s/-[^-]*$//'
}
# The machine, without its name; the results begin with it.
machine() {
    local processor state=idle
    processor=$(sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -n 1)
    ! awk "BEGIN {exit !($load > $(nproc) / 2)}" || state='busy, so that these figures are provisional'
    echo "# $(date +%F): $(nproc) x ${processor:-$(uname -m)}, $(. /etc/os-release && echo "$PRETTY_NAME")," \
        "Linux $(uname -r), $(c++ --version | head -n 1); Boost $(version libboost-dev), spdlog" \
        "$(version libspdlog-dev), dbus-daemon $(version dbus), sd-bus $(version libsystemd-dev)." \
        "Load $load at the start: the machine was $state."
}

say "Measuring"
results=build/bench/results.tsv
machine > "$results"
VANTRICPROBE=$PWD/build/release/bin/vantricprobe build/bench/bin/performance_driver time "$rounds" "$@" >> "$results"
say "Results ($results)"
scripts/bench-show.py "$results"
