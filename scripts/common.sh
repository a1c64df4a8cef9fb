# Shared by the scripts of this folder; to be sourced. Goes to the root of the tree and offers
#   say TEXT...              tells what a long step is doing
#   show_help_and_exit ...   prints the script's leading comment when --help is among the arguments
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() {
    printf '\n== %s\n' "$*"
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
