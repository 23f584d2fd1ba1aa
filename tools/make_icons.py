"""Draws the program's icon, a folded map with a pencil, as .ico files and as PNG files for desktops."""

import math
import sys
from pathlib import Path

from vector_canvas import Canvas, circle, icon_file, png_file, smooth, stroke_outlines

UNITS = 256
SIDES = (16, 32, 48, 128, 256)
SMALL_SIDES = (16,)
DESKTOP_NAME = "kestrel-map-tool"

PAPER = ((250, 245, 222), (229, 221, 190))  # the folds' light and shaded sides
EDGE = (51, 62, 20)
GRID = (89, 122, 25)
CONTOUR = (166, 112, 58)
WOODS = (134, 178, 92)
WATER = (86, 148, 204)
CELL = (214, 40, 32)
WOOD, GRAPHITE = (232, 196, 146), (44, 44, 44)
PENCIL = ((252, 212, 84), (240, 180, 36), (206, 140, 16))  # lit, middle and shaded facet
FERRULE, ERASER = (186, 190, 194), (206, 84, 84)

FOLDS = 3
LEFT, RIGHT, TOP, HEIGHT, FOLD_DEPTH = 10, 232, 62, 164, 22


def on_map(u, v):
    """Where a point of the sheet, 0 to 1 from left to right and from top to bottom, lies on the folded map."""
    along = u * FOLDS
    part = along - math.floor(along)
    rise = part if math.floor(along) % 2 == 0 else 1 - part
    return LEFT + u * (RIGHT - LEFT), TOP - FOLD_DEPTH * rise + v * HEIGHT


def line_on_map(points):
    """A line over the sheet, broken into pieces short enough to follow the folds."""
    pieces = []
    for (u0, v0), (u1, v1) in zip(points, points[1:]):
        for step in range(12):
            pieces.append(on_map(u0 + (u1 - u0) * step / 12, v0 + (v1 - v0) * step / 12))
    return pieces + [on_map(*points[-1])]


def curve_on_map(points, closed=False):
    return [on_map(u, v) for u, v in smooth(points, closed)]


def sheet():
    return line_on_map([(0, 0), (1, 0)]) + line_on_map([(1, 1), (0, 1)])


def draw_sheet(canvas, fine):
    canvas.fill([[(x + 5, y + 8) for x, y in sheet()]], (0, 0, 0), 0.22)
    for fold in range(FOLDS):
        ends = fold / FOLDS, (fold + 1) / FOLDS
        corners = [(ends[0], 0), (ends[1] - 1e-9, 0), (ends[1] - 1e-9, 1), (ends[0], 1)]
        canvas.fill([[on_map(u, v) for u, v in corners]], PAPER[fold % 2])

    clip = canvas.coverage([sheet()])
    woods = [(0.62, 0.7), (0.8, 0.62), (1.05, 0.66), (1.05, 1.1), (0.66, 1.1)]
    canvas.fill([curve_on_map(woods, True)], WOODS, 1, clip)
    river = [(-0.05, 0.66), (0.14, 0.7), (0.26, 0.84), (0.44, 0.82), (0.58, 1.05)]
    canvas.stroke(curve_on_map(river), 13 if fine else 22, WATER, 1, clip)
    hill = [(0.2, 0.38), (0.3, 0.16), (0.5, 0.14), (0.62, 0.3), (0.56, 0.5), (0.34, 0.56)]
    for ring in (1.0, 0.66, 0.34) if fine else (0.95, 0.42) if canvas.side > 16 else (0.7,):
        ridge = [(0.41 + (u - 0.41) * ring, 0.34 + (v - 0.34) * ring) for u, v in hill]
        canvas.stroke(curve_on_map(ridge, True), 4.5 if fine else 12, CONTOUR, 1, clip, True)
    if fine:
        for step in range(1, 6):
            canvas.stroke(line_on_map([(step / 6, 0), (step / 6, 1)]), 2, GRID, 0.5, clip)
            canvas.stroke(line_on_map([(0, step / 6), (1, step / 6)]), 2, GRID, 0.5, clip)
    for fold in range(1, FOLDS):
        canvas.stroke([on_map(fold / FOLDS, 0), on_map(fold / FOLDS, 1)], 3, EDGE, 0.35, clip)
    canvas.stroke(sheet(), 6 if fine else 12, EDGE, 1, None, True)


