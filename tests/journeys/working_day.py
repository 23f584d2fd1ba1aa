"""A day's work: a new map from art, its terrain and costs, the views, saves under two numbers, and the map again."""

import os
import shutil

from journey import EDIT_MENU, GREY_192, STRIP_HEIGHT, TITLE, VIEW_MENU, run
from support import model, palettes
from support.mapfiles import HI_LOW, ROAD, TOWN, WOODS, coded_art, new_map_data, write_bitmap

WIDTH, HEIGHT = 855, 625
FILL_QUESTIONS = {palettes.FEATURES: (190, 40), palettes.MOVE_COSTS: (130, 40)}
ANALYSIS_COSTS = {0: (221,) * 3, 1: (153,) * 3, 2: (102,) * 3, 3: (85,) * 3, 4: (0,) * 3, 6: (166, 202, 240)}


def type_fields(journey, dialog, values):
    """Types values into edit fields, given with the middles of the fields, and chooses OK."""
    for (x, y), value in values:
        journey.click_in(dialog, x, y)
        journey.type(str(value))
    journey.keys("Return")  # ends the editing
    journey.answer(dialog)


def new_map(journey, art):
    journey.keys("ctrl+n")
    journey.choose_file("Select a bmp file...", journey.path("Map180c.bmp"))
    dialog = journey.wait_window(size=(460, 190))
    journey.settle()
    journey.picture("day_1_new_map")
    type_fields(journey, dialog, [((25, 97), 123), ((25, 117), 98), ((25, 137), 42)])
    journey.wait_window(title=TITLE + " - Map180c.dat")
    place = journey.place_of_map(art)
    journey.expect_view(place, art, "the new map shows its art")
    return place, new_map_data(180, WIDTH, HEIGHT, 98, 42, 123)


def paint_terrain(journey, place, data):
    palette = journey.open_palette("ctrl+t")
    strokes = [
        (None, model.feature_brush(HI_LOW), (405, 105), (605, 185)),
        (palettes.WOODS, model.feature_brush(WOODS), (415, 155), (595, 155)),
        (palettes.TOWN, model.feature_brush(TOWN), (505, 85), (505, 255)),
        (palettes.ROAD, model.feature_brush(ROAD), (405, 205), (705, 205)),
        (palettes.NO_GO_1, model.no_go_brush(1), (655, 105), (655, 305)),
        (palettes.NO_GO_2, model.no_go_brush(2), (605, 285), (805, 285)),
        (palettes.NO_GO_3, model.no_go_brush(4), (755, 255), (755, 325)),
    ]
    for box, brush, start, end in strokes:
        if box:  # the palette opens with Hi/Low
            journey.click_in(palette, *box)
        journey.stroke(place, data, brush, [start] + model.line(start, end))
    journey.settle()
    journey.click_in(palette, *palettes.WOODS)
    fill(journey, place, data, palette, model.feature_brush(WOODS), (415, 345), (548, 471), (95, 20))
    journey.picture("day_2_terrain")
    journey.answer(palette, "Escape")


