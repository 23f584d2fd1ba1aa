#!/bin/sh
# run_journey.sh NAME OUTPUT_FOLDER: runs one journey of the real program on a private virtual display with a window
# manager, and leaves its maps and screenshots in the folder. The status is the journey's; 124 when time ran out.
set -u
here=$(cd "$(dirname "$0")" && pwd)
name=$1
mkdir -p "$2"
folder=$(cd "$2" && pwd)
rm -rf "$folder/home" "$folder/runtime" "$folder/maps" "$folder/screen"
rm -f "$folder"/*.png "$folder"/*.txt
mkdir "$folder/home" "$folder/screen"
mkdir -m 700 "$folder/runtime"

server=
manager=
finish() {
    trap - EXIT
    for process in $manager $server; do
        kill "$process" 2>/dev/null
        wait "$process" 2>/dev/null
    done
    rm -rf "$folder/home" "$folder/runtime" "$folder/screen"
}
trap finish EXIT
trap 'exit 143' HUP INT TERM

# Nothing of the user's own desktop reaches the program.
unset WAYLAND_DISPLAY XAUTHORITY DBUS_SESSION_BUS_ADDRESS PULSE_SERVER XDG_SESSION_TYPE XDG_CURRENT_DESKTOP
unset QT_QPA_PLATFORM QT_QPA_PLATFORMTHEME QT_STYLE_OVERRIDE QT_SCALE_FACTOR QT_FONT_DPI
export HOME="$folder/home" XDG_CONFIG_HOME="$folder/home" XDG_CACHE_HOME="$folder/home"
export XDG_RUNTIME_DIR="$folder/runtime" LANG=C.UTF-8 LC_ALL=C.UTF-8

# The screen's pixels lie in a file, where the journey reads them; the pointer is not drawn into them.
mkdir "$folder/screen/pixels"
Xvfb -displayfd 3 -screen 0 1280x1024x24 -fbdir "$folder/screen/pixels" -nocursor -noreset -nolisten tcp \
    3>"$folder/screen/display" >"$folder/screen/server.txt" 2>&1 &
server=$!
export SERVER_PROCESS=$server
tries=0
until [ -s "$folder/screen/display" ]; do
    tries=$((tries + 1))
    if [ "$tries" -gt 200 ] || ! kill -0 "$server" 2>/dev/null; then
        echo "No virtual display came up:" >&2
        cat "$folder/screen/server.txt" >&2
        exit 1
    fi
    sleep 0.05
done
DISPLAY=:$(cat "$folder/screen/display")
export DISPLAY
openbox --config-file "$here/support/openbox.xml" >"$folder/screen/manager.txt" 2>&1 &
manager=$!
export WINDOW_MANAGER_PROCESS=$manager

timeout -k 5 120 python3 -B "$here/$name.py" "$folder" "$folder/screen/pixels/Xvfb_screen0"
