#!/usr/bin/env bash
# Makes the exchange's bytes on both architectures from the same operations and compares them, with
# each other and with the checked-in images of tests/images.
#
# Usage: scripts/compare-images.sh [--accept]
#   --accept  after an intended change, which no deployed server understands: rewrites the images
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

scripts/install-packages.sh
for preset in dev armhf; do
    say "Building ($preset)"
    cmake --preset "$preset" --log-level=WARNING
    cmake --build --preset "$preset" --target write_images
    rm -rf "build/images/$preset"
    mkdir -p "build/images/$preset"
done

say "Comparing"
build/dev/tests/write_images build/images/dev
qemu-arm -L /usr/arm-linux-gnueabihf build/armhf/tests/write_images build/images/armhf
if [ "${1:-}" = --accept ]; then
    cp build/images/dev/*.bin tests/images
fi
status=0
for image in tests/images/*.bin build/images/*/*.bin; do
    name=$(basename "$image")
    cmp "tests/images/$name" "$image" || status=1
done
for image in tests/images/*.bin; do
    name=$(basename "$image")
    cmp "build/images/dev/$name" "build/images/armhf/$name" || status=1
    printf '%-36s %6d bytes\n' "$name" "$(stat --format %s "$image")"
done
exit "$status"