def fill(journey, place, data, palette, brush, start, end, button, key="alt"):
    """Selects an area with Alt and the pointer and chooses Fill."""
    journey.drag_on_map(place, [start] + model.line(start, end, 20), key)
    question = journey.wait_window(size=FILL_QUESTIONS[palette.size()])

    wanted = place.on_screen([10 * ((max(start[i], end[i]) + 1) // 10) for i in range(2)])
    hangs_at = (question.left + question.width, question.top)
    journey.expect(hangs_at == wanted, "the fill question hangs at the corner %s, not %s" % (wanted, hangs_at))
    journey.expect_soon(lambda: not journey.find_window(size=palette.size()), "the palette hides under the question")
    journey.click_in(question, *button)
    journey.wait_gone(question)
    journey.wait_window(size=palette.size())
    journey.settle()
    journey.expect(journey.is_active(journey.map_window()), "the map window keeps the keyboard after a fill")
    model.fill_cells(data, brush, model.band_cells(start, end))


def paint_costs(journey, place, data):
    palette = journey.open_palette("ctrl+m")
    for code, (start, end) in {
        1: ((355, 45), (555, 45)),
        2: ((355, 65), (555, 65)),
        3: ((355, 85), (455, 125)),
        4: ((355, 105), (405, 145)),
        6: ((705, 45), (805, 145)),
    }.items():
        journey.click_in(palette, *palettes.COSTS[code])
        journey.stroke(place, data, model.cost_brush(code), [start] + model.line(start, end))
    journey.settle()
    fill(journey, place, data, palette, model.cost_brush(6), (605, 405), (742, 513), (35, 20))
    journey.click_in(palette, *palettes.COSTS[3])
    fill(journey, place, data, palette, model.cost_brush(3), (590, 470), (455, 345), (35, 20), key="super")
    journey.click_in(palette, *palettes.ROUGH_TOWNS)
    journey.answer(journey.wait_window(size=(200, 100)))
    model.set_woods_and_towns_to_rough2(data)
    journey.settle()
    journey.picture("day_3_costs")
    journey.answer(palette, "Escape")


def expect_pixels(journey, place, probes, what):
    journey.xdotool("mousemove", place.left + 300, place.top + 580)
    journey.settle()
    shot = journey.shot()
    for point, colour in probes:
        found = shot.pixel(*place.on_screen(point))
        journey.expect(found == colour, "%s: map pixel %s is %s, not %s" % (what, point, found, colour))


def switch_views(journey, place, data, art):
    journey.choose(place, VIEW_MENU, 1)  # Show UTM Grid
    lines = [((10 + 100 * i, 33), (0, 0, 0)) for i in range(9)]
    lines += [((33, HEIGHT - 10 - 100 * i), (0, 0, 0)) for i in range(6)]
    beside = [(point, art.pixel(*point)) for point in ((9, 33), (11, 33), (109, 33), (33, HEIGHT - 9), (33, 514))]
    expect_pixels(journey, place, lines + beside, "the UTM grid")
    journey.choose(place, VIEW_MENU, 3)  # Terrain Analysis
    journey.settle()
    probes = []
    for column, row in ((35, 4), (35, 6), (35, 8), (35, 10), (71, 5), (2, 2), (62, 42)):
        word = data.cell(column, row)
        probes.append(((10 * column + 1, 10 * row + 2), ANALYSIS_COSTS[word >> 11]))
    probes += [((455, 355), (102, 204, 102)), ((455, 205), (255, 255, 255)), ((505, 235), (153, 0, 51))]
    expect_pixels(journey, place, probes, "the terrain analysis")
    journey.picture("day_4_views")
    journey.keys("F8")
    probes = [(point, art.pixel(*point)) for point in ((2, 2), (455, 355))]
    expect_pixels(journey, place, probes, "F8 brings the art back")
    journey.choose(place, VIEW_MENU, 1)
    journey.expect_view(place, art, "the grid goes again")

    journey.keys("F9")
    strip = lambda: [
        journey.shot().row(place.left, place.top + place.height - STRIP_HEIGHT + i, place.width - 18)
        for i in range(STRIP_HEIGHT)
    ]
    plain = [bytes(GREY_192 + (0,)) * (place.width - 18)] * STRIP_HEIGHT
    journey.xdotool("mousemove", *place.on_screen((455, 355)))
    journey.expect_soon(lambda: strip() != plain, "the read-out shows the terrain under the pointer")
    journey.settle()
    journey.picture("day_5_readout")
    over_woods = strip()
    journey.xdotool("mousemove", *place.on_screen((755, 285)))
    journey.expect_soon(lambda: strip() not in (plain, over_woods), "the read-out follows the pointer")
    journey.keys("F9")
    journey.expect_soon(lambda: strip() == plain, "F9 clears the read-out")


def working_day(journey):
    art = coded_art(WIDTH, HEIGHT)
    write_bitmap(journey.path("Map180c.bmp"), art)
    journey.start()
    place, data = new_map(journey, art)
    paint_terrain(journey, place, data)
    paint_costs(journey, place, data)
    journey.expect_view(place, art, "after the palettes the map shows its art")
    switch_views(journey, place, data, art)

    journey.save()
    journey.expect_saved("Map180c.dat", data, "the first save creates the file with the day's work")
    first = data.to_bytes()
    journey.expect(not os.path.exists(journey.path("Map180c.dat_old")), "a first save makes no backup")

    journey.choose(place, EDIT_MENU, 4)  # Map ID Number
    type_fields(journey, journey.wait_window(size=(280, 70)), [((25, 17), 181)])
    data.header["map_id"] = 181
    journey.expect_soon(lambda: journey.map_window().title == "Map181c.dat", "the title tells the new number")
    journey.choose(place, EDIT_MENU, 2)  # Map Version Number
    type_fields(journey, journey.wait_window(size=(280, 70)), [((25, 17), 124)])
    data.header["version"] = 124
    journey.expect(journey.quit(saves=True) == 0, "Save at the end ends the program with status 0")
    journey.expect_saved("Map181c.dat", data, "the map is saved under its new name")
    journey.expect(journey.read("Map180c.dat") == first, "the file of the old name stays")

    shutil.copy(journey.path("Map180c.bmp"), journey.path("Map181c.bmp"))
    journey.start()
    journey.open_map("Map181c.dat")
    place = journey.place_of_map(art)
    journey.keys("F8")
    expect_pixels(journey, place, [((455, 355), (102, 204, 102)), ((21, 22), (221,) * 3)], "the map opened again")
    journey.save()
    journey.expect_soon(
        lambda: os.path.exists(journey.path("Map181c.dat_old")), "a save under the same number makes a backup"
    )
    journey.settle()
    journey.expect_saved("Map181c.dat", data, "reading and saving changes nothing")
    journey.expect(journey.quit() == 0, "the program ends with status 0")


run(working_day)
