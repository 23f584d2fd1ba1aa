"""What goes wrong with map files is told, and leaves the program as it was: the next map opens."""

import os

from journey import TITLE, run
from support.mapfiles import coded_art, new_map_data, write_bitmap, write_map
from support.screen import wait_until

MESSAGE = (240, 138)
NAMING_RULE = (400, 190)


def wait_alert(journey, size, but=()):
    """The alert of that size, when it has come to rest; not one of those seen before."""

    def find():
        return next((each for each in journey.windows() if each.size() == size and each.number not in but), None)

    alert = wait_until(find, "an alert of %d x %d" % size)
    journey.settle(0.15)
    return alert


def picture_of(journey, window):
    shot = journey.shot()
    return [shot.row(window.left, window.top + y, window.width) for y in range(window.height)]


def try_map(journey, name, sizes):
    """Opens a map that cannot be opened; the alerts of these sizes come one after the other. Gives their pictures."""
    journey.choose_map(name)
    pictures, seen = [], []
    for size in sizes:
        alert = wait_alert(journey, size, seen)
        pictures.append(picture_of(journey, alert))
        journey.picture("alert_%s_%d" % (name[:6], len(pictures)))
        seen.append(alert.number)
        journey.answer(alert)
    journey.settle()
    journey.expect(len(journey.windows()) == 1, "%s brings up %d alerts and no more" % (name, len(sizes)))
    journey.expect(journey.map_window().title == TITLE, "no map is shown after " + name)
    return pictures


def open_errors(journey):
    art = coded_art(600, 400)
    good = new_map_data(120, 600, 400)
    for number in (99, 120, 121, 122, 123, 124):
        write_bitmap(journey.path("Map%03dc.bmp" % number), art)
    for number in (99, 101, 120):
        write_map(journey.path("Map%03dc.dat" % number), good)
    broken = new_map_data(121, 600, 400)
    broken.header["columns"] = 0
    write_map(journey.path("Map121c.dat"), broken)
    large = new_map_data(122, 3200, 3300)
    large.header["columns"] = large.columns = 310
    write_map(journey.path("Map122c.dat"), large)
    with open(journey.path("Map123c.dat"), "wb") as file:
        file.write(b"")
    before = sorted(os.listdir(journey.maps))

    journey.start()
    journey.keys("ctrl+o")
    dialog = journey.wait_window(title="Select a map...")
    journey.wait_active(dialog)
    journey.answer(dialog, "Escape")
    journey.settle()
    journey.expect(len(journey.windows()) == 1, "a cancelled choice brings up nothing")

    (no_art,) = try_map(journey, "Map101c.dat", [MESSAGE])
    (no_data,) = try_map(journey, "Map124c.dat", [MESSAGE])
    journey.expect(no_data != no_art, "a map file that is not there has a message of its own")
    try_map(journey, "Map099c.dat", [NAMING_RULE])
    (empty,) = try_map(journey, "Map123c.dat", [MESSAGE])
    (damaged,) = try_map(journey, "Map121c.dat", [MESSAGE])
    width, height, unreadable = try_map(journey, "Map122c.dat", [MESSAGE, MESSAGE, MESSAGE])
    journey.expect(damaged == unreadable == empty, "a header that cannot be read has one message")
    journey.expect(
        all(first != second for first, second in ((no_art, damaged), (width, height), (height, damaged))),
        "different faults have different messages",
    )

    journey.keys("ctrl+n")
    journey.choose_file("Select a bmp file...", journey.path("Map130c.bmp"))
    journey.settle()
    journey.expect(len(journey.windows()) == 1, "art that is not there brings up nothing")

    journey.open_map("mAP120C.dat")
    journey.expect_view(journey.place_of_map(art), art, "a good map opens after all of that, under any letter case")
    journey.expect(sorted(os.listdir(journey.maps)) == before, "no file appears or goes")
    journey.expect(journey.quit() == 0, "the program ends with status 0")


run(open_errors)
