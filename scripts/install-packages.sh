#!/usr/bin/env bash
# Installs the Debian packages of the named groups that this machine lacks. Runs apt-get as root, or
# through sudo. scripts/packages.txt lists the groups.
#
# Usage: scripts/install-packages.sh [GROUP...]
#   GROUP  run (builds the programs), test, arm, bench, gate or release; without one: run and test
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"
[ $# -gt 0 ] || set -- run test

packages_of() {
    sed -n "/^\[$1\]$/,/^\[/{/^[a-z]/p}" scripts/packages.txt
}

command -v dpkg-query apt-get > /dev/null ||
    fail "This script needs Debian; on another system, install the packages of scripts/packages.txt yourself."
missing=()
for group in "$@"; do
    mapfile -t packages < <(packages_of "$group")
    [ "${#packages[@]}" -ne 0 ] || fail "There is no group of packages '$group'; see scripts/install-packages.sh --help."
    for package in "${packages[@]}"; do
        if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2> /dev/null)" != installed ]; then
            missing+=("$package")
        fi
    done
done
if [ "${#missing[@]}" -ne 0 ]; then
    as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        as_root=(sudo)
        command -v sudo > /dev/null || fail "Run this as root, or install sudo: it has to install ${missing[*]}."
    fi
    say "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" > /dev/null
fi
dpkg --compare-versions "$(cmake --version | sed -n '1s/.* //p')" ge 3.25 ||
    fail "The presets need CMake 3.25 or later, and $(command -v cmake) is older: install a newer one."
