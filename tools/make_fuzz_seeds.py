#!/usr/bin/env python3
"""Makes the fuzzers' first inputs in fuzz/corpus/. The same files come out every time. Inputs that once showed a fault
lie beside them under names of their own and are not touched."""

import re
import struct
from pathlib import Path

CORPUS = Path(__file__).resolve().parent.parent / "fuzz" / "corpus"


def store(target, name, data):
    folder = CORPUS / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(data)


# ---- map data files ----


def map_file(columns, rows, width=None, height=None, text=b"", cells=None, marker=1):
    right = columns * 10 if width is None else width
    bottom = rows * 10 if height is None else height
    words = [101, 0, 0, columns, rows, 0, 0, right, bottom, 1, 0, 0, right, bottom]
    words += [0] * 10 + [marker, 12, 34, 100]
    if cells is None:
        cells = [(17 * n) & 0xFFFF for n in range(max(columns, 0) * max(rows, 0))]
    return struct.pack("<28h", *words) + text + b"\0" + struct.pack(f"<{len(cells)}H", *cells)


def make_map_seeds():
    whole = map_file(6, 5, text=b"a text")
    store("map_data", "whole", whole)
    store("map_data", "no_text", map_file(46, 23, 455, 225))
    store("map_data", "long_text", map_file(3, 3, text=b"t" * 255))
    store("map_data", "text_too_long", map_file(3, 3, text=b"t" * 256))
    store("map_data", "marker_0", map_file(2, 2, marker=0))
    store("map_data", "other_counts", map_file(310, 1, 450, 220))
    store("map_data", "no_cells", map_file(310, 310, cells=[]))
    store("map_data", "too_wide", map_file(10, 10, 3101, 3200))
    store("map_data", "bad_counts", map_file(-1, 311, 450, 220, cells=[1, 2]))
    store("map_data", "something_behind", whole + b"behind")
    for length in (1, 17, 18, 41, 56, 59, len(whole) - 1):
        store("map_data", f"cut_{length}", whole[:length])


# ---- bitmap files ----


def bitmap(width, height, bits, pixels, compression=0, colours=(), header=40, masks=(), used=None):
    if header == 12:
        info = struct.pack("<IHHHH", 12, width, height, 1, bits)
        table = b"".join(struct.pack("<I", colour)[:3] for colour in colours)
    else:
        used = len(colours) if used is None else used
        info = struct.pack("<IiiHHIIiiII", header, width, height, 1, bits, compression, 0, 0, 0, used, 0)
        info += struct.pack(f"<{len(masks)}I", *masks)
        info = info.ljust(header, b"\0")
        table = struct.pack(f"<{len(colours)}I", *colours)
    begin = 14 + len(info) + len(table)
    return b"BM" + struct.pack("<IHHI", begin + len(pixels), 0, 0, begin) + info + table + pixels


def rows(width, height, bits):
    stride = (width * bits + 31) // 32 * 4
    return bytes((37 * n) & 0xFF for n in range(stride * height))


def make_bitmap_seeds():
    greys = [n * 0x010101 for n in range(256)]
    for bits in (1, 4, 8):
        store("bitmap", f"bits_{bits}", bitmap(13, 7, bits, rows(13, 7, bits), colours=greys[: 1 << bits]))
    for bits in (16, 24, 32):
        store("bitmap", f"bits_{bits}", bitmap(13, 7, bits, rows(13, 7, bits)))
    store("bitmap", "top_down", bitmap(60, -50, 24, rows(60, 50, 24)))
    store("bitmap", "few_colours", bitmap(9, 3, 8, rows(9, 3, 8), colours=greys[:5]))
    store("bitmap", "old_header", bitmap(9, 3, 4, rows(9, 3, 4), colours=greys[:16], header=12))
    store("bitmap", "old_header_24", bitmap(9, 3, 24, rows(9, 3, 24), header=12))
    masks = (0xF800, 0x07E0, 0x001F)
    store("bitmap", "masks_16", bitmap(9, 3, 16, struct.pack("<3I", *masks) + rows(9, 3, 16), compression=3))
    store("bitmap", "masks_32", bitmap(5, 3, 32, rows(5, 3, 32), 3, header=108, masks=(0xFF, 0xFF00, 0xFF0000, 0)))
    run8 = bytes([3, 1, 2, 2, 0, 0, 0, 3, 7, 8, 9, 0, 0, 2, 1, 1, 4, 5, 0, 1])
    store("bitmap", "runs_8", bitmap(8, 6, 8, run8, compression=1, colours=greys))
    run4 = bytes([5, 0x12, 0, 0, 0, 5, 0x12, 0x34, 0x50, 0, 0, 2, 2, 1, 3, 0x77, 0, 1])
    store("bitmap", "runs_4", bitmap(8, 6, 4, run4, compression=2, colours=greys[:16]))
    store("bitmap", "runs_beyond", bitmap(4, 2, 8, bytes([255, 1, 0, 2, 255, 255, 0, 200, 1, 2]), 1, greys))
    store("bitmap", "cut_pixels", bitmap(13, 7, 24, rows(13, 7, 24))[:-1])
    store("bitmap", "cut_header", bitmap(13, 7, 24, b"")[:30])
    store("bitmap", "impossible_size", bitmap(0x7FFFFFFF, -0x80000000, 32, b"1234"))


