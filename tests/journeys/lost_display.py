"""The X server is killed under the program: it ends, and what was painted until then is kept."""

import glob
import os
import signal

from journey import run
from support.mapfiles import HI_LOW, MapData

NAME = "Map180c.dat"


def lost_display(journey):
    art, _ = journey.make_map(180, 600, 500)
    journey.start()
    journey.open_map(NAME)
    place = journey.place_of_map(art)
    journey.open_palette("ctrl+t")
    for number in range(6):
        journey.click(*place.on_screen((25 + number * 10, 355)))
    journey.settle()
    os.kill(int(os.environ["SERVER_PROCESS"]), signal.SIGKILL)
    journey.wait_exit()
    copies = glob.glob(os.path.join(os.environ["HOME"], ".local/state/kestrel-map-tool/rescue/*.dat"))
    journey.expect(len(copies) == 1, "one rescue copy is there, not %d" % len(copies))
    for path in copies:
        with open(path, "rb") as file:
            kept = MapData(file.read())
        journey.expect(all(kept.cell(2 + number, 35) & HI_LOW for number in range(6)), "it holds all six cells")


run(lost_display)
