"""A first editing session on a sample map: open, paint, scroll, save, quit; every pixel and byte in its place."""

import os
import shutil

from journey import RED, SAMPLES, run, solid_mark
from support import model, palettes
from support.mapfiles import NO_GO_MASK, WOODS, MapData, read_bitmap

NAME = "Map102c.dat"
BLACK, WHITE = (0, 0, 0), (255, 255, 255)


def find_cell(data, wooded, columns, rows):
    """The first cell of that area that has woods, or has none."""
    return next((x, y) for y in rows for x in columns if bool(data.cell(x, y) & WOODS) == wooded)


def middle(cell):
    return 10 * cell[0] + 5, 10 * cell[1] + 5


def read_tile(journey, place, cell):
    """The picture that stands in a cell now, after a look at whether it can be a tile: white strokes on black."""
    left, top = place.on_screen((10 * cell[0], 10 * cell[1]))
    journey.xdotool("mousemove", place.left + 600, place.top + 30)
    journey.settle()
    shot = journey.shot()
    colours = [shot.pixel(left + x, top + y) for y in range(10) for x in range(10)]
    journey.expect(
        set(colours) == {BLACK, WHITE} and 5 <= colours.count(WHITE) <= 40,
        "a NO-GO tile is a black square with a white digit",
    )
    return [shot.row(left, top + y, 10) for y in range(10)]


def first_session(journey):
    for name in (NAME, "Map102c.bmp"):
        shutil.copy(os.path.join(SAMPLES, name), journey.maps)
    original, original_art = journey.read(NAME), journey.read("Map102c.bmp")
    data, art = MapData(original), read_bitmap(journey.path("Map102c.bmp"))

    journey.start()
    journey.open_map(NAME)
    place = journey.place_of_map(art)
    journey.expect((place.width, place.height) == (1216, 934), "the window fits the map of 1200 x 900")
    journey.expect_view(place, art, "the opened map shows its art")
    journey.picture("session_1_opened")

    # A smaller window, so that there is something to scroll.
    place = journey.size_by_grow_box(place, art, (950, 750), (900, 700))
    journey.expect_view(place, art, "the smaller window shows the art")

    palette = journey.open_palette("ctrl+t")
    journey.expect((palette.left, palette.top) == (25, 50), "the features palette opens at (25, 50)")
    holes = [palette]
    journey.click_in(palette, *palettes.WOODS)
    marks = lambda: journey.feature_marks(place, data, lambda word: word & WOODS, solid_mark(RED))
    journey.expect_view(place, art, "the woods are marked red", marks(), holes)

    start = middle(find_cell(data, False, range(40, 60), range(40, 50)))
    path = [start] + model.line(start, (start[0] + 180, start[1] + 60))
    reached = journey.stroke(place, data, model.feature_brush(WOODS), path)
    journey.expect(len(reached) > 15, "the model's stroke reaches many cells")
    journey.expect_view(place, art, "a stroke adds woods", marks(), holes)

    start = middle(find_cell(data, True, range(40, 70), range(5, 30)))
    bend = (start[0] + 100, start[1] + 40)
    path = [start] + model.line(start, bend) + model.line(bend, (start[0] + 20, start[1] + 90))
    journey.stroke(place, data, model.feature_brush(WOODS), path)
    journey.expect_view(place, art, "a stroke from a wooded cell takes woods away", marks(), holes)

    start = middle(find_cell(data, False, range(36, 60), range(55, 60)))
    path = [start] + model.line(start, (start[0] + 150, start[1] - 80))
    reached = journey.stroke(place, data, model.feature_brush(WOODS), path, key="shift")
    journey.expect(len({row for _, row in reached}) == 1, "the model keeps the locked stroke in one row")
    journey.expect_view(place, art, "Shift keeps the stroke in its row", marks(), holes)
    journey.picture("session_2_woods")

    journey.click_in(palette, *palettes.NO_GO_2)
    start = (455, 225)
    path = [start] + model.line(start, (655, 225), 6) + model.line((655, 225), (655, 300), 6)
    reached = journey.stroke(place, data, model.no_go_brush(2), path)
    tile = read_tile(journey, place, reached[-1])
    no_go = lambda: journey.feature_marks(place, data, lambda word: word & NO_GO_MASK == 0x0200, tile)
    journey.expect_view(place, art, "NO-GO 2 cells carry their tile", no_go(), holes)

    journey.keys("Right", "Down")
    journey.wheel_down(place)
    place.h, place.v = 128, 160
    journey.expect_view(place, art, "arrow keys and wheel scroll the map and its marks", no_go(), holes)
    start = (805, 565)
    path = [start] + model.line(start, (905, 785), 6)
    journey.stroke(place, data, model.no_go_brush(2), path)
    journey.expect_view(place, art, "the scrolled map takes a stroke", no_go(), holes)
    journey.picture("session_3_no_go")
    journey.wheel_up(place)
    journey.keys("Left")
    place.h, place.v = 0, 80
    journey.expect_view(place, art, "the map scrolls back", no_go(), holes)

    journey.answer(palette, "Escape")
    journey.expect_view(place, art, "without the palette the map shows its art")
    journey.save()
    journey.expect_saved(NAME, data, "the saved file holds exactly what was painted")
    journey.picture("session_4_saved")
    journey.expect(journey.quit() == 0, "the program ends with status 0")

    journey.expect(journey.read(NAME + "_old") == original, "the backup is the file as it was")
    journey.expect(journey.read("Map102c.bmp") == original_art, "the art is untouched")
    journey.expect(data.to_bytes() != original, "the session changed something")
    journey.expect(
        sorted(os.listdir(journey.maps)) == sorted([NAME, NAME + "_old", "Map102c.bmp"]), "no other file appears"
    )
    shutil.copy(journey.path(NAME), os.path.join(journey.folder, NAME))
    print("  saved map: " + os.path.relpath(os.path.join(journey.folder, NAME)))


run(first_session)
