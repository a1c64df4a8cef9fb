#!/usr/bin/env bash
# Runs the wholly static vantricprobe as a device would: in a root folder that holds nothing else but a
# private /dev/shm, against a server outside of it. Needs root.
#
# Usage: empty-root.sh PROGRAM SERVER [EMULATOR]
#   EMULATOR  stands for the device's processor: it and its libraries lie in /emulator of the root folder
source "$(dirname "$(readlink -f "$0")")/../../scripts/common.sh"
show_help_and_exit_on_demand "$@"

if [ "${EMPTY_ROOT:-}" = "" ]; then
    EMPTY_ROOT=$(mktemp --directory)
    export EMPTY_ROOT
    trap 'rm -rf "$EMPTY_ROOT"' EXIT
    unshare --mount --propagation private tests/packaging/empty-root.sh "$@"
    exit
fi

program=$1 server=$2 emulator=${3:-}
root=$EMPTY_ROOT/root work=$EMPTY_ROOT/work
mkdir -p "$root"/{dev/shm,etc,logs} "$work"
mount -t tmpfs tmpfs "$root/dev/shm"
mount --bind "$root/dev/shm" /dev/shm
cp "$program" "$root/vantricprobe"
run=(/vantricprobe)
serve=("$server")
if [ -n "$emulator" ]; then
    mkdir "$root/emulator"
    ldd "$(command -v "$emulator")" | grep -o '/[^ ]*' | xargs cp -t "$root/emulator"
    cp "$(command -v "$emulator")" "$root/emulator/emulator"
    run=("/emulator/$(basename "$root"/emulator/ld-*)" --library-path /emulator /emulator/emulator /vantricprobe)
    serve=("$emulator" -L /usr/arm-linux-gnueabihf "$server")
fi

# probe [VARIABLE=VALUE...] -- ARGUMENT...
probe() {
    local variables=()
    while [ "$1" != -- ]; do
        variables+=("$1")
        shift
    done
    shift
    env --ignore-environment "${variables[@]}" "$(command -v chroot)" "$root" "${run[@]}" "$@" || echo "status $?"
}

# expect WHAT PATTERN FILE
expect() {
    if ! grep -q -e "$2" "$3"; then
        echo "$1: there is no line $2 in" >&2
        cat "$3" >&2
        exit 1
    fi
    echo "ok: $1"
}

commands_and_answers() {
    cat << 'END'
--help|^Vantric test client
--availablewifi|^getWifiAvailableListBlocking: 
--enablewifi|^setConnectivityType: 
--switchtocarrier|^Connectivity changed
--switchtowifi|^Connectivity changed
--disablewifi|^setConnectivityType: 
--setwifi bench|^Wifi name changed
--setConfig a.cfg|^modem config change: 
--setConfigKeepWifi b.cfg|^modem config change: 
--forgetwifi|^Successfully forgot
--statuscapi|^Status execution time: 
END
}

"${serve[@]}" > "$work/server.log" &
trap 'kill %1' EXIT
await_line "$work/server.log" '^ready$'
while IFS='|' read -r command answer; do
    # shellcheck disable=SC2086 # options and their values
    probe -- $command > "$work/output" 2>&1 < /dev/null
    expect "$command" "$answer" "$work/output"
done < <(commands_and_answers)
timeout --signal=INT 2 chroot "$root" "${run[@]}" --status > "$work/output" || true
expect --status '^HostName: ' "$work/output"
kill %1
wait %1 2> /dev/null || true
trap - EXIT

# Without shared memory every command logs at once that it cannot connect.
umount /dev/shm "$root/dev/shm"
rmdir "$root/dev/shm"
log=(VRAX_LOG_LEVEL=trace VRAX_LOG_ROOT=/logs)
record='<[a-z]*>: '
probe "${log[@]}" VRAX_LOG_TYPE=text_file VRAX_LOG_NAME=file.log -- --statuscapi > /dev/null
expect 'log file' "$record" "$root/logs/file.log"
probe "${log[@]}" VRAX_LOG_TYPE=rolling_text_file VRAX_LOG_NAME=rolling.log -- --statuscapi > /dev/null
expect 'rolling log file' "$record" "$root"/logs/rolling*
probe "${log[@]}" VRAX_LOG_TYPE=console -- --statuscapi > "$work/output"
expect 'log on the console' "$record" "$work/output"
python3 -c 'import socket, sys
log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
log.bind(sys.argv[1])
log.settimeout(20)
print("ready", flush=True)
print(log.recv(4096).decode())' "$root/dev/log" > "$work/syslog" &
await_line "$work/syslog" '^ready$'
probe "${log[@]}" VRAX_LOG_TYPE=syslog -- --statuscapi > /dev/null
wait $!
expect 'system log' '^<[0-9]*>.*vantricprobe\|^<[0-9]*>.*\[[0-9]*\]: ' "$work/syslog"

# A zone 5 hours and 37 minutes from UTC, by the variable and by the file.
echo 'Zone Elsewhere 5:37 - ELS' | zic -d "$work/zones" -
at_that_time() {
    local before after
    before=$(TZ=ELS-5:37 date +%H:%M)
    probe "${log[@]}" VRAX_LOG_TYPE=console "$@" -- --statuscapi > "$work/output"
    after=$(TZ=ELS-5:37 date +%H:%M)
    echo " $before:\| $after:"
}
expect 'time zone by TZ' "$(at_that_time TZ=ELS-5:37)" "$work/output"
cp "$work/zones/Elsewhere" "$root/etc/localtime"
expect 'time zone by /etc/localtime' "$(at_that_time)" "$work/output"
