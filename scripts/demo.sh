#!/usr/bin/env bash
# Shows vantricprobe at work: builds the release programs, starts the simulated server in a private
# /dev/shm and runs every command once.
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"

probe=build/release/bin/vantricprobe
simulator=build/release/bin/vantricsim

prepare() {
    scripts/install-packages.sh run
    say "Building vantricprobe and vantricsim"
    cmake --preset release --log-level=WARNING
    cmake --build --preset release --target vantricprobe vantricsim
}

# Shows a command as it can be copied, and runs it.
show() {
    printf '\n$'
    printf ' %q' "$@"
    printf '\n'
    "$@"
}

start_server() {
    server_output=$(mktemp)
    "$simulator" > "$server_output" &
    server=$!
    trap 'kill "$server" 2> /dev/null || true; rm -f "$server_output"' EXIT
    await_line "$server_output" '^ready$'
}

show_every_command() {
    say "Starting the simulated server"
    start_server

    say "Running every command (most wait for the server; this takes about 40 seconds)"
    show "$probe" -h
    show timeout 2 "$probe" --status || true
    show "$probe" --availablewifi
    show "$probe" --statuscapi
    show "$probe" --setConfigKeepWifi backup-site-a.cfg
    show "$probe" --setConfig backup-site-b.cfg
    show "$probe" --switchtowifi
    show "$probe" --switchtocarrier
    show "$probe" --enablewifi
    show "$probe" --disablewifi
    show "$probe" --setwifi "Guest Network"
    show "$probe" --forgetwifi

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
