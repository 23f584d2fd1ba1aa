"""Work survives the end of the program, whatever ends it: killed at any moment of painting and saving, crashing, told
to end by the system, or closed by the desktop. KESTREL_KILLS says how often."""

import os
import random
import resource
import signal
import time

from journey import TITLE, run
from support.mapfiles import HI_LOW, MapData
from support.screen import wait_until

RESCUE_QUESTION = (354, 108)
NAME = "Map180c.dat"
ENDS = (signal.SIGKILL, signal.SIGKILL, signal.SIGSEGV, None, signal.SIGTERM)  # None: a close request
# Seconds after which a stroke must be kept: whoever can writes it at the end.
WRITTEN_AFTER = {signal.SIGKILL: 1, signal.SIGSEGV: 0.2, signal.SIGTERM: 0.2, None: 0.2}
KILLS = int(os.environ.get("KESTREL_KILLS", "5"))


def open_again(journey, art):
    """Opens the map and takes the work that was kept. Says whether there was any."""
    journey.start()
    journey.choose_map(NAME)
    wait_until(
        lambda: journey.find_window(size=RESCUE_QUESTION) or journey.find_window(title="%s - %s" % (TITLE, NAME)),
        "the map or the question",
    )
    journey.settle()
    question = journey.find_window(size=RESCUE_QUESTION)
    if question:
        journey.picture("question")
        journey.answer(question, "Return")
    journey.wait_window(title="%s - %s" % (TITLE, NAME))
    return question is not None


def paint_until(journey, place, start, chance, deadline):
    """Clicks one cell after another and saves now and then; gives each cell's number with the time of its click."""
    painted = []
    while time.monotonic() < deadline:
        number = start + len(painted)
        journey.click(*place.on_screen((25 + number % 40 * 10, 355 + number // 40 * 10)))
        painted.append((number, time.monotonic()))
        if chance.random() < 0.1:
            journey.keys("ctrl+s", "Return")
        time.sleep(0.05)
    return painted


def quit_on_full_disk(journey):
    resource.prlimit(journey.process.pid, resource.RLIMIT_FSIZE, (20, 20))
    journey.quit(saves=True)


def quit_after_painting_on(journey):
    journey.save()
    journey.click(*journey.last_cell)  # clears the cell again, and Quit does not ask about it
    journey.quit()


def expect_kept(journey, art, start, end):
    """Paints five cells, quits in that way, and finds the map as it was painted."""
    open_again(journey, art)
    place = journey.place_of_map(art)
    journey.open_palette("ctrl+t")
    cells = [(2 + number % 40, 35 + number // 40) for number in range(start, start + 5)]
    for x, y in cells:
        journey.last_cell = place.on_screen((10 * x + 5, 10 * y + 5))
        journey.click(*journey.last_cell)
    time.sleep(1.2)
    end(journey)
    journey.expect(open_again(journey, art), end.__name__ + " leaves work to take over")
    journey.save()
    journey.quit()
    saved = MapData(journey.read(NAME))
    marked = [bool(saved.cell(x, y) & HI_LOW) for x, y in cells]
    last = end is not quit_after_painting_on
    journey.expect(marked == [True] * 4 + [last], "%s keeps the cells: %s" % (end.__name__, marked))
    return start + 5


def kill_and_reopen(journey):
    art, _ = journey.make_map(180, 600, 500)
    chance = random.Random(180)
    start = kept = 0
    for kill in range(KILLS):
        open_again(journey, art)
        place = journey.place_of_map(art)
        journey.open_palette("ctrl+t")
        painted = paint_until(journey, place, start, chance, time.monotonic() + chance.uniform(1.5, 3))
        ended = time.monotonic()
        if ENDS[kill % 5] is None:
            journey.display.ask_to_close(journey.map_window())
        else:
            journey.process.send_signal(ENDS[kill % 5])
        journey.wait_exit()
        kept += open_again(journey, art)
        journey.save()
        journey.quit()
        saved = MapData(journey.read(NAME))
        lost = [
            number
            for number, when in painted
            if when < ended - WRITTEN_AFTER[ENDS[kill % 5]] and not saved.cell(2 + number % 40, 35 + number // 40) & HI_LOW
        ]
        journey.expect(not lost, "kill %d keeps %d cells: lost %s" % (kill + 1, len(painted), lost))
        start += len(painted)
    for end in (quit_on_full_disk, quit_after_painting_on):
        start = expect_kept(journey, art, start, end)
    journey.expect(kept >= KILLS // 2, "%d of %d ends left work to take over" % (kept, KILLS))


run(kill_and_reopen)
