"""Quitting: what is asked, what each answer does to the files, and a close request of the desktop."""

import os

from journey import run
from support import model
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

    journey.start()
    journey.display.ask_to_close(journey.map_window())
    journey.expect(journey.wait_exit() == 0, "a close request ends the program before any map too")


run(quit_questions)
