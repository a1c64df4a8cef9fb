#!/usr/bin/env bash
# Installs the Debian packages that scripts/packages.txt lists and this machine lacks.
# Runs apt-get as root, or through sudo.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

command -v dpkg-query apt-get > /dev/null ||
    fail "This script serves Debian; elsewhere, install what scripts/packages.txt lists by hand."
mapfile -t packages < <(grep -v '^#' scripts/packages.txt)
missing=()
for package in "${packages[@]}"; do
    if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
        missing+=("$package")
    fi
done
if [ "${#missing[@]}" -eq 0 ]; then
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
    command -v sudo > /dev/null || fail "Run this as root, or install sudo: it has to install ${missing[*]}."
fi
say "Installing ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" > /dev/null
