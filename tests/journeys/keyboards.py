"""Keyboards without Latin letters, and dead keys: the commands stay where the keys lie."""

import os
import shutil
import subprocess

from journey import SAMPLES, run
from support import palettes

NAME = "Map102c.dat"
PLACES = {"f": 41, "m": 58, "q": 24, "t": 28, "w": 25}  # X11 codes


def use_layout(journey, *words):
    subprocess.run(["setxkbmap", *words], check=True, timeout=30)
    journey.settle()


def keyboards(journey):
    for name in (NAME, "Map102c.bmp"):
        shutil.copy(os.path.join(SAMPLES, name), journey.maps)
    journey.start()
    journey.open_map(NAME)
    window = journey.map_window()
    for layout in ("ru", "gr", "us,gr", "ru,us"):
        use_layout(journey, layout)
        for key, size in (("t", palettes.FEATURES), ("m", palettes.MOVE_COSTS)):
            journey.keys("ctrl+%d" % PLACES[key])
            palette = journey.wait_window(size=size)
            journey.keys(str(PLACES["t"]))  # no command without Ctrl
            journey.answer(palette, "ctrl+%d" % PLACES["w"])
        journey.keys("alt+%d" % PLACES["f"])
        journey.expect_soon(lambda: any(each.overrides for each in journey.windows()), "Alt+F opens a menu: " + layout)
        journey.keys("Escape", "Escape")
        journey.expect_soon(lambda: journey.is_active(window), "the map has the keyboard again: " + layout)
    use_layout(journey, "us", "dvorak")
    journey.keys("ctrl+%d" % PLACES["q"])  # an apostrophe
    journey.keys("ctrl+t")
    journey.answer(journey.wait_window(size=palettes.FEATURES), "Escape")
    use_layout(journey, "us", "-variant", "intl")
    journey.keys("dead_acute", "dead_acute", "ctrl+t")
    journey.answer(journey.wait_window(size=palettes.FEATURES), "Escape")
    use_layout(journey, "gr")
    journey.keys("ctrl+%d" % PLACES["q"])
    journey.click_in(journey.wait_window(size=(240, 70)), 130, 50)  # to open a palette counts as a change
    journey.expect(journey.wait_exit() == 0, "Ctrl+Q ends the program on a Greek keyboard")


run(keyboards)
