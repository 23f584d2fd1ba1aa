#!/bin/sh
# install_packages.sh [LIST]: installs the Debian packages of a list in this folder (packages.txt) that are missing.
# Needs root only when something is missing.
set -eu
cd "$(dirname "$0")"
missing=""
for package in $(grep -v '^#' "${1:-packages.txt}"); do
    if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)" != installed ]; then
        missing="$missing $package"
    fi
done
[ -n "$missing" ] || exit 0
echo "Installing:$missing"
if [ "$(id -u)" -ne 0 ]; then
    echo "These packages are missing; run as root, or: apt-get install$missing" >&2
    exit 1
fi
export DEBIAN_FRONTEND=noninteractive
apt-get update -q
# shellcheck disable=SC2086
apt-get install -y -q --no-install-recommends $missing
