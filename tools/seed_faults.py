#!/usr/bin/env python3
"""Puts the faults of tools/faults.txt into a copy of the program, one at a time, builds and runs the unit tests and
tells which faults they catch. A failed test, a crash and a test that does not end all count as caught.

Exits 1 when a fault survived or could not be tried: a fault whose code does not stand in its file exactly once, or
does not compile, is an error of the list."""

import argparse
import os
import re
import shutil
import signal
import subprocess
import sys
import time
from collections import Counter
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parent.parent
WORK = ROOT / "build-faults"
TREE = WORK / "tree"
PLAIN = WORK / "build"
SANITIZED = WORK / "build-sanitize"


class Fault(NamedTuple):
    file: str
    what: str
    old: str
    new: str


def read_faults():
    faults = []
    file = ""
    for line in (ROOT / "tools/faults.txt").read_text(encoding="utf-8").splitlines():
        if line.startswith("    "):
            what, change = line.strip().split(": ", 1)
            old, new = change.split("=>", 1)
            faults.append(Fault(file, what, old.strip(), new.strip()))
        elif line and not line.startswith("#"):
            file = line
    return faults


def copy_tree():
    """Brings the copy up to date; a file that is the same keeps its time, so that it is not built again."""
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True, capture_output=True)
    names = {name for name in listed.stdout.decode().splitlines() if (ROOT / name).is_file()}
    for path in [path for path in TREE.rglob("*") if path.is_file()]:
        if path.relative_to(TREE).as_posix() not in names:
            path.unlink()
    for name in names:
        source, target = ROOT / name, TREE / name
        if not target.is_file() or source.read_bytes() != target.read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, target)


def build(build_folder, jobs):
    """The output of a failed build, or None."""
    commands = [["cmake", "--build", str(build_folder), f"-j{jobs}", "--target", "unit_tests"]]
    if not (build_folder / "build.ninja").exists():
        sanitizes = build_folder == SANITIZED
        options = ["-DCMAKE_CXX_COMPILER=clang++", "-DKESTREL_SANITIZE=ON"] if sanitizes else ["-DCMAKE_CXX_COMPILER=g++"]
        options += ["-DCMAKE_CXX_FLAGS=-O1 -w", "-DKESTREL_DESKTOP=OFF"]
        commands.insert(0, ["cmake", "-G", "Ninja", "-S", str(TREE), "-B", str(build_folder), *options])
    for command in commands:
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if done.returncode != 0:
            return done.stdout
    return None


def run_tests(build_folder, limit):
    """What caught the fault, or None."""
    command = ["./unit_tests", "--gtest_brief=1", "--gtest_fail_fast"]
    with subprocess.Popen(command, cwd=build_folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          errors="replace", start_new_session=True) as tests:
        try:
            output, _ = tests.communicate(timeout=limit)
        except subprocess.TimeoutExpired:
            os.killpg(tests.pid, signal.SIGKILL)
            return "a test that does not end"
    failed = re.search(r"^\[  FAILED  \] ([\w.]+)", output, re.M)
    if failed:
        return failed.group(1)
    return f"a crash ({tests.returncode})" if tests.returncode != 0 else None


def try_fault(fault, build_folder, jobs, limit):
    """How it went, caught, survived or error, and what there is to say of it."""
    path = TREE / fault.file
    text = path.read_text(encoding="utf-8")
    found = list(re.finditer(r"\s+".join(map(re.escape, fault.old.split())), text))
    if len(found) != 1:
        return "error", f"found {len(found)} times"
    path.write_text(text[:found[0].start()] + fault.new + text[found[0].end():], encoding="utf-8")
    try:
        output = build(build_folder, jobs)
        if output is not None:
            return "error", next((line for line in output.splitlines() if "error" in line), "the build failed")
        caught = run_tests(build_folder, limit)
    finally:
        path.write_text(text, encoding="utf-8")
    return ("caught", caught) if caught else ("survived", "")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("word", nargs="*", help="only the faults whose file or description has one of these")
    parser.add_argument("--list", action="store_true", help="name the faults and try none")
    parser.add_argument("--sanitize", action="store_true", help="build with the sanitizers, which also see leaks")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    arguments = parser.parse_args()
    words = arguments.word or [""]
    faults = [fault for fault in read_faults() if any(word in f"{fault.file}: {fault.what}" for word in words)]
    if arguments.list:
        print("\n".join(f"{fault.file}: {fault.what}" for fault in faults))
        return 0

    copy_tree()
    build_folder = SANITIZED if arguments.sanitize else PLAIN
    output = build(build_folder, arguments.jobs)
    began = time.monotonic()
    failed = "the build failed" if output is not None else run_tests(build_folder, None)
    if failed:
        print(f"{output or ''}Without a fault: {failed}")
        return 1
    limit = max(180, 10 * (time.monotonic() - began))
    results = []
    for fault in faults:
        result, remark = try_fault(fault, build_folder, arguments.jobs, limit)
        results.append((result, fault))
        print(f"{result:8}  {fault.file}: {fault.what}{f'  [{remark}]' if remark else ''}", flush=True)
    counts = Counter(result for result, _ in results)
    print(f"{len(results)} faults: " + ", ".join(f"{counts[name]} {name}" for name in ("caught", "survived", "error")))
    for name in ("survived", "error"):
        for _, fault in [entry for entry in results if entry[0] == name]:
            print(f"{name}: {fault.file}: {fault.what}")
    return 0 if counts["caught"] == len(results) else 1


if __name__ == "__main__":
    sys.exit(main())
