"""What the journeys share: they start the program on the virtual display, use it with pointer and keys as a user
would, and look at the screen and at the files. A journey is a function that run() is given."""

import os
import signal
import struct
import subprocess
import sys
import time

from support import model, palettes
from support.mapfiles import coded_art, find_difference, new_map_data, write_bitmap, write_map
from support.screen import Display, Pixels, wait_until

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PROGRAM = os.environ.get("KESTREL_PROGRAM", os.path.join(ROOT, "build", "kestrel-map-tool"))
SAMPLES = os.path.join(ROOT, "build", "samples")

TITLE = "Kestrel Map Tool v105AA"
GREY_192 = (192, 192, 192)
GREY_187 = (187, 187, 187)
HAND = 0.04  # seconds between the positions of an unhurried hand
RED = (255, 0, 0)
BAR_WIDTH = 16
STRIP_HEIGHT = 18
BELOW_VIEW = BAR_WIDTH + STRIP_HEIGHT

FILE_MENU, EDIT_MENU, VIEW_MENU, HELP_MENU = range(4)


def solid_mark(colour):
    """A cell's picture, ten rows of screen pixels, in one colour."""
    return [bytes((colour[2], colour[1], colour[0], 0)) * 10] * 10


def runs(places, gap):
    """The first and last of each run of places, between which less than the gap is missing."""
    found = []
    for place in places:
        if found and place - found[-1][1] < gap:
            found[-1][1] = place
        else:
            found.append([place, place])
    return found


class MapPlace:
    """Where the map window's client area lies on the screen, and the map point at its top-left corner."""

    def __init__(self, left, top, width, height, h=0, v=0):
        self.left, self.top, self.width, self.height = left, top, width, height
        self.h, self.v = h, v

    @property
    def view_width(self):
        return self.width - BAR_WIDTH

    @property
    def view_height(self):
        return self.height - BELOW_VIEW

    def on_screen(self, point):
        return self.left + point[0] - self.h, self.top + point[1] - self.v


