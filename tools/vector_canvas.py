"""A small picture in memory: filled outlines and strokes with soft edges, and its PNG and icon forms."""

import math
import struct
import zlib

SUB_ROWS = 5  # samples of a pixel from top to bottom; from left to right its coverage is exact


class Canvas:
    """A square picture of red, green, blue and opacity, drawn in units of which `units` make its side."""

    def __init__(self, side, units):
        self.side = side
        self.scale = side / units
        self.pixels = [[0.0, 0.0, 0.0, 0.0] for _ in range(side * side)]  # colours weighted with the opacity

    def coverage(self, outlines):
        """The part of each touched pixel, by its place, that lies in any of the outlines."""
        covered = {}
        edges = []
        for outline in outlines:
            points = [(x * self.scale, y * self.scale * SUB_ROWS) for x, y in outline]
            turn = sum(a[0] * b[1] - b[0] * a[1] for a, b in zip(points, points[1:] + points[:1]))
            if turn < 0:  # one sense for all outlines, so that overlapping parts never cancel each other
                points.reverse()
            for (x0, y0), (x1, y1) in zip(points, points[1:] + points[:1]):
                if y0 != y1:
                    edges.append((min(y0, y1), max(y0, y1), x0, y0, (x1 - x0) / (y1 - y0), 1 if y1 > y0 else -1))
        if not edges:
            return covered
        first = max(0, math.ceil(min(edge[0] for edge in edges) - 0.5))
        last = min(self.side * SUB_ROWS - 1, math.floor(max(edge[1] for edge in edges) - 0.5))
        rows = [[] for _ in range(last - first + 1)]
        for top, bottom, x0, y0, slope, sense in edges:
            for sample in range(max(first, math.ceil(top - 0.5)), min(last + 1, math.ceil(bottom - 0.5))):
                rows[sample - first].append((x0 + (sample + 0.5 - y0) * slope, sense))
        for sample, crossings in enumerate(rows, first):
            crossings.sort()
            winding = 0
            for (x, sense), (following, _) in zip(crossings, crossings[1:]):
                winding += sense
                if winding:
                    self._cover_span(covered, sample // SUB_ROWS * self.side, x, following)
        return covered

    def _cover_span(self, covered, row, left, right):
        left, right = max(0.0, left), min(float(self.side), right)
        for h in range(int(left), math.ceil(right)):
            part = (min(right, h + 1) - max(left, h)) / SUB_ROWS
            covered[row + h] = covered.get(row + h, 0.0) + part

    def fill(self, outlines, colour, opacity=1.0, clip=None):
        """Fills the union of the outlines, within a coverage that serves as clip."""
        for place, part in self.coverage(outlines).items():
            part = min(1.0, part) * opacity * (1.0 if clip is None else min(1.0, clip.get(place, 0.0)))
            pixel = self.pixels[place]
            for channel, level in enumerate((*colour, 255)):
                pixel[channel] += (level - pixel[channel]) * part

    def stroke(self, points, width, colour, opacity=1.0, clip=None, closed=False):
        """Draws a line of the given width with round joints through the points."""
        self.fill(stroke_outlines(points, width, closed), colour, opacity, clip)

    def rgba(self):
        """Rows from top to bottom, four bytes a pixel."""
        data = bytearray()
        for red, green, blue, opacity in self.pixels:
            unweight = 255 / opacity if opacity > 0.5 else 0
            data += bytes(min(255, round(level * unweight)) for level in (red, green, blue))
            data.append(min(255, round(opacity)))
        return bytes(data)


def circle(x, y, radius, steps=24):
    return [
        (x + radius * math.cos(math.tau * step / steps), y + radius * math.sin(math.tau * step / steps))
        for step in range(steps)
    ]


def stroke_outlines(points, width, closed=False):
    outlines = [circle(x, y, width / 2, 12) for x, y in points]
    for (x0, y0), (x1, y1) in zip(points, points[1:] + (points[:1] if closed else [])):
        length = math.hypot(x1 - x0, y1 - y0)
        if length > 0:
            h, v = (y1 - y0) / length * width / 2, (x0 - x1) / length * width / 2
            outlines.append([(x0 + h, y0 + v), (x1 + h, y1 + v), (x1 - h, y1 - v), (x0 - h, y0 - v)])
    return outlines


def smooth(points, closed=False, steps=8):
    """A curve through the points (Catmull-Rom) as a line of many short pieces."""
    count = len(points)
    curve = []
    for index in range(count if closed else count - 1):
        if closed:
            a, b, c, d = (points[(index + offset) % count] for offset in (-1, 0, 1, 2))
        else:
            a, b, c, d = (points[min(count - 1, max(0, index + offset))] for offset in (-1, 0, 1, 2))
        for step in range(steps):
            t = step / steps
            curve.append(
                tuple(
                    b[axis]
                    + t * (c[axis] - a[axis]) / 2
                    + t * t * (2 * a[axis] - 5 * b[axis] + 4 * c[axis] - d[axis]) / 2
                    + t * t * t * (3 * b[axis] - a[axis] - 3 * c[axis] + d[axis]) / 2
                    for axis in (0, 1)
                )
            )
    if not closed:
        curve.append(points[-1])
    return curve


def png_file(side, rgba):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    rows = b"".join(b"\0" + rgba[4 * side * row : 4 * side * (row + 1)] for row in range(side))
    header = struct.pack(">IIBBBBB", side, side, 8, 6, 0, 0, 0)
    chunks = (b"IHDR", header), (b"IDAT", zlib.compress(rows, 9)), (b"IEND", b"")
    return b"\x89PNG\r\n\x1a\n" + b"".join(chunk(kind, data) for kind, data in chunks)


def icon_file(pictures):
    """An .ico file of 32-bit images; `pictures` are pairs of side and RGBA rows."""
    entries, images = b"", b""
    for side, rgba in pictures:
        stride = (side + 31) // 32 * 4
        colours, transparent = b"", b""
        for row in range(side - 1, -1, -1):
            line = rgba[4 * side * row : 4 * side * (row + 1)]
            swapped = bytearray(line)
            swapped[0::4], swapped[2::4] = line[2::4], line[0::4]
            colours += bytes(swapped)
            bits = int("".join("0" if opacity else "1" for opacity in line[3::4]), 2) << (8 * stride - side)
            transparent += bits.to_bytes(stride, "big")
        image = struct.pack("<IiiHHIIiiII", 40, side, 2 * side, 1, 32, 0, len(colours) + len(transparent), 0, 0, 0, 0)
        image += colours + transparent
        offset = 6 + 16 * len(pictures) + len(images)
        entries += struct.pack("<BBBBHHII", side % 256, side % 256, 0, 0, 1, 32, len(image), offset)
        images += image
    return struct.pack("<HHH", 0, 1, len(pictures)) + entries + images
