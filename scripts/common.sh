# The scripts of this folder source this file. It changes to the root of the tree and offers
#   say TEXT...              prints the heading of a step
#   show_help_and_exit_on_demand ARGUMENT...
#                            prints the script's leading comment when --help is among the arguments
#   in_private_shared_memory FOLDER COMMAND...
#                            runs a command for which FOLDER, usually /dev/shm, is empty and private
#   await_line FILE PATTERN  waits, for at most 10 seconds, until the file has a line that matches
#   fail TEXT...             ends the script with one sentence, which says what to do
#   step COMMAND...          runs a command and records its duration; a failure ends the script
#   print_durations          prints the durations of all steps
set -euo pipefail
script=$(readlink -f "$0")
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
            sed -n '2,/^[^#]/{/^#/s/^# \{0,1\}//p}' "$script"
            exit 0
        fi
    done
}

in_private_shared_memory() {
    local folder=$1 namespace=(unshare --mount --propagation private)
    shift
    if [ "$(id -u)" -ne 0 ]; then
        namespace+=(--user --map-root-user)
    fi
    "${namespace[@]}" true 2> /dev/null ||
        fail "This machine refuses a private $folder: run as root, or allow user namespaces (in a container: --cap-add SYS_ADMIN)."
    "${namespace[@]}" sh -c 'mount -t tmpfs tmpfs "$0" && exec "$@"' "$folder" "$@"
}

await_line() {
    local tries
    for tries in $(seq 200); do
        if grep -q "$2" "$1" 2> /dev/null; then
            return
        fi
        sleep 0.05
    done
    echo "No line of $1 matched $2 within 10 seconds." >&2
    exit 1
}

durations=()
step() {
    local start=$SECONDS
    say "$(date +%T) $*"
    "$@"
    durations+=("$(printf '%4d s  %s' $((SECONDS - start)) "$*")")
}

print_durations() {
    say "$(date +%T) Durations, $SECONDS s in all"
    printf '%s\n' "${durations[@]}"
}
