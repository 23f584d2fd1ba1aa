"""A window manager that is busy while a map is opened still gives the window the size of the map in the end."""

import os
import signal
import time

from journey import run

NAME = "Map150c.dat"
SCROLL_BAR = 16


def busy_manager(journey):
    manager = int(os.environ["WINDOW_MANAGER_PROCESS"])
    art, _ = journey.make_map(150, 455, 225)
    for delay in (0.05, 0.2, 0.4):
        journey.start()
        journey.keys("ctrl+o")
        dialog = journey.wait_window(title="Select a map...")
        journey.wait_active(dialog)
        journey.type(journey.path(NAME))
        journey.settle()
        os.kill(manager, signal.SIGSTOP)
        try:
            journey.xdotool("key", "Return")
            time.sleep(delay)
        finally:
            os.kill(manager, signal.SIGCONT)
        when = "after the manager was away for %.2f s" % delay
        journey.expect_soon(lambda: journey.map_window().title.endswith(NAME), "the map opens " + when)
        journey.settle()
        journey.expect(journey.map_window().width == art.width + SCROLL_BAR, "the window is as wide as the map " + when)
        journey.expect_view(journey.place_of_map(art), art, "the map is shown " + when)
        journey.expect(journey.quit() == 0, "the program ends with status 0")


run(busy_manager)