class Journey:
    def __init__(self, folder, screen_file):
        self.folder = folder
        self.maps = os.path.join(folder, "maps")
        os.makedirs(self.maps)
        self.pixels = Pixels(screen_file)
        self.display = Display()
        self.failures = 0
        self.taller = 0  # by how much questions may be taller than asked for: their texts may be longer
        self.process = None
        self.map_window_number = 0
        self.errors = open(os.path.join(folder, "program.txt"), "ab")
        wait_until(self.display.has_manager, "the window manager")

    # ---- what was found ----

    def expect(self, condition, claim):
        """Counts and reports a claim that does not hold, and goes on."""
        if not condition:
            self.failures += 1
            print("FAILED: " + claim)
            self.picture("failure_%d" % self.failures)
        return bool(condition)

    def expect_soon(self, ready, claim, timeout=5):
        try:
            wait_until(ready, claim, timeout)
        except TimeoutError:
            return self.expect(False, claim)
        return True

    def picture(self, name):
        path = os.path.join(self.folder, name + ".png")
        self.pixels.shot().save_png(path)
        print("  screenshot: " + os.path.relpath(path))

    def shot(self):
        return self.pixels.shot()

    def settle(self, quiet=0.25):
        """Waits until the screen has not changed for a while: nothing more is to come."""
        deadline = time.monotonic() + 10
        before, since = self.shot().pixels, time.monotonic()
        while time.monotonic() - since < quiet:
            if time.monotonic() > deadline:
                raise TimeoutError("the screen does not come to rest")
            time.sleep(0.02)
            now = self.shot().pixels
            if now != before:
                before, since = now, time.monotonic()

    # ---- the program ----

    def start(self):
        """Starts the program in the folder of maps and waits for its window."""
        self.process = subprocess.Popen(
            [PROGRAM], cwd=self.maps, stdin=subprocess.DEVNULL, stdout=self.errors, stderr=self.errors
        )
        window = self.wait_window(title=TITLE)
        self.map_window_number = window.number
        if not self.expect_soon(lambda: self.is_active(window), "the program's window has the keyboard at once", 3):
            self.click(window.left + window.width // 2, window.top - 8)
        self.wait_active(window)

    def wait_exit(self, timeout=10):
        """The program's exit status."""
        wait_until(lambda: self.process.poll() is not None, "the program's end", timeout)
        status = self.process.returncode
        self.process = None
        return status

    def is_running(self):
        return self.process is not None and self.process.poll() is None

    def end(self):
        if self.is_running():
            self.process.kill()
            self.process.wait()

    def windows(self):
        if not self.is_running():
            raise RuntimeError("the program has ended with status %s" % (self.process and self.process.returncode))
        return self.display.windows_of(self.process.pid)

    def find_window(self, title=None, size=None):
        for window in self.windows():
            if (title is None or window.title == title) and (size is None or self.has_size(window, size)):
                return window
        return None

    def has_size(self, window, size):
        width, height = window.size()
        return width == size[0] and 0 <= height - size[1] <= self.taller

    def wait_window(self, title=None, size=None, timeout=10):
        wanted = title or "of %d x %d" % size
        return wait_until(lambda: self.find_window(title, size), "a window " + wanted, timeout)

    def is_active(self, window=None):
        """Whether keys reach that window, or any of the program's."""
        word = self.display.property(self.display.root, "_NET_ACTIVE_WINDOW")
        active = struct.unpack("<Q", word[:8])[0] if len(word) >= 8 else 0
        return active in ([window.number] if window else [each.number for each in self.windows()])

    def wait_active(self, window=None):
        wait_until(lambda: self.is_active(window), "the keyboard's focus")

    def map_window(self):
        return next(window for window in self.windows() if window.number == self.map_window_number)

    # ---- pointer and keys ----

    def xdotool(self, *words):
        subprocess.run(["xdotool", *map(str, words)], check=True, timeout=30)

    def keys(self, *names):
        self.wait_active()
        self.xdotool("key", *names)

    def type(self, text):
        self.wait_active()
        self.xdotool("type", "--delay", 2, text)

    def click(self, x, y, button=1):
        self.xdotool("mousemove", x, y, "click", button)

    def wheel_down(self, place):
        self.click(place.left + 300, place.top + 350, 5)

    def wheel_up(self, place):
        self.click(place.left + 300, place.top + 350, 4)

    def drag(self, points, key=None, pause=0):
        """Presses at the first of these screen points, visits the others and lets go; with no pause in one go."""
        wait = ["sleep", pause] if pause else []
        words = ["keydown", key] if key else []
        words += ["mousemove", *points[0], "mousedown", 1]
        for point in points[1:]:
            words += wait + ["mousemove", *point]
        words += wait + ["mouseup", 1]
        if key:
            words += ["keyup", key]
        self.xdotool(*words)

    def drag_on_map(self, place, points, key=None):
        self.drag([place.on_screen(point) for point in points], key)

    def stroke(self, place, data, brush, points, key=None):
        """Paints on the map and in the data. Gives the cells reached."""
        self.drag_on_map(place, points, key)
        return model.paint_stroke(data, brush, points, locked=key == "shift")

    def size_by_grow_box(self, place, art, via, size, wanted=None):
        """Drags the grow box so that the window gets that size, by way of another; gives the map's place then."""
        corner = (place.left + place.width - 8, place.top + place.height - 8)
        steps = [(place.left + width, place.top + height) for width, height in (via, size)]
        self.drag([corner, *steps], pause=HAND)
        width, height = wanted or size
        self.expect_soon(lambda: self.map_window().width == width, "the grow box makes the window %d wide" % width)
        window = self.map_window()
        place = MapPlace(place.left, place.top, window.width, window.top + window.height - place.top, place.h, place.v)
        place.h = min(place.h, max(art.width - place.view_width, 0))
        place.v = min(place.v, max(art.height - place.view_height, 0))
        self.expect((place.width, place.height) == (width, height), "the window is %d x %d" % (width, height))
        return place

    # ---- menus, palettes and dialogs ----

    def open_palette(self, key):
        """Opens a palette by its key, ctrl+t or ctrl+m."""
        self.keys(key)
        return self.wait_window(size=palettes.FEATURES if key == "ctrl+t" else palettes.MOVE_COSTS)

    def menu_titles(self, place):
        """The middle of each title of the menu bar, found by the blank between them."""
        window = self.map_window()
        top, bottom = window.top + 3, place.top - 3
        shot = self.shot()
        blank = shot.pixel(window.left + window.width - 5, (top + bottom) // 2)
        columns = range(window.left + 1, window.left + window.width - 1)
        words = runs((x for x in columns if any(shot.pixel(x, y) != blank for y in range(top, bottom))), 8)
        return [((first + last) // 2, (top + bottom) // 2) for first, last in words]

    def menu_items(self, menu):
        """The middle of each item of an open menu, separators left out, found by its lines of text."""
        shot = self.shot()
        left, right = menu.left + 4, menu.left + menu.width - 4
        blank = shot.pixel(right, menu.top + 3)
        rows = range(menu.top + 3, menu.top + menu.height - 3)
        lines = runs((y for y in rows if any(shot.pixel(x, y) != blank for x in range(left, right))), 4)
        return [(menu.left + 40, (first + last) // 2) for first, last in lines if last - first > 3]

    def open_menu(self, place, title):
        """Opens a menu with the pointer and gives the places of its items, from 0 and without the separators."""
        self.xdotool("mousemove", place.left + 300, place.top + 350)
        self.settle(0.1)
        self.click(*self.menu_titles(place)[title])
        menu = wait_until(lambda: next((each for each in self.windows() if each.overrides), None), "a menu")
        self.xdotool("mousemove_relative", "--", 0, -3)
        self.settle(0.1)
        return self.menu_items(menu)

    def choose(self, place, title, item):
        """Chooses an item with the pointer."""
        self.click(*self.open_menu(place, title)[item])
        wait_until(lambda: not any(each.overrides for each in self.windows()), "the end of the menu")

    def click_in(self, window, x, y):
        self.click(window.left + x, window.top + y)

    def answer(self, window, *names):
        """Answers a dialog with keys and waits until it has gone."""
        self.keys(*(names or ["Return"]))
        self.wait_gone(window)

    def wait_gone(self, window):
        wait_until(
            lambda: all(each.number != window.number for each in self.windows()),
            "the end of the dialog of %d x %d" % window.size(),
        )

    def choose_file(self, title, path):
        dialog = self.wait_window(title=title)
        self.wait_active(dialog)
        self.type(path)
        self.answer(dialog)

    def path(self, name):
        return os.path.join(self.maps, name)

    def make_map(self, number, width, height):
        """Writes a map without terrain whose art tells its own places; gives art and data."""
        art, data = coded_art(width, height), new_map_data(number, width, height)
        write_bitmap(self.path("Map%03dc.bmp" % number), art)
        write_map(self.path("Map%03dc.dat" % number), data)
        return art, data

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def choose_map(self, name):
        """Picks a data file of the folder of maps for Open Map."""
        self.keys("ctrl+o")
        self.choose_file("Select a map...", self.path(name))

    def open_map(self, name):
        self.choose_map(name)
        self.wait_window(title="%s - %s" % (TITLE, name))

    def save(self):
        """Saves with Ctrl+S and Yes."""
        self.keys("ctrl+s")
        self.answer(self.wait_window(size=(240, 100)))

    def quit(self, saves=None):
        """Quits with Ctrl+Q and gives the exit status; saves answers the question that unsaved work brings up."""
        self.keys("ctrl+q")
        question = self.wait_window(size=(200, 70) if saves is None else (240, 70))
        if saves is False:
            self.click_in(question, 130, 50)
        else:
            self.keys("Return")
        return self.wait_exit()

    def place_of_map(self, art, h=0, v=0):
        """Finds the client area by the art in it; the map point (h, v) stands in its corner."""
        window = self.map_window()
        wanted = [art.rows[v + i][4 * h : 4 * (h + 300)] for i in range(3)]

        def search():
            shot = self.shot()
            for top in range(window.top, window.top + 80):
                if all(shot.row(window.left, top + i, 300) == wanted[i] for i in range(3)):
                    return top
            return None

        top = wait_until(search, "the map's picture in its window")
        return MapPlace(window.left, top, window.width, window.top + window.height - top, h, v)

    def expect_no_fault(self, find_fault, claim):
        """Expects that before long there is no fault, which is a text, any more."""
        try:
            wait_until(lambda: find_fault() is None, claim, 5)
        except TimeoutError:
            return self.expect(False, "%s: %s" % (claim, find_fault()))
        return True

    def expect_saved(self, name, data, claim):
        """Expects the file to hold the map, to the byte, before long."""
        exists = lambda: os.path.exists(self.path(name))
        self.expect_no_fault(lambda: find_difference(data, self.read(name)) if exists() else "there is no file", claim)

    # ---- pixels ----

    def find_fault(self, place, art, marks, holes):
        """The first pixel of the view that is not the map's (or a mark's), as a text; None when all are right.
        Windows on top are left out. The grow box reaches two pixels into the view."""
        shot = self.shot()
        background = bytes(GREY_192) + b"\0"
        for y in range(place.view_height):
            v = place.v + y
            row = bytearray(art.rows[v][4 * place.h :] if v < art.height else b"")
            row = row[: 4 * place.view_width]
            row += background * (place.view_width - len(row) // 4)
            for column, mark in marks.get(v // 10, {}).items():
                start = 10 * column - place.h
                for i in range(10):
                    if 0 <= start + i < place.view_width:
                        row[4 * (start + i) : 4 * (start + i) + 4] = mark[v % 10][4 * i : 4 * i + 4]
            if y >= place.view_height - 2:
                row[-8:] = bytes(GREY_187 + (0,)) * 2
            shown = shot.row(place.left, place.top + y, place.view_width)
            for hole in holes:
                if hole.top <= place.top + y < hole.top + hole.height:
                    first = max(0, hole.left - place.left)
                    last = min(place.view_width, hole.left + hole.width - place.left)
                    if first < last:
                        row[4 * first : 4 * last] = shown[4 * first : 4 * last]
            if row != shown:
                x = next(x for x in range(place.view_width) if row[4 * x : 4 * x + 4] != shown[4 * x : 4 * x + 4])
                wanted = (row[4 * x + 2], row[4 * x + 1], row[4 * x])
                found = (shown[4 * x + 2], shown[4 * x + 1], shown[4 * x])
                return "map pixel (%d, %d) should be %s and is %s" % (place.h + x, v, wanted, found)
        return None

    def expect_view(self, place, art, claim, marks=None, holes=()):
        """Expects every pixel of the view to be the map's, or the mark's of its cell, before long."""
        by_row = {}
        for (column, row), mark in (marks or {}).items():
            by_row.setdefault(row, {})[column] = mark
        return self.expect_no_fault(lambda: self.find_fault(place, art, by_row, holes), claim)

    def feature_marks(self, place, data, is_marked, mark):
        """The marks of the features overlay: the cells of the view, without partly visible last ones."""
        return {
            (x, y): mark
            for y in range(place.v // 10, (place.v + place.view_height) // 10)
            for x in range(place.h // 10, (place.h + place.view_width) // 10)
            if is_marked(data.cell(x, y))
        }


def run(story):
    """Runs the journey with the folder and the screen's file that the command line names; ends with status 0 or 1."""
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    journey = Journey(sys.argv[1], sys.argv[2])
    try:
        story(journey)
    except (TimeoutError, RuntimeError, LookupError, OSError, ValueError, subprocess.SubprocessError) as error:
        journey.expect(False, "%s: %s" % (type(error).__name__, error))
    finally:
        journey.end()
    if journey.failures:
        print("%d claims failed; what the program wrote is in program.txt" % journey.failures)
    sys.exit(1 if journey.failures else 0)
