#!/usr/bin/env bash
# Builds what is shipped, for both architectures, and prints each file's size and the newest version of
# the C library's symbols that it asks for; fails when one is above packaging/size-budget.txt, or when a
# shared library exports other names than packaging/exported-names.txt lists.
#
# Usage: scripts/size-check.sh [PRESET...]
#   PRESET  one that the budget names; all of them when none is named
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"

budget_file=packaging/size-budget.txt
mapfile -t presets < <(grep -v -e '^#' -e '^$' "$budget_file" | cut -d ' ' -f 1 | sort -u)
if [ "$#" -gt 0 ]; then
    for preset in "$@"; do
        [[ " ${presets[*]} " = *" $preset "* ]] || fail "$budget_file has no preset $preset; see scripts/size-check.sh --help."
    done
    presets=("$@")
fi

tool() {
    local prefix=
    [[ $1 != armhf-* ]] || prefix=arm-linux-gnueabihf-
    "$prefix$2" "${@:3}"
}

# The largest resident size of the program in KiB, as the kernel reports it: the median of some runs,
# because the kernel may map neighbouring pages too, and counts in batches.
peak_memory() {
    local run
    for run in {1..41}; do
        { command time --format %M "$1" --help > /dev/null; } 2>&1
    done | sort --numeric-sort | sed -n 21p
}

# The newest GLIBC_x.y among the symbols that a file asks for. Packed relocations ask for 2.36 under a name.
newest_glibc() {
    local version
    version=$(tool "$1" readelf --version-info --wide "$2" | sed 's/GLIBC_ABI_DT_RELR/GLIBC_2.36/' |
        sed -n 's/.*Name: GLIBC_\([0-9.]*\).*/\1/p' | sort --version-sort | tail -n 1)
    echo "${version:-none}"
}

# Prints a line of the table; fails above the budget.
check() {
    local preset=$1 what=$2 budget=$3 allowed_glibc=$4 size glibc=- file status=0
    if [ "$what" = memory ]; then
        size=$(peak_memory "build/$preset/bin/vantricprobe")
    else
        file=build/$preset/bin/$what
        [ -e "$file" ] || file=$(readlink --canonicalize-existing "build/$preset/lib/$what") ||
            fail "The build of $preset has no $what, which $budget_file names."
        tool "$preset" strip -o "$file.stripped" "$file"
        size=$(stat --format %s "$file.stripped")
        glibc=$(newest_glibc "$preset" "$file")
    fi
    printf '%-16s %-14s %8s %8s %6s %8s\n' "$preset" "$what" "$size" "$budget" "$glibc" "$allowed_glibc"
    if [ "$size" -gt "$budget" ]; then
        echo "$preset $what is above its budget by $((size - budget))" >&2
        status=1
    fi
    if ! printf '%s\n' "${glibc/none/0}" "${allowed_glibc/none/0}" | sort --version-sort --check=quiet; then
        echo "$preset $what asks for version $glibc of the C library; $allowed_glibc is allowed" >&2
        status=1
    fi
    if [[ $what = *.so ]]; then
        cmake -D NM="$(tool "$preset" gcc -print-prog-name=nm)" -D LIBRARY="$file" -P tests/install/ExportedNames.cmake || status=1
    fi
    return "$status"
}

scripts/install-packages.sh run arm gate
mkdir -p build
for preset in "${presets[@]}"; do
    say "Building ($preset)"
    cmake --preset "$preset" --log-level=WARNING > /dev/null
    mapfile -t targets < <(sed -n "s/^$preset \(vantric[a-z]*\) .*/\1/p" "$budget_file")
    cmake --build --preset "$preset" --target "${targets[@]}" > "build/$preset.log" || { cat "build/$preset.log"; exit 1; }
done

say "Sizes in bytes (memory: KiB), newest symbol version of the C library"
printf '%-16s %-14s %8s %8s %6s %8s\n' preset file size budget glibc allowed
status=0
while read -r preset what budget glibc; do
    if [[ " ${presets[*]} " = *" $preset "* ]]; then
        check "$preset" "$what" "$budget" "$glibc" || status=1
    fi
done < <(grep -v -e '^#' -e '^$' "$budget_file")
exit "$status"
