#!/usr/bin/env bash
# Builds the release for both architectures, with shared and with static libraries, and prints the
# sizes of the library and of vantricprobe; fails when one is above packaging/size-budget.txt.
#
# Usage: scripts/size-check.sh [ARCHITECTURE...]
#   ARCHITECTURE  armhf or amd64; both when none is named
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

budget_file=packaging/size-budget.txt
declare -A presets=([armhf]=armhf-release [amd64]=release)
declare -A tools=([armhf]=arm-linux-gnueabihf- [amd64]=)
declare -A shared=([shared]=ON [static]=OFF)

architectures=("$@")
[ "$#" -gt 0 ] || architectures=(armhf amd64)
for architecture in "${architectures[@]}"; do
    if [ -z "${presets[$architecture]:-}" ]; then
        echo "There is no architecture $architecture; see scripts/size-check.sh --help" >&2
        exit 2
    fi
done

build() {
    local architecture=$1 runtime=$2
    cmake --preset "${presets[$architecture]}" -B "build/size/$architecture-$runtime" --log-level=WARNING \
        -DBUILD_SHARED_LIBS="${shared[$runtime]}" -DVANTRIC_BUILD_SIMULATOR=OFF
    cmake --build "build/size/$architecture-$runtime" > "build/size/$architecture-$runtime.log" \
        || { cat "build/size/$architecture-$runtime.log"; exit 1; }
}

# Kilobytes that the program has in memory at the most, by the kernel's account: the median of some runs,
# because the kernel maps what lies beside a page as it likes and counts in batches.
peak_memory() {
    local run
    for run in {1..41}; do
        { command time --format %M "$1" --help > /dev/null; } 2>&1
    done | sort --numeric-sort | sed -n 21p
}

# Prints a line of the table; fails above the budget.
check() {
    local architecture=$1 runtime=$2 what=$3 budget=$4
    local folder=build/size/$architecture-$runtime text=- data=- size file
    case $what in
        memory) size=$(peak_memory "$folder/bin/vantricprobe") ;;
        *)
            file=$folder/bin/$what
            [ -e "$file" ] || file=$(readlink -f "$folder/lib/$what")
            "${tools[$architecture]}strip" -o "$file.stripped" "$file"
            read -r text data < <("${tools[$architecture]}size" "$file.stripped" | awk 'NR == 2 {print $1, $2}')
            size=$(stat --format %s "$file.stripped")
            ;;
    esac
    printf '%-8s %-8s %-16s %8s %8s %10s %10s\n' "$architecture" "$runtime" "$what" "$text" "$data" "$size" "$budget"
    if [ "$size" -gt "$budget" ]; then
        echo "$architecture $runtime $what is above its budget by $((size - budget))" >&2
        return 1
    fi
}

scripts/install-packages.sh
mkdir -p build/size
for architecture in "${architectures[@]}"; do
    say "Building the release for $architecture"
    build "$architecture" shared
    build "$architecture" static
done

say "Sizes in bytes (memory: KiB)"
printf '%-8s %-8s %-16s %8s %8s %10s %10s\n' machine runtime what text data stripped budget
status=0
while read -r architecture runtime what budget; do
    if [[ " ${architectures[*]} " = *" $architecture "* ]]; then
        check "$architecture" "$runtime" "$what" "$budget" || status=1
    fi
done < <(grep -v -e '^#' -e '^$' "$budget_file")
exit "$status"
