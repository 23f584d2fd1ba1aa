#!/bin/sh
# build_guide.sh BUILD_FOLDER: makes "BUILD_FOLDER/Guide - Map Tool.pdf" from docs/guide, when a source of it is newer.
# The same sources make the same file.
set -eu
if [ $# -ne 1 ]; then
    echo "usage: build_guide.sh BUILD_FOLDER" >&2
    exit 2
fi
mkdir -p "$1"
build=$(cd "$1" && pwd)
cd "$(dirname "$0")/.."
guide="$build/Guide - Map Tool.pdf"
if [ -f "$guide" ] && [ -z "$(find docs/guide docs/images tools/build_guide.sh -newer "$guide" -type f)" ]; then
    exit 0
fi
if ! command -v asciidoctor-pdf >/dev/null; then
    echo "The guide is made with asciidoctor-pdf: install the package ruby-asciidoctor-pdf." >&2
    exit 1
fi
# A warning, such as a picture that is not there, is a fault of the guide. What fails leaves no half-made guide behind.
made="$build/guide.making.pdf"
trap 'rm -f "$made"' EXIT
LC_ALL=C.UTF-8 TZ=UTC asciidoctor-pdf --failure-level=WARN -a reproducible -a pdf-themesdir=docs/guide \
    -a pdf-theme=guide -o "$made" docs/guide/guide.adoc
mv "$made" "$guide"
echo "Made $guide"
