"""What strokes and fills do to the cells, worked out anew from the rules that a user knows."""

from .mapfiles import COST_MASK, COST_SHIFT, NO_GO_MASK, NO_GO_SHIFT


def feature_brush(bit):
    return bit, bit


def no_go_brush(level):
    return NO_GO_MASK, level << NO_GO_SHIFT


def cost_brush(code):
    return COST_MASK, code << COST_SHIFT


def line(start, end, step=4):
    """Points from start to end with no gap that could skip a cell."""
    count = max(abs(end[0] - start[0]), abs(end[1] - start[1])) // step
    points = [
        (start[0] + (end[0] - start[0]) * i // (count + 1), start[1] + (end[1] - start[1]) * i // (count + 1))
        for i in range(1, count + 1)
    ]
    return points + [end]


def _lock(start, points):
    moved = next((point for point in points if point != start), None)
    if moved is None:
        return points
    if moved[0] != start[0]:
        return [(h, start[1]) for h, _ in points]
    return [(start[0], v) for _, v in points]


def paint_stroke(data, brush, points, locked=False):
    """Paints the cells at these map points into the data; the first cell decides between setting and clearing. Gives
    the cells in the order in which they were reached."""
    field, value = brush
    if locked:
        points = [points[0]] + _lock(points[0], points[1:])
    sets = None
    reached = []
    for h, v in points:
        if not (0 <= h < data.header["right"] and 0 <= v < data.header["bottom"]):
            continue
        column, row = h // 10, v // 10
        word = data.cell(column, row)
        if sets is None:
            sets = word & field != value
        data.set_cell(column, row, word & ~field | (value if sets else 0))
        if (column, row) not in reached:
            reached.append((column, row))
    return reached


def band_cells(start, end):
    """The cells that a band between two map points selects."""
    left, right = min(start[0], end[0]), max(start[0], end[0]) + 1
    top, bottom = min(start[1], end[1]), max(start[1], end[1]) + 1
    return [(x, y) for y in range(top // 10, bottom // 10) for x in range(left // 10, right // 10)]


def fill_cells(data, brush, cells):
    field, value = brush
    for column, row in cells:
        data.set_cell(column, row, data.cell(column, row) & ~field | value)


def set_woods_and_towns_to_rough2(data):
    for i, word in enumerate(data.cells):
        if word & 0x00C0 and word >> COST_SHIFT < 2:
            data.cells[i] = word & ~COST_MASK | 2 << COST_SHIFT
