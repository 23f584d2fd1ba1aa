#!/bin/sh
# make_package.sh BUILD_FOLDER: makes the Debian package of a finished build in that folder and checks it.
set -eu
if [ $# -ne 1 ]; then
    echo "usage: make_package.sh BUILD_FOLDER" >&2
    exit 2
fi
here=$(cd "$(dirname "$0")" && pwd)
cd "$1"
rm -f kestrel-map-tool_*.deb
umask 022 # the package's files are everyone's to read
cpack --config CPackConfig.cmake
rm -rf _CPack_Packages install_manifest.txt
for package in kestrel-map-tool_*.deb; do
    "$here/check_packaging.sh" "$package"
    echo "Made $PWD/$package"
done
