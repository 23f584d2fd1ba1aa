#!/usr/bin/env python3
"""Counts how often each of the program's sounds is heard to its end, and how long its call takes, on sound servers of
its own with a null sink. Needs pulseaudio, pulseaudio-utils, and pipewire-pulse with wireplumber and dbus, which the
build does not: a server that is not installed is left out. hear_sounds.py [BUILD_FOLDER], after a build."""

import array
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
TIMES = 10
MOST_AFTER = 60  # milliseconds that a call may last beyond its sound
RATE, QUIET, GAP = 22050, 200, 2000  # samples; louder is sound; so many quiet ones end it
DRIVER = """
#include "platform/host/qt/sound_pulse.h"
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <thread>
int main(int, char** arguments)
{
    std::ifstream file(arguments[1], std::ios::binary);
    const std::string wave(std::istreambuf_iterator<char>(file), {});
    for (int i = 0; i < std::atoi(arguments[2]); i++) {
        const auto start = std::chrono::steady_clock::now();
        PlayWave(reinterpret_cast<const uint8_t*>(wave.data()), static_cast<uint32_t>(wave.size()));
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
        std::printf("%.1f\\n", took.count());
        std::fflush(stdout);
        std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(arguments[3])));
    }
    FinishSounds();
}
"""
NULL_SINK = "module-null-sink sink_name=test rate=%d channels=1 format=s16le" % RATE
PULSE = ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "--disable-shm=yes",
         "-L", "module-native-protocol-unix"]  # fmt: skip
SERVERS = {
    "pulseaudio": [[*PULSE, "-L", NULL_SINK]],
    "pulseaudio, norewinds": [[*PULSE, "-L", NULL_SINK + " norewinds=1"]],
    "pipewire-pulse": [["dbus-daemon", "--session", "--nofork", "--address=unix:path=%s/bus"], ["pipewire"],
                       ["wireplumber"], ["pipewire-pulse"]],  # fmt: skip
}


def runs_of(samples):
    """The lengths of the stretches of sound."""
    lengths, first, last = [], None, 0
    for place, value in enumerate(samples):
        if abs(value) > QUIET:
            if first is not None and place - last > GAP:
                lengths.append(last - first)
                first = None
            first = place if first is None else first
            last = place
    return lengths + ([last - first] if first is not None else [])


def play(driver, wave, times=TIMES, pause=400):
    """How long each call took, in milliseconds."""
    done = subprocess.run([driver, str(wave), str(times), str(pause)], capture_output=True, text=True, timeout=60)
    return [float(line) for line in done.stdout.split()]


def listen(driver, wave):
    recorder = subprocess.Popen(
        ["parec", "-d", "test.monitor", "--raw", "--format=s16le", f"--rate={RATE}", "--channels=1", "--latency-msec=20"],
        stdout=subprocess.PIPE,
    )
    recorded = []
    reader = threading.Thread(target=lambda: recorded.append(recorder.stdout.read()))
    reader.start()
    time.sleep(2.5)  # a sink that had nobody has rendered two seconds of silence ahead
    calls = play(driver, wave)
    time.sleep(2.5)
    recorder.terminate()
    reader.join()
    data = array.array("h", wave.read_bytes()[44:])
    whole = runs_of(data)[0] * 0.97
    heard = runs_of(array.array("h", recorded[0][: len(recorded[0]) // 2 * 2]))
    return sum(length >= whole for length in heard), calls, 1000 * len(data) / RATE


def on_server(name, commands, driver, waves):
    """Whether every sound was heard each time and no call took too long."""
    if any(shutil.which(command[0]) is None for command in commands):
        print(f"{name}: not installed")
        return True
    good, folder = True, os.environ["XDG_RUNTIME_DIR"]
    processes = []
    for command in commands:
        words = [word.replace("%s", folder) for word in command]
        processes.append(subprocess.Popen(words, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        time.sleep(1)
    try:
        if len(commands) > 1:
            subprocess.run(["pactl", "load-module", *NULL_SINK.split()], check=True, stdout=subprocess.DEVNULL)
            subprocess.run(["pactl", "set-default-sink", "test"], check=True)
            time.sleep(1)
        for wave in waves:
            count, calls, length = listen(driver, wave)
            late = max(calls) - length
            good = good and count == TIMES and late <= MOST_AFTER
            print(f"{name}: {wave.stem} of {length:.0f} ms heard {count} of {TIMES}, calls {min(calls):.0f} to "
                  f"{max(calls):.0f} ms, at most {late:.0f} after its end")  # fmt: skip
    finally:
        for process in reversed(processes):
            process.kill()
            process.wait()
    return good


def without_server(driver, wave):
    """No server, one that never answers, one that answers rubbish, one that dies and one that stops while playing."""
    print("no server: calls of", play(driver, wave, 3, 0), "ms")
    for name, answer in (("hung", b""), ("garbage", b"\xff rubbish" * 500)):
        path = os.path.join(os.environ["XDG_RUNTIME_DIR"], "fake")
        with socket.socket(socket.AF_UNIX) as server:
            server.bind(path)
            server.listen(8)

            def serve(server=server, answer=answer):
                held = []
                while True:
                    try:
                        held.append(server.accept()[0])
                        held[-1].sendall(answer)
                    except OSError:
                        return

            threading.Thread(target=serve, daemon=True).start()
            os.environ["PULSE_SERVER"] = "unix:" + path
            print(f"{name} server: calls of", play(driver, wave, 3, 0), "ms")
            del os.environ["PULSE_SERVER"]
            server.shutdown(socket.SHUT_RDWR)
        os.unlink(path)
    for name, number in (("dying", 9), ("stopping", 19)):
        if shutil.which(PULSE[0]) is None:
            continue
        process = subprocess.Popen([*PULSE, "-L", NULL_SINK], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(1)
        threading.Timer(0.1, process.send_signal, [number]).start()
        print(f"{name} server: calls of", play(driver, wave, 3, 0), "ms")
        process.kill()
        process.wait()


def main():
    build = Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build")
    waves = sorted(build.rglob("sound-*.wav"))
    with tempfile.TemporaryDirectory() as folder:
        for name in ("XDG_RUNTIME_DIR", "HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"):
            os.environ[name] = folder
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={folder}/bus"
        os.environ.pop("PULSE_SERVER", None)
        source, driver = Path(folder, "driver.cpp"), Path(folder, "driver")
        source.write_text(DRIVER)
        subprocess.run(["g++", "-std=c++20", "-O1", f"-I{ROOT}", source, ROOT / "platform/host/qt/sound_pulse.cpp",
                        "-lpulse", "-o", driver], check=True)  # fmt: skip
        good = all([on_server(name, commands, driver, waves) for name, commands in SERVERS.items()])
        without_server(driver, waves[-1])
    return 0 if good and waves else 1


if __name__ == "__main__":
    sys.exit(main())