# ---- sessions: see PlayStep in fuzz/session_fuzz.cpp ----

PRESS, MOVE, RELEASE, CLICK, ITEM, _, KEY, DOWN, UP, CONTROL, MENU = range(11)
WHEEL, RESIZE, MOVE_FRAME, SCROLL, TEXT, OTHER = range(12, 18)
OPEN_MAP, NEW_MAP, NOTHING = 0, 2, 3
SHIFT, ALT = 0, 1
RETURN, ESCAPE = 0, 1
NEW, OPEN, TERRAIN, SAVE, COSTS, QUIT = range(6)


def session(name, begin, terrain, *steps):
    store("session", name, bytes([begin, terrain]) + b"".join(bytes((step + (0, 0))[:3]) for step in steps))


def stroke(*points):
    return [(PRESS, *points[0])] + [(MOVE, *point) for point in points[1:]] + [(RELEASE,)]


def items(*numbers):
    return [(ITEM, number) for number in numbers]


def make_session_seeds():
    wait = (OTHER, 200, 80)

    def palette(key, item):  # opened, dragged to the bottom-right corner, a tool chosen
        return [(CONTROL, key), wait, *stroke((60, 31), (70, 40), (250, 245)), wait, (ITEM, item), wait]

    session("nothing", NOTHING, 0, wait)
    for size in range(4):
        for counts in range(4):
            # Down along the left edge to below the smallest map, and across its right edge.
            strokes = stroke((20, 40), (20, 80), (21, 120), (90, 124)) + stroke((100, 40), (160, 42), (175, 90))
            first = [*palette(TERRAIN, 4), *strokes, (KEY, ESCAPE), wait]
            second = [*palette(COSTS, 6), *strokes, wait, *stroke((20, 118), (80, 118)), (KEY, ESCAPE), wait]
            session(f"strokes_{size}_{counts}", size << 2 | counts << 4, 200, *first, *second)
    area = [(DOWN, ALT), *stroke((30, 40), (90, 80), (110, 100)), (UP, ALT), wait]
    for key, tools in ((TERRAIN, (4, 5, 6, 7, 8, 15, 17, 18)), (COSTS, (4, 5, 6, 7, 8, 9))):
        for number, tool in enumerate(tools):
            steps = [*palette(key, tool), *stroke((20, 60), (120, 60)), *area, *items(number % 3), wait]
            session(f"fill_{key}_{tool}", 0x08, 255, *steps, (DOWN, SHIFT), *stroke((20, 40), (90, 90)))
    session("new_map", NEW_MAP, 0, (KEY, RETURN), wait, (KEY, RETURN), wait, (CONTROL, COSTS), wait, *items(4))
    session("new_map_numbers", NEW_MAP, 0, (TEXT, 200, 4), (KEY, 2), (TEXT, 99, 1), (KEY, RETURN), (KEY, RETURN), wait)
    session("open_others", NOTHING, 0, *[s for n in range(8) for s in ((OTHER, 100, n), (CONTROL, OPEN), wait, (KEY, 0))])
    session("new_others", NOTHING, 0, *[s for n in range(8) for s in ((OTHER, 100, n), (CONTROL, NEW), wait, (KEY, 0))])
    views = [(MENU, 10), (MENU, 11), (MENU, 12), (MENU, 13), (KEY, 8), (KEY, 9)]
    session("views", 0x08, 255, *views, (MOVE, 90, 90), (WHEEL, 200), *views, (MOVE, 20, 20), (WHEEL, 20))
    sizes = [(RESIZE, 255, 255), (RESIZE, 0, 0), (RESIZE, 60, 200), (MOVE_FRAME, 0, 0), (MOVE_FRAME, 255, 255)]
    session("sizes", 0x08, 100, *sizes, (SCROLL, 3, 70), (SCROLL, 10, 120), *sizes)
    session("sizes_in_palette", 0x08, 100, (CONTROL, COSTS), *sizes, *items(4), *stroke((9, 50), (90, 99)), *sizes)
    session("scroll", 0x08, 1, *[(SCROLL, n, 40 + 5 * n) for n in range(18)], *[(KEY, n) for n in range(4, 8)])
    properties = [s for n in (6, 7, 8) for s in ((MENU, n), wait, (TEXT, 40, 3), (KEY, RETURN), (KEY, RETURN), wait)]
    session("properties", 0x00, 0, *properties, (KEY, ESCAPE), wait)
    session("save_twice", 0x40, 9, (CONTROL, SAVE), wait, (KEY, RETURN), wait, (CONTROL, SAVE), wait, *items(0, 1))
    session("quit", OPEN_MAP, 9, (CONTROL, TERRAIN), wait, (KEY, ESCAPE), (CONTROL, QUIT), wait, *items(2), (OTHER, 1))
    session("close_in_palette", 0x08, 77, *palette(TERRAIN, 7), (PRESS, 40, 60), (OTHER, 0, 0), wait)
    session("drag_palette", 0x08, 77, (CONTROL, TERRAIN), wait, *stroke((40, 12), (250, 250)), *stroke((250, 250), (9, 9)))
    whole = [s for n in range(19, 23) for s in ((ITEM, n), wait, (KEY, RETURN), wait)]
    session("whole_map", 0x20, 255, (CONTROL, TERRAIN), wait, *whole, (KEY, ESCAPE), (CONTROL, COSTS), wait, *whole)
    held = [(PRESS, 40, 60), (KEY, ESCAPE), (MENU, 4), (OTHER, 9, 1), (CLICK, 70, 80), (RELEASE,)]
    session("held", 0x08, 30, *palette(TERRAIN, 5), *held, (CONTROL, COSTS), (CONTROL, TERRAIN))
    grow = stroke((254, 254), (200, 200), (10, 10))
    session("grow", 0x08, 30, (RESIZE, 90, 60), *grow, (DOWN, ALT), *stroke((40, 10), (90, 90)), (UP, ALT))