def draw_cells(canvas):
    """Some painted cells at the pencil's tip."""
    for column, row in ((1, 4), (2, 4), (3, 4), (3, 3), (2, 3)):
        u, v = column / 6, row / 6
        corners = [(u, v), (u + 1 / 6 - 1e-9, v), (u + 1 / 6 - 1e-9, v + 1 / 6), (u, v + 1 / 6)]
        canvas.fill([[on_map(h, w) for h, w in corners]], CELL, 0.6)


def draw_pencil(canvas, fine):
    tip, top = (104.0, 178.0), (223.0, 28.0)
    length = math.hypot(top[0] - tip[0], top[1] - tip[1])
    along = (top[0] - tip[0]) / length, (top[1] - tip[1]) / length
    half = 19 if fine else 25

    def at(distance, side):
        """The point at a distance from the tip and a part of the half width to the side."""
        return (
            tip[0] + along[0] * distance - along[1] * side * half,
            tip[1] + along[1] * distance + along[0] * side * half,
        )

    cone, ferrule, eraser = 52, length - 34, length - 18
    whole = [at(0, 0), at(cone, 1), at(length, 1), at(length, -1), at(cone, -1)]
    canvas.fill([[(x + 6, y + 9) for x, y in whole]], (0, 0, 0), 0.2)
    end = circle(*at(length, 0), half)
    canvas.fill([whole, circle(*at(length, 0), half + 5)] + stroke_outlines(whole, 11 if fine else 16, True), EDGE)
    canvas.fill([[at(0, 0), at(cone, 1), at(cone, -1)]], WOOD)
    canvas.fill([[at(0, 0), at(cone * 0.42, 0.42), at(cone * 0.42, -0.42)]], GRAPHITE)
    # The middle colour lies under all three facets, so that no seam shows between them.
    for near, far, colour in ((-1, 1, PENCIL[1]), (-1, -1 / 3, PENCIL[0]), (1 / 3, 1, PENCIL[2])):
        canvas.fill([[at(cone, near), at(ferrule, near), at(ferrule, far), at(cone, far)]], colour)
    for facet, colour in enumerate(PENCIL):
        near, far = -1 + facet * 2 / 3, -1 + (facet + 1) * 2 / 3
        canvas.fill([[at(cone + 1, near), at(cone - 8, (near + far) / 2), at(cone + 1, far)]], colour)
    canvas.fill([[at(ferrule, -1), at(eraser, -1), at(eraser, 1), at(ferrule, 1)]], FERRULE)
    canvas.fill([[at(eraser, -1), at(length, -1), at(length, 1), at(eraser, 1)], end], ERASER)
    if fine:
        for distance in (ferrule + 4, ferrule + 11):
            canvas.stroke([at(distance, -0.9), at(distance, 0.9)], 2, (110, 114, 118))


def draw_icon(side):
    canvas = Canvas(side, UNITS)
    fine = side >= 48
    draw_sheet(canvas, fine)
    if fine:
        draw_cells(canvas)
    draw_pencil(canvas, fine)
    return canvas.rgba()


def make(_resources, output):
    pictures = {side: draw_icon(side) for side in SIDES}
    (output / "icon-128.ico").write_bytes(icon_file(list(pictures.items())))
    (output / "icon-1.ico").write_bytes(icon_file([(side, pictures[side]) for side in SMALL_SIDES]))
    for side, rgba in pictures.items():
        folder = output / "hicolor" / f"{side}x{side}" / "apps"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / f"{DESKTOP_NAME}.png").write_bytes(png_file(side, rgba))


if __name__ == "__main__":
    make(None, Path(sys.argv[1]))
