#!/usr/bin/env bash
# Shows vantricprobe at work: builds the release programs, starts the simulated server in a private
# /dev/shm and runs every command once.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

programs=build/release/bin

prepare() {
    scripts/install-packages.sh
    say "Building vantricprobe and vantricsim"
    cmake --preset release --log-level=WARNING
    cmake --build --preset release --target vantricprobe vantricsim
}

show() {
    printf '\n$ vantricprobe %s\n' "$*"
    "$programs/vantricprobe" "$@"
}

show_for() {
    local seconds=$1
    shift
    printf '\n$ timeout %s vantricprobe %s\n' "$seconds" "$*"
    timeout "$seconds" "$programs/vantricprobe" "$@" || true
}

start_server() {
    server_output=$(mktemp)
    "$programs/vantricsim" > "$server_output" &
    server=$!
    trap 'kill "$server" 2> /dev/null || true; rm -f "$server_output"' EXIT
    await_line "$server_output" '^ready$'
}

show_every_command() {
    say "Starting the simulated server"
    start_server

    say "Running every command (most wait for the server; this takes about 40 seconds)"
    show -h
    show_for 2 --status
    show --availablewifi
    show --statuscapi
    show --setConfigKeepWifi backup-site-a.cfg
    show --setConfig backup-site-b.cfg
    show --switchtowifi
    show --switchtocarrier
    show --enablewifi
    show --disablewifi
    show --setwifi "Guest Network"
    show --forgetwifi

    say "What the server received"
    await_line "$server_output" 'frame 8 .* "0,0"$'
    cat "$server_output"
}

if [ "${1:-}" = --in-private-shared-memory ]; then
    show_every_command
else
    prepare
    in_private_shared_memory /dev/shm scripts/demo.sh --in-private-shared-memory
fi
