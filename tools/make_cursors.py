"""Makes a .cur file for each cursor of cursors.txt: monochrome, 32 by 32."""

import struct
import sys
from pathlib import Path

SIZE = 32
ROW_BYTES = SIZE // 8


def read_cursors(path):
    """A list of (number, hot spot h, hot spot v, rows of characters)."""
    cursors = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        words = line.split()
        if not words or line.startswith("# "):
            continue
        if words[0] == "cursor" and len(words) == 4:
            cursors.append((*(int(word) for word in words[1:]), []))
        elif cursors and len(line) == SIZE and set(line) <= set("#o."):
            cursors[-1][3].append(line)
        else:
            raise ValueError(f"{path}:{number}: neither a cursor nor a row of {SIZE} characters '#', 'o' and '.'")
    for cursor, hot_h, hot_v, rows in cursors:
        if len(rows) != SIZE or not (0 <= hot_h < SIZE and 0 <= hot_v < SIZE):
            raise ValueError(f"{path}: cursor {cursor} needs {SIZE} rows and a hot spot inside them")
    return cursors


def mask(rows, character):
    """Bottom-up rows of one bit a pixel, set where the character stands."""
    packed = b""
    for row in reversed(rows):
        bits = int("".join("1" if pixel == character else "0" for pixel in row), 2)
        packed += bits.to_bytes(ROW_BYTES, "big")
    return packed


def cursor_file(hot_h, hot_v, rows):
    # The height counts both masks: first the white pixels, then those through which the screen shows.
    image = struct.pack("<IiiHHIIiiII", 40, SIZE, 2 * SIZE, 1, 1, 0, 2 * SIZE * ROW_BYTES, 0, 0, 2, 0)
    image += bytes((0, 0, 0, 0, 255, 255, 255, 0)) + mask(rows, "o") + mask(rows, ".")
    header = struct.pack("<HHH", 0, 2, 1)
    entry = struct.pack("<BBBBHHII", SIZE, SIZE, 2, 0, hot_h, hot_v, len(image), len(header) + 16)
    return header + entry + image


def make(resources, output):
    for number, hot_h, hot_v, rows in read_cursors(resources / "cursors.txt"):
        (output / f"cursor-{number}.cur").write_bytes(cursor_file(hot_h, hot_v, rows))


if __name__ == "__main__":
    make(Path(__file__).resolve().parent.parent / "resources", Path(sys.argv[1]))
