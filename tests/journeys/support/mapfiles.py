"""Map files: the data file's record and cells, art whose pixels tell their own place, and art read from a bitmap."""

import re
import struct
from pathlib import Path

# The bits of a cell word, as the program's own header names them.
_HEADER = (Path(__file__).resolve().parents[3] / "mapdata" / "map_record.h").read_text(encoding="utf-8")
CELL_BITS = {name: int(bits, 0) for name, bits in re.findall(r"\bcell(\w+) = (\w+)[,;]", _HEADER)}
HI_LOW, WOODS, TOWN, ROAD = (CELL_BITS[name] for name in ("HiLow", "Woods", "Town", "Road"))
NO_GO_MASK, NO_GO_SHIFT = CELL_BITS["NoGoMask"], CELL_BITS["NoGoShift"]
COST_MASK, COST_SHIFT = CELL_BITS["MoveCostMask"], CELL_BITS["MoveCostShift"]

HEADER_WORDS = (
    "map_id aux1 aux2 columns rows left top right bottom"
    " flag1 left1 top1 right1 bottom1 flag2 left2 top2 right2 bottom2 flag3 left3 top3 right3 bottom3"
    " marker easting northing version"
).split()


class MapData:
    """The contents of a map data file; header words are attributes, cells lie row by row."""

    def __init__(self, data):
        words = struct.unpack("<28h", data[:56])
        self.header = dict(zip(HEADER_WORDS, words))
        end = data.index(b"\0", 56)
        self.text = data[56:end]
        self.columns = self.header["columns"]
        self.rows = self.header["rows"]
        count = self.columns * self.rows
        if len(data) != end + 1 + 2 * count:
            raise ValueError("the data file has %d bytes, not %d" % (len(data), end + 1 + 2 * count))
        self.cells = list(struct.unpack("<%dH" % count, data[end + 1 :]))

    def cell(self, column, row):
        return self.cells[row * self.columns + column]

    def set_cell(self, column, row, word):
        self.cells[row * self.columns + column] = word

    def to_bytes(self):
        header = struct.pack("<28h", *(self.header[name] for name in HEADER_WORDS))
        return header + self.text + b"\0" + struct.pack("<%dH" % len(self.cells), *self.cells)


def find_difference(data, saved):
    """Where a saved file's bytes depart from the map that it should hold, as a text; None when it is that map."""
    if saved == data.to_bytes():
        return None
    try:
        found = MapData(saved)
    except (ValueError, struct.error) as error:
        return "it is no map data: %s" % error
    if (found.header, found.text) != (data.header, data.text):
        return "header and text are %s, %r, not %s, %r" % (found.header, found.text, data.header, data.text)
    wrong = [i for i, word in enumerate(data.cells) if found.cells[i] != word]
    place = "%d, %d" % divmod(wrong[0], data.columns)[::-1]
    return "%d cells differ; (%s) is %04X, not %04X" % (len(wrong), place, found.cells[wrong[0]], data.cells[wrong[0]])


def new_map_data(map_id, width, height, easting=0, northing=0, version=100):
    """What New Map makes of art of that size."""
    columns, rows = (width + 9) // 10, (height + 9) // 10
    header = dict.fromkeys(HEADER_WORDS, 0)
    header.update(map_id=map_id, columns=columns, rows=rows, right=width, bottom=height)
    header.update(flag1=1, right1=width, bottom1=height, marker=1)
    header.update(easting=easting, northing=northing, version=version)
    data = struct.pack("<28h", *(header[name] for name in HEADER_WORDS)) + b"\0" + bytes(2 * columns * rows)
    return MapData(data)


def write_map(path, data):
    with open(path, "wb") as file:
        file.write(data.to_bytes())


class Art:
    """A picture as rows of screen pixels: blue, green, red and one unused byte each, the top row first."""

    def __init__(self, width, height, rows):
        self.width = width
        self.height = height
        self.rows = rows

    def pixel(self, h, v):
        row = self.rows[v]
        return row[4 * h + 2], row[4 * h + 1], row[4 * h]


def coded_art(width, height):
    """Art in which no two places have the same colour: it spells the place, see coded_place."""
    red = bytes(h & 255 for h in range(width))
    rows = []
    for v in range(height):
        row = bytearray(4 * width)
        row[2::4] = red
        row[1::4] = bytes([v & 255]) * width
        row[0::4] = bytes((h >> 8) << 4 | v >> 8 for h in range(width))
        rows.append(bytes(row))
    return Art(width, height, rows)


def coded_place(colour):
    """The place (h, v) in coded art that has this colour."""
    red, green, blue = colour
    return (blue >> 4) << 8 | red, (blue & 15) << 8 | green


def write_bitmap(path, art):
    """24 bits a pixel, bottom row first."""
    stride = (3 * art.width + 3) // 4 * 4
    size = 54 + stride * art.height
    with open(path, "wb") as file:
        file.write(struct.pack("<2sI2HI", b"BM", size, 0, 0, 54))
        file.write(struct.pack("<I2i2H6I", 40, art.width, art.height, 1, 24, 0, size - 54, 2835, 2835, 0, 0))
        for row in reversed(art.rows):
            line = bytearray(stride)
            for channel in range(3):
                line[channel : 3 * art.width : 3] = row[channel::4]
            file.write(line)


def read_bitmap(path):
    with open(path, "rb") as file:
        data = file.read()
    start = struct.unpack_from("<I", data, 10)[0]
    header_size, width, height, _, bits, compression = struct.unpack_from("<I2i2HI", data, 14)
    if compression != 0 or bits not in (8, 24):
        raise ValueError("a bitmap of a kind that no sample has")
    stride = (width * bits // 8 + 3) // 4 * 4
    table = data[14 + header_size : start]
    rows = []
    for v in range(abs(height)):
        at = start + stride * (height - 1 - v if height > 0 else v)
        line = data[at : at + width * bits // 8]
        row = bytearray(4 * width)
        for channel in range(3):
            if bits == 24:
                row[channel::4] = line[channel::3]
            else:
                row[channel::4] = line.translate(table[channel::4].ljust(256, b"\0")[:256])
        rows.append(bytes(row))
    return Art(width, abs(height), rows)
