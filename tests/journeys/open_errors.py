"""What goes wrong with map files is told, and leaves the program as it was: the next map opens."""

import os

from journey import TITLE, run
from support.mapfiles import new_map_data, write_map
from support.screen import wait_until

MESSAGE, NAMING_RULE = (240, 138), (400, 190)


def try_map(journey, name, sizes):
    """Opens a map that cannot be opened; the alerts of these sizes come one after the other."""
    journey.choose_map(name)
    seen = []
    for size in sizes:
        new = lambda: [each for each in journey.windows() if each.size() == size and each.number not in seen]
        alert = wait_until(new, "an alert of %d x %d" % size)[0]
        journey.settle(0.15)
        seen.append(alert.number)
        journey.picture("alert_%s_%d" % (name[:6], len(seen)))
        journey.answer(alert)
    journey.settle()
    journey.expect(len(journey.windows()) == 1, "%s brings up %d alerts and no more" % (name, len(sizes)))
    journey.expect(journey.map_window().title == TITLE, "no map is shown after " + name)


def open_errors(journey):
    # Deep enough that the file dialog, which shows this folder, offers its parts while a whole path is typed.
    journey.maps = journey.path("a/m")
    os.makedirs(journey.maps)
    for number in (99, 101, 123, 124):
        journey.make_map(number, 600, 400)
    art, _ = journey.make_map(120, 600, 400)
    os.remove(journey.path("Map101c.bmp"))
    large = new_map_data(123, 3200, 3300)
    large.header["columns"] = large.columns = 310
    write_map(journey.path("Map123c.dat"), large)
    os.remove(journey.path("Map124c.dat"))
    before = sorted(os.listdir(journey.maps))

    journey.start()
    journey.keys("ctrl+o")
    dialog = journey.wait_window(title="Select a map...")
    journey.wait_active(dialog)
    journey.answer(dialog, "Escape")
    journey.settle()
    journey.expect(len(journey.windows()) == 1, "a cancelled choice brings up nothing")
    try_map(journey, "Map101c.dat", [MESSAGE])  # there is no art
    try_map(journey, "Map124c.dat", [MESSAGE])  # there is no data file
    try_map(journey, "Map099c.dat", [NAMING_RULE])
    try_map(journey, "Map123c.dat", [MESSAGE, MESSAGE, MESSAGE])  # too wide, too high, not to be read

    journey.keys("ctrl+n")
    journey.choose_file("Select a bmp file...", journey.path("Map130c.bmp"))
    journey.settle()
    journey.expect(len(journey.windows()) == 1, "art that is not there brings up nothing")
    journey.open_map("mAP120C.dat")
    journey.expect_view(journey.place_of_map(art), art, "a good map opens after all of that, under any letter case")
    journey.expect(sorted(os.listdir(journey.maps)) == before, "no file appears or goes")
    journey.expect(journey.quit() == 0, "the program ends with status 0")


run(open_errors)
