#!/usr/bin/env bash
# Boots a 32-bit ARM Linux in a virtual machine, installs our armhf packages there and runs all tests
# against the installed programs, on that kernel; prints what the machine printed.
#
# Usage: scripts/device-test.sh [CASES]
#   CASES  a regular expression; only the cases whose names match it are run
#
# Kernel and packages of the machine are Debian's for armhf; the script downloads them if they are not in
# build/device/packages yet. The machine has no network, and its file system lies in its memory.
# Ends after 30 minutes at the latest.
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"
cases=${1:-.}

longest_run=30m
device=$PWD/build/device
packages=$device/packages
root=$device/root
tests=build/armhf
# ctest comes with cmake.
wanted=(bash cmake coreutils diffutils dpkg grep libc-bin libstdc++6 mount python3-minimal sed util-linux)

scripts/install-packages.sh run arm release

say "Building (armhf)"
cmake --preset armhf --log-level=WARNING
cmake --build --preset armhf
rm -f build/armhf-packages/*.deb
cmake --workflow --preset armhf-packages
cmake --workflow --preset armhf-static

# apt for the device's architecture, with its own state, so that this machine's packages do not change.
device_apt() {
    apt-get -qq -o Dir::Etc="$device/apt" -o Dir::State="$device/apt" -o Dir::State::status="$device/apt/status" \
        -o Dir::Cache="$device/apt" -o Dir::Cache::archives="$packages" -o APT::Sandbox::User=root \
        -o APT::Architecture=armhf -o APT::Architectures=armhf "$@"
}

fetch_packages() {
    say "Fetching Debian's packages for armhf"
    rm -rf "$packages" "$device/apt"
    mkdir -p "$packages/partial" "$device"/apt/{sources.list.d,preferences.d,apt.conf.d} "$device/apt/lists/partial"
    touch "$device/apt/status"
    echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] http://deb.debian.org/debian bookworm main" \
        > "$device/apt/sources.list"
    device_apt update
    device_apt install --download-only -y --no-install-recommends "${wanted[@]}" > /dev/null
    local kernel
    kernel=$(apt-cache -o Dir::State="$device/apt" -o Dir::State::status="$device/apt/status" -o Dir::Cache="$device/apt" \
        -o Dir::Etc="$device/apt" -o APT::Architecture=armhf -o APT::Architectures=armhf \
        depends linux-image-armmp-lpae | sed -n 's/^ *Depends: \(linux-image-.*\)/\1/p')
    (cd "$packages" && device_apt download "$kernel")
    touch "$packages/complete"
}

# Writes dpkg's list of a package's files, under the name that dpkg expects.
list_files() {
    local name
    name=$(dpkg-deb --field "$1" Package)
    [ "$(dpkg-deb --field "$1" Multi-Arch)" != same ] || name+=:armhf
    dpkg-deb --fsys-tarfile "$1" | tar -t | sed -e 's|^\.||' -e 's|/$||' -e 's|^$|/.|' > "$root/var/lib/dpkg/info/$name.list"
}

# Makes a root folder as if the packages had been installed: unpacks them and records them as installed.
make_root() {
    rm -rf "$root"
    mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates" "$root"/{proc,sys,dev,tmp,run,packages}
    local package
    for package in "$packages"/*.deb; do
        case $(basename "$package") in
            linux-image-*) dpkg-deb --fsys-tarfile "$package" | tar -x -C "$device" --wildcards --strip-components=2 './boot/vmlinuz-*' ;;
            *)
                dpkg-deb --extract "$package" "$root"
                list_files "$package"
                dpkg-deb --field "$package" | sed '/^Package:/a Status: install ok installed'
                echo
                ;;
        esac
    done > "$root/var/lib/dpkg/status"
    : > "$root/var/lib/dpkg/available"
    printf 'root:x:0:0:root:/root:/bin/bash\nnobody:x:65534:65534::/:/bin/false\n' > "$root/etc/passwd"
    ln -sf bash "$root/bin/sh"
    rm -rf "$root"/usr/share/{doc,man,locale,info}
    cp build/armhf-packages/{libvantric1,vantricprobe,vantricsim}_*.deb "$root/packages"
    cp tests/device/init "$root/init"
}

# The tests find programs and data under the paths that they were built with. There, links lead to
# what is installed, and ctest starts the tests without the emulator.
add_tests() {
    local source=$PWD
    local target=$root$source
    mkdir -p "$target/$tests/bin"
    (cd "$tests" && find . \( -name '*.cmake' -o \( -type f -perm -u+x -not -name '*.cmake' \) -o -name '*.so' \) \
        -not -path '*/CMakeFiles/*' -not -path './lib/*' -not -path './tests/install/*/*' -print0 | cpio --quiet --null -pdm "$target/$tests")
    find "$target/$tests" -type f -not -name '*.cmake' -exec arm-linux-gnueabihf-strip {} +
    find "$target/$tests" -name '*.cmake' -exec sed -i -e "s|/usr/bin/qemu-arm\" \"-L\" \"/usr/arm-linux-gnueabihf\" \"||; s|/usr/bin/qemu-arm -L /usr/arm-linux-gnueabihf ||; /EmulatorExceptions/d" {} +
    ln -sf /usr/bin/vantricprobe /usr/bin/vantricsim "$target/$tests/bin"
    cp build/armhf-static/bin/vantricprobe "$root/packages/vantricprobe-static"
    git ls-files scripts/common.sh tests/packaging README.md docs sim/README.md tests/images tests/transcripts sim/scenarios fuzz/corpus | cpio --quiet -pdm "$target"
}

[ -e "$packages/complete" ] || fetch_packages
say "Making the machine's root file system"
make_root
add_tests
(cd "$root" && find . -print0 | cpio --quiet --null -o -H newc --owner 0:0) > "$device/root.cpio"
du -sh "$device/root.cpio"

say "Booting"
log=$device/console.log
timeout --kill-after=10 "$longest_run" qemu-system-arm -machine virt -cpu cortex-a15 -smp 2 -m 2560 \
    -kernel "$device"/vmlinuz-* -initrd "$device/root.cpio" -nic none -nographic -no-reboot \
    -append "console=ttyAMA0 quiet panic=-1 device_time=$(date +%s) device_tests=$PWD/$tests device_cases=$cases" \
    < /dev/null | tee "$log"
# The console's lines end in "\r\n".
grep -q '^device-test: passed' "$log"
