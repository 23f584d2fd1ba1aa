#!/bin/sh
# Opens the editor on the sample maps; where there is no display, drives a real editing session on a virtual one and
# leaves the saved map and screenshots behind.
set -eu
cd "$(dirname "$0")/.."
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    echo "The sample maps are in build/samples: choose File > Open Map."
    cd build/samples
    exec ../kestrel-map-tool
fi
echo "There is no display here: driving an editing session on a virtual one instead."
exec tests/journeys/run_journey.sh first_session build/session
