# Shared by the scripts of this folder; to be sourced. Goes to the root of the tree and offers
#   say TEXT...              tells what a long step is doing
#   show_help_and_exit_on_demand ARGUMENT...
#                            prints the script's leading comment when --help is among the arguments
#   in_private_shared_memory FOLDER COMMAND...  runs a command for which FOLDER, /dev/shm as a rule, is
#                            empty and nobody else's
#   await_line FILE PATTERN  waits, for at most 10 seconds, until the file has a line that matches
#   fail TEXT...             ends the script with one sentence, which says what to do
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() {
    printf '\n== %s\n' "$*"
}

fail() {
    printf '%s\n' "$*" >&2
    exit 2
}

show_help_and_exit_on_demand() {
    local argument
    for argument in "$@"; do
        if [ "$argument" = -h ] || [ "$argument" = --help ]; then
            sed -n '2,/^[^#]/{/^#/s/^# \{0,1\}//p}' "$0"
            exit 0
        fi
    done
}

in_private_shared_memory() {
    local folder=$1 as_other_user=()
    shift
    if [ "$(id -u)" -ne 0 ]; then
        as_other_user=(--user --map-root-user)
    fi
    unshare "${as_other_user[@]}" --mount --propagation private \
        sh -c 'mount -t tmpfs tmpfs "$0" && exec "$@"' "$folder" "$@"
}

await_line() {
    local tries
    for tries in $(seq 200); do
        if grep -q "$2" "$1" 2> /dev/null; then
            return
        fi
        sleep 0.05
    done
    echo "There never was a line $2 in $1" >&2
    exit 1
}
