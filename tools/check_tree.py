#!/usr/bin/env python3
"""Checks what the compiler cannot: that the layers include downwards only, that only the host knows the window
library, that nothing above the Toolbox names a platform rectangle or point, and that no file grew out of hand.

Prints each violation and exits 1 when there is one."""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True  # a check leaves no traces in the tree

import embed_resources  # noqa: E402
import make_menus  # noqa: E402

ROOT = Path(__file__).resolve().parent.parent
LAYERS = ["platform", "toolbox", "dialogs", "mapdata", "editing", "app", "companion", "samples"]
# What the companion asks of the drawing layer beyond the Windows API: the size of art, and pictures of its own.
DOORS = {"companion": "platform/gdi/surface.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s+["<]([^">]+)[">]', re.M)
LIBRARY_INCLUDE = re.compile(r"^(Q[A-Z]\w*|q\w+\.h|QtGui/.*|QtWidgets/.*|QtCore/.*|xcb/.*|X11/.*|pulse/.*)$")
PLATFORM_FORM = re.compile(r"\b(RECT|POINT|LPRECT|LPPOINT)\b")
MAX_LINES = 700


def sources():
    for folder in LAYERS:
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix in (".cpp", ".h"):
                yield path


def without_comments(text):
    return re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.S)


def check_file(path, problems):
    name = path.relative_to(ROOT).as_posix()
    layer = LAYERS.index(name.split("/")[0])
    text = path.read_text(encoding="utf-8")
    for included in INCLUDE.findall(text):
        top = included.split("/")[0]
        if top in LAYERS and LAYERS.index(top) > layer:
            problems.append(f"{name}: includes {included}, which lies above it")
        if top == "platform" and layer > 0 and included not in ("platform/platform.h", DOORS.get(LAYERS[layer])):
            problems.append(f"{name}: includes {included}; the one door is platform/platform.h")
        if LIBRARY_INCLUDE.match(included) and not name.startswith("platform/host/qt/"):
            problems.append(f"{name}: includes {included}; only the desktop host knows the window library")
    if name.startswith("platform/gdi/"):
        for included in INCLUDE.findall(text):
            if included.startswith(("platform/host", "platform/user")):
                problems.append(f"{name}: includes {included}; drawing knows neither windows nor host")
    # LPRECT and LPPOINT arrive in window procedures only as message parameters.
    if layer > LAYERS.index("toolbox"):
        found = PLATFORM_FORM.search(without_comments(text))
        if found and found.group(0) in ("RECT", "POINT"):
            problems.append(f"{name}: names the platform's {found.group(0)}; only platform/ and toolbox/ do")
    lines = text.count("\n")
    if lines > MAX_LINES:
        problems.append(f"{name}: {lines} lines; {MAX_LINES} are enough for one topic")


def check_headers_alone(problems):
    with tempfile.TemporaryDirectory() as build:
        generated = Path(build) / "generated"
        generated.mkdir()
        embed_resources.make_text_names(ROOT / "resources", generated)
        make_menus.make(ROOT / "resources", generated)
        folders = ["-I", str(ROOT), "-I", build]
        for path in sources():
            if path.suffix != ".h" or "host/qt" in path.as_posix():
                continue
            command = ["g++", "-std=c++20", "-fsyntax-only", "-x", "c++", *folders, str(path)]
            done = subprocess.run(command, capture_output=True, text=True)
            if done.returncode != 0:
                first = done.stderr.strip().splitlines()[0] if done.stderr.strip() else "?"
                problems.append(f"{path.relative_to(ROOT)}: does not compile alone: {first}")


def main():
    problems = []
    count = 0
    for path in sources():
        check_file(path, problems)
        count += 1
    check_headers_alone(problems)
    for problem in problems:
        print(problem)
    print(f"checked {count} files, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
