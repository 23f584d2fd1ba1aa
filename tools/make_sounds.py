"""Makes the program's sounds as RIFF files. Playing one holds the program up until it has ended, so all are short."""

import math
import struct
import sys
from pathlib import Path

RATE = 22050
FADE = 0.004  # seconds at the end in which a sound dies away, so that it stops without a crack

# Number: length in seconds and its notes, each (start in seconds, hertz, loudness 0 to 1, seconds until it has fallen
# to about a third, share of noise).
SOUNDS = {
    128: (0.060, [(0.0, 1150, 0.50, 0.010, 0.35), (0.012, 620, 0.30, 0.014, 0.0)]),  # a press, or a refusal
    13071: (0.280, [(0.0, 784, 0.42, 0.090, 0.0), (0.110, 587, 0.42, 0.090, 0.0)]),  # an alert: two falling tones
    13616: (0.050, [(0.0, 1500, 0.22, 0.008, 0.10)]),  # the read-out goes on or off: a soft tick
    3016: (0.070, [(0.0, 900, 0.30, 0.015, 0.0)]),
    18999: (0.090, [(0.0, 520, 0.35, 0.020, 0.20)]),
    22057: (0.120, [(0.0, 660, 0.30, 0.030, 0.0), (0.045, 880, 0.30, 0.030, 0.0)]),
}


def noise():
    """The same hiss in every build, from -1 to 1."""
    state = 1
    while True:
        state = (state * 1103515245 + 12345) & 0x7FFFFFFF
        yield state / 0x40000000 - 1


def samples(length, notes):
    hiss = noise()
    for index in range(round(length * RATE)):
        time, level = index / RATE, 0.0
        for start, hertz, loudness, decay, noise_share in notes:
            since = time - start
            if since >= 0:
                tone = math.sin(math.tau * hertz * since) + 0.25 * math.sin(math.tau * 2 * hertz * since)
                strength = loudness * min(1.0, since / 0.001) * math.exp(-since / decay)
                level += strength * ((1 - noise_share) * tone + noise_share * next(hiss))
        level *= min(1.0, (length - time) / FADE)
        yield round(32767 * max(-1.0, min(1.0, level)))


def wave_file(values):
    data = struct.pack(f"<{len(values)}h", *values)
    form = struct.pack("<HHIIHH", 1, 1, RATE, 2 * RATE, 2, 16)
    body = b"WAVE" + b"fmt " + struct.pack("<I", len(form)) + form + b"data" + struct.pack("<I", len(data)) + data
    return b"RIFF" + struct.pack("<I", len(body)) + body


def make(_resources, output):
    for number, (length, notes) in SOUNDS.items():
        (output / f"sound-{number}.wav").write_bytes(wave_file(list(samples(length, notes))))


if __name__ == "__main__":
    make(None, Path(sys.argv[1]))
