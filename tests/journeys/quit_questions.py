"""Quitting: what is asked, what each answer does to the files, and a close request of the desktop."""

import os

from journey import HAND, run
from support import model, palettes
from support.mapfiles import HI_LOW, MapData, new_map_data

SAVE_QUESTION, QUIT_QUESTION, RESCUE_QUESTION = (240, 70), (200, 70), (354, 108)
NAME = "Map170c.dat"


def open_and_paint(journey, art, data, closes_palette=True, is_kept=False):
    """Opens the map, without the work that was kept, and paints one cell, which makes unsaved work."""
    journey.start()
    journey.open_map(NAME)
    if is_kept:
        question = journey.wait_window(size=RESCUE_QUESTION)
        journey.click_in(question, 259, 88)
        journey.wait_gone(question)
    place = journey.place_of_map(art)
    palette = journey.open_palette("ctrl+t")
    point = (455, 355)
    journey.stroke(place, data, model.feature_brush(HI_LOW), [point])
    left, top = place.on_screen(point)
    marked = data.cell(45, 35) & HI_LOW != 0
    journey.expect_soon(lambda: (journey.shot().pixel(left, top) == (255, 0, 0)) == marked, "a click paints a cell")
    if closes_palette:
        journey.answer(palette, "Escape")


def question_over_palette(journey, art, data):
    """Asks over a palette, which the window manager then raises as it does when it is clicked."""
    open_and_paint(journey, art, data, closes_palette=False)
    palette = journey.find_window(size=palettes.FEATURES)
    grip = (palette.left + 150, palette.top + 9)
    journey.drag([grip, (640, 430), (640, 440)], pause=HAND)
    journey.settle()
    palette = journey.find_window(size=palettes.FEATURES)

    def expect_on_top(question):
        rows = range(question.top + 1, question.top + question.height - 1)
        rows_of = lambda shot: [shot.row(question.left + 1, row, question.width - 2) for row in rows]
        before = rows_of(journey.shot())
        for place in (palettes.CLOSE_BOX, (150, 248)):
            journey.click_in(palette, *place)
            journey.xdotool("windowraise", palette.number)
            journey.settle()
            journey.expect(rows_of(journey.shot()) == before, "the question lies over the palette at %d, %d" % place)
        journey.expect(len(journey.windows()) == 3, "the palette's close box neither closes it nor answers")

    original = journey.read(NAME)
    journey.keys("ctrl+s")
    question = journey.wait_window(size=(240, 100))
    journey.settle()
    expect_on_top(question)
    journey.picture("question_over_palette")
    journey.click_in(question, 140, 80)
    journey.wait_gone(question)
    journey.expect(journey.read(NAME) == original, "No writes nothing")
    journey.keys("ctrl+q")
    question = journey.wait_window(size=SAVE_QUESTION)
    journey.settle()
    expect_on_top(question)
    journey.click_in(question, 130, 50)
    journey.expect(journey.wait_exit() == 0, "No Save ends the program")


def quit_questions(journey):
    art, data = journey.make_map(170, 600, 500)
    original = journey.read(NAME)

    open_and_paint(journey, art, data)
    journey.keys("ctrl+q")
    question = journey.wait_window(size=SAVE_QUESTION)
    journey.settle()
    journey.picture("quit_unsaved")
    journey.keys("Escape")
    journey.settle()
    journey.expect(journey.find_window(size=SAVE_QUESTION), "Escape does not answer the question")
    journey.click_in(question, 60, 50)
    journey.wait_gone(question)
    journey.settle()
    journey.expect(journey.is_running(), "Cancel keeps the program running")
    journey.expect_view(journey.place_of_map(art), art, "Cancel leaves the map on the screen")
    journey.expect(journey.quit(saves=False) == 0, "No Save ends the program with status 0")
    journey.expect(journey.read(NAME) == original, "No Save writes nothing")
    journey.expect(not os.path.exists(journey.path(NAME + "_old")), "No Save makes no backup")

    data = new_map_data(170, 600, 500)
    open_and_paint(journey, art, data)
    journey.expect(journey.quit(saves=True) == 0, "Save ends the program with status 0")
    journey.expect_saved(NAME, data, "Save writes the map")
    journey.expect(journey.read(NAME + "_old") == original, "Save keeps the old file as the backup")

    journey.start()
    journey.open_map(NAME)
    journey.keys("ctrl+q")
    question = journey.wait_window(size=QUIT_QUESTION)
    journey.settle()
    journey.picture("quit_saved")
    journey.click_in(question, 105, 50)
    journey.wait_gone(question)
    journey.settle()
    journey.expect(journey.is_running(), "No keeps the program running")
    journey.expect(journey.quit() == 0, "Yes ends the program with status 0")

    saved = journey.read(NAME)
    for closes_palette in (True, False):
        open_and_paint(journey, art, MapData(saved), closes_palette, is_kept=not closes_palette)
        journey.display.ask_to_close(journey.map_window())
        journey.expect(journey.wait_exit() == 0, "a close request ends the program with status 0 and asks nothing")
    open_and_paint(journey, art, MapData(saved), closes_palette=False, is_kept=True)
    journey.expect(journey.quit(saves=False) == 0, "No Save ends the program also with a palette open")
    journey.expect(journey.read(NAME) == saved, "none of these writes anything")

    question_over_palette(journey, art, MapData(saved))

    journey.start()
    journey.display.ask_to_close(journey.map_window())
    journey.expect(journey.wait_exit() == 0, "a close request ends the program before any map too")


run(quit_questions)