# ---- maps as text ----


def make_import_seeds():
    source = (CORPUS.parent.parent / "companion" / "map_data.cpp").read_text(encoding="utf-8")
    names = re.findall(r'^    "([\w.]+)",$', source, re.M)
    values = struct.unpack("<28h", map_file(3, 2)[:56])
    fields = "".join(f"{name},{value}\n" for name, value in zip(names, values))
    titles = "column,row,cost,noGo,hilow,woods,town,road,misclosblock,free\n"
    cells = "".join(f"{x},{y},{x},{y},1,0,1,0,0,{x + 20}\n" for y in range(2) for x in range(2)) + "2,0,6,4,0,0,0,0,0,0\n"
    text = 'mapText,"A ""text"", of\ntwo lines"\n'
    whole = fields + text + titles + cells + "2,1,31,7,0,0,0,0,0,21\n"
    for name, seed in (
        ("csv_whole", "field,value\n" + whole),
        ("csv_returns", whole.replace("\n", "\r\n")),
        ("csv_missing_cell", fields + text + titles + cells),
        ("csv_open_quote", fields + text[:-2]),
        ("csv_no_cells", fields + text + titles),
    ):
        store("import", name, b"c" + seed.encode())
    members = ", ".join(f'"{name}": {value}' for name, value in zip(names, values))
    json = '{"fields": {%s, "mapText": "\\u00fc"}, "cells": [[1, 2, 3], [4, 5, %s]]}'
    for name, last in (("json_whole", "65535"), ("json_large_word", "65536"), ("json_no_number", "[{}]")):
        store("import", name, b"j" + (json % (members, last)).encode())


if __name__ == "__main__":
    make_map_seeds()
    make_bitmap_seeds()
    make_session_seeds()
    make_import_seeds()
    sizes = [path.stat().st_size for path in CORPUS.rglob("*") if path.is_file()]
    print(f"{len(sizes)} inputs, {sum(sizes)} bytes")
