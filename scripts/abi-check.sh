#!/usr/bin/env bash
# Compares the binary interface of libvantric.so, on both architectures, with the one that is checked
# in under packaging/abi: exported symbols, sizes and offsets, the order of virtual functions.
#
# Usage: scripts/abi-check.sh [--accept]
#   --accept  after an intended change: makes today's interface the checked-in one and shows the
#             difference; see packaging/README.md for what that means for the version number
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

declare -A toolchains=([amd64]= [armhf]=cmake/ArmHardFloatToolchain.cmake)
declare -A tools=([amd64]= [armhf]=arm-linux-gnueabihf-)
baseline=packaging/abi

# The interface is read from debug information, whose paths are made the same everywhere.
build() {
    local folder=build/abi/$1 toolchain=()
    [ -z "${toolchains[$1]}" ] || toolchain=(--toolchain "${toolchains[$1]}")
    cmake -S . -B "$folder" -G Ninja "${toolchain[@]}" -DCMAKE_BUILD_TYPE=Debug -DBUILD_SHARED_LIBS=ON \
        -DCMAKE_CXX_FLAGS="-ffile-prefix-map=$PWD=." -DVANTRIC_BUILD_TESTS=OFF -DVANTRIC_BUILD_SIMULATOR=OFF \
        --log-level=WARNING > /dev/null
    cmake --build "$folder" --target vantric > "$folder/build.log" || { cat "$folder/build.log"; exit 1; }
    rm -rf "$folder/prefix"
    cmake --install "$folder" --component development --prefix "$folder/prefix" > /dev/null
}

# What the library offers, as far as the installed headers tell of it.
describe() {
    local folder=build/abi/$1
    abidw --headers-dir "$folder/prefix/include" --drop-private-types --exported-interfaces-only \
        --suppressions "$baseline/not-ours.ini" --no-show-locs --no-corpus-path --no-comp-dir-path --no-elf-needed \
        --type-id-style hash --out-file "$folder/libvantric.abi" "$folder/lib/libvantric.so"
    # 64-bit integers have another name on each architecture.
    "${tools[$1]}nm" --dynamic --defined-only --demangle --format=posix "$folder/lib/libvantric.so" |
        sed 's/@@VANTRIC_1 [A-Z] .*//; /^VANTRIC_1 A/d; s/long long/long/g' |
        LC_ALL=C sort --unique > "$folder/exported-symbols.txt"
}

accept() {
    cp "build/abi/$1/libvantric.abi" "$baseline/libvantric.$1.abi"
    cp "build/abi/$1/exported-symbols.txt" "$baseline/exported-symbols.txt"
}

compare() {
    say "$1"
    diff --unified=0 "$baseline/exported-symbols.txt" "build/abi/$1/exported-symbols.txt" &&
        abidiff --suppressions "$baseline/not-ours.ini" "$baseline/libvantric.$1.abi" "build/abi/$1/libvantric.abi" &&
        echo "The interface is the checked-in one: $(wc -l < "$baseline/exported-symbols.txt") exported names."
}

scripts/install-packages.sh
status=0
for architecture in amd64 armhf; do
    build "$architecture"
    describe "$architecture"
    if [ "${1:-}" = --accept ]; then
        accept "$architecture"
    else
        compare "$architecture" || status=1
    fi
done
[ "${1:-}" != --accept ] || git diff --stat -- "$baseline"
exit "$status"
