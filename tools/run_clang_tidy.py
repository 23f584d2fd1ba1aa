#!/usr/bin/env python3
"""Runs clang-tidy over the sources of the program and of the sample maps that a build folder's compile_commands.json
names, as many at a time as there are processors. Tests with their host, fuzzers and benchmarks are left out: their
frameworks' macros have findings."""

import json
import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
# A truth value kept in an int is plain C, as the Windows API has it; a pointer taken for a truth value is not ours.
TRUTH_IN_INT = re.compile(r"implicit conversion (?!.*\*'\)? -> ).*\[readability-implicit-bool-conversion")
FOLDERS = ("platform", "toolbox", "dialogs", "mapdata", "editing", "app", "companion", "samples")


def sources(build):
    entries = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    for entry in entries:
        path = Path(entry["file"])
        name = path.relative_to(ROOT) if path.is_relative_to(ROOT) else Path("elsewhere")
        if name.parts[0] in FOLDERS and not name.is_relative_to("platform/host/headless"):
            yield path


def check(build, path):
    ours = ["--extra-arg=-Wno-unknown-warning-option", "--extra-arg=-Wno-ignored-optimization-argument"]  # g++'s options
    done = subprocess.run(["clang-tidy-16", "--quiet", *ours, "-p", str(build), str(path)], capture_output=True, text=True)
    findings = [line for line in done.stdout.splitlines() if ": error: " in line and not TRUTH_IN_INT.search(line)]
    failed = bool(findings) or (done.returncode != 0 and ": error: " not in done.stdout)
    return path, 1 if failed else 0, "\n".join(findings) or done.stdout


def main():
    build = Path(sys.argv[1]).resolve()
    wanted = [Path(name).resolve() for name in sys.argv[2:]]
    paths = [path for path in sorted(set(sources(build))) if not wanted or path in wanted]
    failed = 0
    with ThreadPoolExecutor(os.cpu_count() or 2) as pool:
        for path, status, report in pool.map(lambda path: check(build, path), paths):
            if status != 0:
                failed += 1
                print(f"{path.relative_to(ROOT)}:\n{report}")
    print(f"clang-tidy: {len(paths)} sources, {failed} with findings")
    return 1 if failed or not paths else 0


if __name__ == "__main__":
    sys.exit(main())
