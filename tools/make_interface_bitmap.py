"""Draws the interface bitmap, whose colour table is the program's palette, from palette.txt and interface.txt."""

import struct
import sys
from pathlib import Path

WIDTH, HEIGHT = 683, 595
ENTRIES = 256
CUBE_LEVELS = (0, 51, 102, 153, 204, 255)


def content_lines(path):
    """The lines of a description without its comments and empty lines, with their numbers."""
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        # "#" may be an ink, so that only a blank behind it makes a comment.
        if line.strip() and not line.startswith("# "):
            yield number, line


def read_named_colours(path):
    colours = {}
    for number, line in content_lines(path):
        name, *levels = line.split()
        if len(levels) != 3 or not all(0 <= int(level) <= 255 for level in levels) or name in colours:
            raise ValueError(f"{path}:{number}: a colour is a new name and three levels from 0 to 255")
        colours[name] = tuple(int(level) for level in levels)
    return colours


def build_palette(named):
    """256 different colours: black, the named ones, a colour cube, shades of olive, white."""
    black, white = (0, 0, 0), (255, 255, 255)
    cube = [(r, g, b) for r in CUBE_LEVELS for g in CUBE_LEVELS for b in CUBE_LEVELS]
    olives = [(89 * step // 16, 122 * step // 16, 25 * step // 16) for step in range(1, 40)]
    palette = []
    for colour in [black, *named.values(), *cube, *(olive for olive in olives if max(olive) <= 255)]:
        if colour not in palette and colour != white and len(palette) < ENTRIES - 1:
            palette.append(colour)
    palette.append(white)
    if len(palette) != ENTRIES or not set(named.values()) <= set(palette):
        raise ValueError(f"the palette has {len(palette)} entries or lacks a named colour")
    return palette


def read_pictures(path, named):
    """A list of (left, top, rows); a row is a list of colours."""
    inks, pictures = {}, []
    for number, line in content_lines(path):
        words = line.split()
        if words[0] == "ink" and len(words) == 3 and len(words[1]) == 1 and words[2] in named:
            inks[words[1]] = named[words[2]]
        elif words[0] == "picture" and len(words) == 3:
            pictures.append((int(words[1]), int(words[2]), []))
        elif pictures and all(character in inks for character in line):
            pictures[-1][2].append([inks[character] for character in line])
        else:
            raise ValueError(f"{path}:{number}: neither an ink, a picture nor a row of known inks")
    for left, top, rows in pictures:
        if not rows or len({len(row) for row in rows}) != 1:
            raise ValueError(f"{path}: the rows of the picture at {left} {top} differ in width")
    return pictures


def draw(pictures, palette):
    index = {colour: entry for entry, colour in enumerate(palette)}
    pixels = [bytearray(WIDTH) for _ in range(HEIGHT)]
    drawn = {}
    for left, top, rows in pictures:
        for v, row in enumerate(rows, top):
            for h, colour in enumerate(row, left):
                if not (0 <= h < WIDTH and 0 <= v < HEIGHT) or drawn.setdefault((h, v), colour) != colour:
                    raise ValueError(f"the picture at {left} {top} does not fit the bitmap or another at {h} {v}")
                pixels[v][h] = index[colour]
    return pixels


def bitmap_file(pixels, palette):
    """A bottom-up 8-bit Windows bitmap file."""
    stride = (WIDTH + 3) // 4 * 4
    rows = b"".join(bytes(row).ljust(stride, b"\0") for row in reversed(pixels))
    info = struct.pack("<IiiHHIIiiII", 40, WIDTH, HEIGHT, 1, 8, 0, len(rows), 2835, 2835, ENTRIES, 0)
    table = b"".join(bytes((blue, green, red, 0)) for red, green, blue in palette)
    offset = 14 + len(info) + len(table)
    return struct.pack("<2sIHHI", b"BM", offset + len(rows), 0, 0, offset) + info + table + rows


def make(resources, output):
    named = read_named_colours(resources / "palette.txt")
    palette = build_palette(named)
    pixels = draw(read_pictures(resources / "interface.txt", named), palette)
    (output / "interface.bmp").write_bytes(bitmap_file(pixels, palette))


if __name__ == "__main__":
    make(Path(__file__).resolve().parent.parent / "resources", Path(sys.argv[1]))
