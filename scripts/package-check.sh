#!/usr/bin/env bash
# Makes the Debian packages for both architectures and checks that a second build makes the same bytes and
# that lintian finds nothing. Installs those of this machine into an empty root folder, runs the programs
# there, builds the examples against the library, and removes the packages: no file may remain. Then runs
# the wholly static programs in an empty root folder.
#
# Usage: scripts/package-check.sh
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"

work=$PWD/build/package-check
root=$work/root
# What the packages depend on, taken over from this machine.
dependencies=(libc6 libgcc-s1 libstdc++6)

make_packages() {
    rm -f "build/$1"/*.deb
    cmake --workflow --preset "$1" > "$work/$1.log" 2>&1 || { cat "$work/$1.log"; exit 1; }
    (cd "build/$1" && ls -- *.deb)
}

make_root() {
    mkdir -p "$root"/{dev/shm,tmp,usr/{lib,lib64}} "$root"/var/lib/dpkg/{info,updates,triggers}
    ln -s usr/lib usr/lib64 "$root"
    local package file
    for package in "${dependencies[@]}"; do
        dpkg --status "$package"
        echo
        cp "/var/lib/dpkg/info/$package:$(dpkg --print-architecture).list" "$root/var/lib/dpkg/info"
        dpkg --listfiles "$package" | while read -r file; do
            [ ! -e "$file" ] || echo "${file#/}"
        done | grep . | tar -c -C / --no-recursion -T - | tar -x -C "$root" --keep-directory-symlink
    done > "$root/var/lib/dpkg/status"
}

in_root() {
    dpkg --root="$root" --log=/dev/null "$@"
}

files_of_root() {
    (cd "$root" && find . -path ./var/lib/dpkg -prune -o -print | LC_ALL=C sort)
}

start_simulator() {
    "$@" --duration 60 > "$work/simulator.log" &
    simulator=$!
    await_line "$work/simulator.log" '^ready$'
}

stop_simulator() {
    kill "$simulator"
    wait "$simulator"
}

use_installed_programs() {
    start_simulator chroot "$root" /usr/bin/vantricsim
    chroot "$root" /usr/bin/vantricprobe --enablewifi --availablewifi
    await_line "$work/simulator.log" 'frame 10 '
    stop_simulator
    echo "The server received:"
    cat "$work/simulator.log"
}

# Steps that need a private /dev/shm call this script again inside one.
if [ "${1:-}" = --step ]; then
    "$2"
    exit
fi

[ "$(id -u)" -eq 0 ] || fail "Installing packages into a root folder needs root: run it with sudo."
scripts/install-packages.sh run test arm gate
rm -rf "$work"
mkdir -p "$work"
say "Making packages"
make_packages packages
make_packages armhf-packages

say "Making the packages again"
for preset in packages armhf-packages; do
    (cd "build/$preset" && cpack -B "$work/$preset" > /dev/null)
    for package in "build/$preset"/*.deb; do
        cmp "$package" "$work/$preset/$(basename "$package")"
    done
done
echo "the same bytes"

say "lintian"
lintian --allow-root --tag-display-limit 0 --fail-on error,warning build/packages/*.deb build/armhf-packages/*.deb
echo "no error, no warning"

say "Installing"
make_root
files_of_root > "$work/before.txt"
in_root --install build/packages/*.deb
files_of_root > "$work/installed.txt"
echo "Files:"
comm -13 "$work/before.txt" "$work/installed.txt" | while read -r file; do
    [ -d "$root/$file" ] || echo "${file#.}"
done

say "Using the installed programs"
in_private_shared_memory "$root/dev/shm" scripts/package-check.sh --step use_installed_programs

say "Building the examples against the installed packages"
cmake -S examples -B "$work/examples" -DCMAKE_PREFIX_PATH="$root/usr" > /dev/null
cmake --build "$work/examples"

say "Removing"
in_root --purge vantricctl vantricsim vantricprobe libvantric-dev libvantric1
files_of_root > "$work/after.txt"
diff "$work/before.txt" "$work/after.txt"
echo "nothing is left"

say "Running the wholly static programs in an empty root folder"
cmake --workflow --preset static-release > "$work/static.log" 2>&1 || { cat "$work/static.log"; exit 1; }
cmake --workflow --preset armhf-static > "$work/static.log" 2>&1 || { cat "$work/static.log"; exit 1; }
tests/packaging/empty-root.sh build/static-release/bin/vantricprobe build/packages/bin/vantricsim
tests/packaging/empty-root.sh build/armhf-static/bin/vantricprobe build/armhf-packages/bin/vantricsim qemu-arm
