#!/usr/bin/env python3
"""Runs clang-tidy over every source of the tree that a build folder's compile_commands.json names, two at a time."""

import json
import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def sources(build):
    entries = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    for entry in entries:
        path = Path(entry["file"])
        if path.is_relative_to(ROOT) and not path.is_relative_to(build):
            yield path


def check(build, path):
    done = subprocess.run(["clang-tidy", "--quiet", "--extra-arg=-Wno-unknown-warning-option", "-p", str(build), str(path)], capture_output=True, text=True)
    return path, done.returncode, done.stdout


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
