"""Quitting: what is asked, what each answer does to the files, and a close request of the desktop."""

import os

from journey import run
from support import model
from support.mapfiles import HI_LOW, MapData, coded_art, new_map_data, write_bitmap, write_map

SAVE_QUESTION, QUIT_QUESTION = (240, 70), (200, 70)
NAME = "Map170c.dat"


def open_and_paint(journey, art, data, closes_palette=True):
    """Opens the map and paints one cell, which makes unsaved work."""
    journey.start()
    journey.open_map(NAME)
    place = journey.place_of_map(art)
    journey.keys("ctrl+t")
    palette = journey.wait_window(size=(300, 255))
    point = (455, 355)
    journey.drag_on_map(place, [point])
    model.paint_stroke(data, model.feature_brush(HI_LOW), [point])
    left, top = place.on_screen(point)
    marked = data.cell(45, 35) & HI_LOW != 0
    journey.expect_soon(lambda: (journey.shot().pixel(left, top) == (255, 0, 0)) == marked, "a click paints a cell")
    if closes_palette:
        journey.answer(palette, "Escape")


def quit_questions(journey):
    art = coded_art(600, 500)
    data = new_map_data(170, 600, 500)
    write_bitmap(journey.path("Map170c.bmp"), art)
    write_map(journey.path(NAME), data)
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
    open_and_paint(journey, art, MapData(saved))
    journey.display.ask_to_close(journey.map_window())
    journey.expect(journey.wait_exit() == 0, "a close request ends the program with status 0 and asks nothing")
    journey.expect(journey.read(NAME) == saved, "a close request writes nothing")

    open_and_paint(journey, art, MapData(saved), closes_palette=False)
    journey.expect(journey.quit(saves=False) == 0, "No Save ends the program also with a palette open")
    open_and_paint(journey, art, MapData(saved), closes_palette=False)
    journey.display.ask_to_close(journey.map_window())
    journey.expect(journey.wait_exit() == 0, "a close request ends the program also with a palette open")
    journey.expect(journey.read(NAME) == saved, "neither writes anything")

    journey.start()
    journey.display.ask_to_close(journey.map_window())
    journey.expect(journey.wait_exit() == 0, "a close request ends the program before any map too")


run(quit_questions)
