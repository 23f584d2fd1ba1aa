#!/usr/bin/env python3
"""take_screenshots.py [PICTURES]: takes the pictures of the guide, of README and of the contact sheet from the real
program, on a virtual display with a window manager, and writes them into docs/images (or the folder PICTURES).

Needs the built program and its sample maps, and Xvfb, openbox, xdotool and ImageMagick. The same program gives the same
pictures: nothing of the user's own desktop, no clock and no pointer is in them."""

import os
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(ROOT, "tests", "journeys"))

from journey import EDIT_MENU, FILE_MENU, HELP_MENU, TITLE, VIEW_MENU, Journey  # noqa: E402
from support import model  # noqa: E402
from support import mapfiles  # noqa: E402
from support.mapfiles import new_map_data, read_bitmap, write_map  # noqa: E402
from support.palettes import (  # noqa: E402
    COSTS, DOT_BRUSH, FEATURES, FRAME_BRUSH, GREEN_GRID, MOVE_COSTS, NO_GO_2, PURPLE_GRID, RED_GRID, REMOVE_FEATURES,
    ROAD, ROUGH_TOWNS, SHOW_ALL, SOLID_BRUSH, SOLID_GRID, WOODS, ZERO_COSTS,
)
from support.screen import wait_until  # noqa: E402

# The file dialog shows this folder, so it is the same on every machine.
FOLDER = os.path.join(tempfile.gettempdir(), "kestrel")
SAMPLES = os.path.join(FOLDER, "samples")  # made anew: those of the build may have been painted on
FILE_TIME = 1767259800  # the sample files' date in the file dialog
FONT = "/usr/share/fonts/truetype/liberation/LiberationSans-Bold.ttf"
CAPTION_FONT = "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf"
SCREEN = (1280, 1024)
FRENCH = os.environ.get("KESTREL_LANGUAGE") == "2"
ART_TITLE = "Sélectionnez un fichier bmp..." if FRENCH else "Select a bmp file..."

FEW_COLOURS = ["+dither", "-colors", 256]  # of the large pictures, whose size counts
PNG = ["-strip", "-define", "png:exclude-chunks=date,time,bKGD,gAMA,cHRM", "-define", "png:compression-level=9"]


def convert(*words, pixels=None):
    subprocess.run(["convert", *map(str, words)], input=pixels, check=True, timeout=60)


class Gallery:
    """Takes pictures of parts of the screen and remembers them for the contact sheet."""

    def __init__(self, journey, folder):
        self.journey = journey
        self.folder = folder
        self.sheet = []
        self.scratch = os.path.join(FOLDER, "sheet")
        os.makedirs(self.scratch)

    def rest(self):
        """Takes the pointer away from everything and lets the screen come to rest."""
        self.journey.xdotool("mousemove", SCREEN[0] - 4, SCREEN[1] - 4)
        self.journey.settle()

    def take(self, path, left, top, width, height, *words):
        """A PNG of that part of the screen; words are what ImageMagick does to it."""
        left, top = max(left, 0), max(top, 0)
        shot = self.journey.shot()
        pixels = bytearray()
        for y in range(top, top + height):
            line = shot.row(left, y, width)
            rgb = bytearray(3 * width)
            rgb[0::3], rgb[1::3], rgb[2::3] = line[2::4], line[1::4], line[0::4]
            pixels += rgb
        convert("-size", "%dx%d" % (width, height), "-depth", 8, "rgb:-", *words, *PNG, path, pixels=bytes(pixels))

    def keep(self, caption, rest, area, name, *words):
        if rest:
            self.rest()
        else:
            self.journey.settle()
        if caption:
            scratch = os.path.join(self.scratch, "%02d.png" % len(self.sheet))
            self.take(scratch, *area)
            self.sheet.append((caption, scratch, area[2], area[3]))
        if name:
            self.take(os.path.join(self.folder, name + ".png"), *area, *words)

    def frame_of(self, window):
        """The window with the frame that the window manager gives it."""
        extents = self.journey.display.property(window.number, "_NET_FRAME_EXTENTS")
        left, right, top, bottom = [int.from_bytes(extents[i : i + 8], "little") for i in range(0, 32, 8)]
        return window.left - left, window.top - top, window.width + left + right, window.height + top + bottom

    def window(self, window, caption=None, name=None, rest=True):
        self.keep(caption, rest, (window.left, window.top, window.width, window.height), name)

    def framed(self, window, caption=None, name=None, *words):
        self.journey.click(window.left + 160, window.top - 8)  # its title bar: it becomes the active window
        self.rest()
        self.keep(caption, False, self.frame_of(window), name, *words)

    def map_area(self, place, left, top, right, bottom, name, *words):
        x, y = place.on_screen((left, top))
        self.keep(None, True, (x, y, right - left, bottom - top), name, *words)

    def menu(self, place, title, caption, name):
        journey = self.journey
        journey.open_menu(place, title)
        menu = next(each for each in journey.windows() if each.overrides)
        window = journey.map_window()
        area = (window.left, window.top, menu.left + menu.width + 8 - window.left, menu.top + menu.height - window.top)
        journey.settle()
        self.keep(caption, False, area, name)
        journey.xdotool("key", "Escape")
        wait_until(lambda: not any(each.overrides for each in journey.windows()), "the end of the menu")

    def contact_sheet(self, path, width=1680, gap=22, caption_height=20):
        """All pictures on one page: rows of them, the tallest first, each above its caption."""
        x, y, row, words = gap, gap, 0, []
        for caption, file, w, h in sorted(self.sheet, key=lambda each: -each[3]):
            if x + w + gap > width and x > gap:
                x, y, row = gap, y + row + caption_height + gap, 0
            words += [file, "-geometry", "+%d+%d" % (x, y), "-composite"]
            words += ["-annotate", "+%d+%d" % (x, y + h + 15), caption]
            x, row = x + w + gap, max(row, h)
        size = "%dx%d" % (width, y + row + caption_height + gap)
        text = ["-font", CAPTION_FONT, "-pointsize", 13, "-fill", "#303030"]
        convert("-size", size, "-depth", 8, "xc:#dfe3e6", *text, *words, "-depth", 8, *FEW_COLOURS, *PNG, path)


def callouts(places):
    """ImageMagick's words for numbered discs."""
    words = []
    for number, (x, y) in enumerate(places, 1):
        words += ["-fill", "#173f5f", "-stroke", "white", "-strokewidth", 2]
        words += ["-draw", "circle %d,%d %d,%d" % (x, y, x + 11, y)]
        words += ["-stroke", "none", "-fill", "white", "-font", FONT, "-pointsize", 15]
        words += ["-annotate", "+%d+%d" % (x - (4 if number < 10 else 8), y + 5), number]
    return words


def prepare_maps(journey):
    os.mkdir(SAMPLES)
    subprocess.run([os.path.join(ROOT, "build", "make_samples"), SAMPLES], check=True, timeout=120)
    for name in ("Map101c.dat", "Map101c.bmp", "Map102c.dat", "Map102c.bmp"):
        shutil.copy(os.path.join(SAMPLES, name), journey.maps)
        os.utime(journey.path(name), (FILE_TIME, FILE_TIME))


def make_faulty_maps(journey):
    for number in (99, 205, 301, 302):
        write_map(journey.path("Map%03dc.dat" % number), new_map_data(number, 455, 225))
        shutil.copy(os.path.join(SAMPLES, "Map101c.bmp"), journey.path("Map%03dc.bmp" % number))
    os.remove(journey.path("Map205c.dat"))
    os.remove(journey.path("Map302c.bmp"))
    write_map(journey.path("Map301c.dat"), new_map_data(301, 3200, 3300))
    shutil.copy(journey.path("Map205c.bmp"), journey.path("Valley.bmp"))


def alert(journey, gallery, size, caption, name=None):
    """Takes an alert's picture and answers it with Return."""
    window = journey.wait_window(size=size)
    gallery.window(window, caption, name)
    journey.answer(window)


def before_a_map(journey, gallery):
    gallery.framed(journey.map_window(), "Start", None)
    journey.keys("ctrl+o")
    dialog = journey.wait_window(title="Select a map...")
    journey.wait_active(dialog)
    journey.type("Map102c.dat")
    journey.settle()
    journey.xdotool("key", "Escape", "Tab")  # closes the list of completions; no caret blinks in another field
    gallery.framed(dialog, "File > Open Map", "open-dialog")
    journey.answer(dialog, "Escape")

    make_faulty_maps(journey)
    journey.choose_map("Map302c.dat")
    alert(journey, gallery, (240, 138), "Open Map: no art", "alert-no-art")
    journey.choose_map("Map099c.dat")
    alert(journey, gallery, (400, 190), "Open Map: the name of the data file")
    journey.choose_map("Map301c.dat")
    for caption in ("Open Map: too wide", "Open Map: too high", "Open Map: unreadable header"):
        window = journey.wait_window(size=(240, 138))
        gallery.window(window, caption, "alert-damaged" if "unreadable" in caption else None)
        journey.answer(window)

    journey.keys("ctrl+n")
    journey.choose_file(ART_TITLE, journey.path("Valley.bmp"))
    alert(journey, gallery, (400, 190), "New Map: the name of the art file", "alert-name")
    journey.keys("ctrl+n")
    journey.choose_file(ART_TITLE, journey.path("Map205c.bmp"))
    dialog = journey.wait_window(size=(460, 190))
    for y, value in ((97, "100"), (117, "31"), (137, "7")):
        journey.click_in(dialog, 25, y)
        journey.type(value)
    gallery.window(dialog, "File > New Map", "new-map")
    journey.click_in(dialog, 25, 97)
    journey.type("99")
    journey.keys("Return", "Return")
    alert(journey, gallery, (240, 138), "New Map: a value out of its limits")
    journey.click_in(dialog, 360, 170)
    journey.wait_gone(dialog)


def resize(journey, place, art, width, height):
    """Resizes the window with its grow box, unhurried: it follows the button as it is, not as it was."""
    journey.settle()
    corner = (place.left + place.width - 5, place.top + place.height - 5)
    target = (place.left + width, place.top + height)
    journey.xdotool("mousemove", *corner, "mousedown", 1, "sleep", 0.3, "mousemove", target[0] + 30, target[1] + 30)
    journey.xdotool("sleep", 0.3, "mousemove", *target, "sleep", 0.3, "mouseup", 1)
    wait_until(lambda: journey.map_window().width == width, "the new size of the window")
    return journey.place_of_map(art)


def properties(journey, gallery, place):
    for item, size, caption, name in (
        (2, (280, 70), "Edit > Map Version Number", "dialog-version"),
        (3, (460, 100), "Edit > Map UTM Coordinates", "dialog-utm"),
        (4, (280, 70), "Edit > Map ID Number", "dialog-id"),
    ):
        journey.choose(place, EDIT_MENU, item)
        dialog = journey.wait_window(size=size)
        journey.click_in(dialog, 25, 17)
        gallery.window(dialog, caption, name)
        journey.click_in(dialog, size[0] - 100, size[1] - 20)
        journey.wait_gone(dialog)


def views(journey, gallery, place):
    journey.choose(place, VIEW_MENU, 2)
    gallery.map_area(place, 0, 260, 760, 566, "utm-grid", *FEW_COLOURS)
    journey.choose(place, VIEW_MENU, 1)
    journey.keys("F8")
    gallery.map_area(place, 0, 40, 760, 420, "analysis")
    analysis_samples(journey, gallery, place)
    journey.keys("F8")
    journey.keys("F9")
    journey.settle()
    journey.xdotool("mousemove", *place.on_screen((268, 133)))
    journey.settle()
    gallery.keep(None, False, (place.left, place.top + place.height - 18, 560, 18), "readout")
    places = [(270, 11), (180, 32), (500, 290), (791, 180), (260, 612), (300, 630), (790, 632)]
    gallery.keep(None, False, gallery.frame_of(journey.map_window()), "main-window", *callouts(places), *FEW_COLOURS)
    gallery.menu(place, VIEW_MENU, "View", "menu-view")
    journey.keys("F9")


def sample_cells(journey, gallery, place, prefix, tests):
    """A cell for each test, four times as large, found in the part of the view that no palette covers."""
    data = mapfiles.MapData(journey.read("Map102c.dat"))
    for name, test in tests.items():
        x, y = next((x, y) for y in range(56) for x in range(46) if test(data.cell(x, y)))
        area = 10 * x, 10 * y, 10 * x + 10, 10 * y + 10
        gallery.map_area(place, *area, prefix + name, "-sample", "400%")


def has(word, bits, without=0):
    return word & bits == bits and not word & without


def analysis_samples(journey, gallery, place):
    tiled = mapfiles.NO_GO_MASK | mapfiles.ROAD
    sample_cells(journey, gallery, place, "analysis-", {
        "woods": lambda word: has(word, mapfiles.WOODS, tiled | mapfiles.HI_LOW),
        "town": lambda word: has(word, mapfiles.TOWN, tiled | mapfiles.HI_LOW),
        "hi-low": lambda word: has(word, mapfiles.HI_LOW, tiled | mapfiles.WOODS),
    })


def drag_palette(journey, palette, left, top, size):
    grip = (palette.left + size[0] // 2, palette.top + 9)
    target = (grip[0] + left - palette.left, grip[1] + top - palette.top)
    journey.drag([grip, (target[0] - 5, target[1] - 5), target])
    return wait_until(
        lambda: next((each for each in journey.windows() if each.size() == size and each.left == left), None),
        "the palette at its new place",
    )


def stroke(journey, place, corners, key=None):
    """A stroke at the pace of a hand: positions that come too fast are not all reported."""
    points = [corners[0]]
    for corner in corners[1:]:
        points += model.line(points[-1], corner)
    words = ["keydown", key] if key else []
    words += ["mousemove", *place.on_screen(points[0]), "mousedown", 1]
    for point in points[1:]:
        words += ["sleep", 0.01, "mousemove", *place.on_screen(point)]
    words += ["sleep", 0.05, "mouseup", 1] + (["keyup", key] if key else [])
    journey.xdotool(*words)


def features(journey, gallery, place):
    journey.keys("ctrl+t")
    palette = journey.wait_window(size=FEATURES)
    palette = drag_palette(journey, palette, 490, 390, FEATURES)
    gallery.window(palette, "Edit > Terrain", "palette-features")
    journey.click_in(palette, *WOODS)
    gallery.map_area(place, 0, 290, 240, 450, "marks-solid")
    journey.click_in(palette, *SOLID_GRID)
    gallery.map_area(place, 0, 290, 240, 450, "marks-outline")
    journey.click_in(palette, *SOLID_GRID)
    journey.click_in(palette, *ROAD)
    journey.click_in(palette, *PURPLE_GRID)
    gallery.map_area(place, 0, 50, 240, 210, "marks-road")

    # Three strokes: free, locked, and a first cell that makes the stroke clear.
    journey.click_in(palette, *WOODS)
    journey.click_in(palette, *GREEN_GRID)
    stroke(journey, place, [(525, 205), (585, 215), (635, 255), (655, 295)])
    stroke(journey, place, [(525, 235), (545, 240), (665, 245)], "shift")
    gallery.map_area(place, 490, 180, 730, 300, "strokes")
    journey.click_in(palette, *RED_GRID)

    journey.click_in(palette, *NO_GO_2)
    journey.click_in(palette, *SHOW_ALL)
    gallery.map_area(place, 40, 420, 360, 566, "no-go")
    levels = {"1": 1, "2": 2, "3": 4}
    sample_cells(journey, gallery, place, "no-go-", {
        name: lambda word, level=level: (word & mapfiles.NO_GO_MASK) >> mapfiles.NO_GO_SHIFT == level
        for name, level in levels.items()
    })
    journey.click_in(palette, *SHOW_ALL)
    return palette


def fill_areas(journey, gallery, place, palette):
    journey.click_in(palette, *WOODS)
    start, end = place.on_screen((532, 186)), place.on_screen((679, 279))
    journey.xdotool("keydown", "alt", "mousemove", *start, "mousedown", 1, "mousemove", *place.on_screen((600, 240)))
    time.sleep(0.2)
    journey.xdotool("mousemove", *end)
    journey.settle()
    gallery.keep(None, False, (*place.on_screen((490, 150)), 240, 180), "band")
    journey.xdotool("mouseup", 1, "keyup", "alt")
    question = journey.wait_window(size=(190, 40))
    gallery.window(question, "After Alt + drag, features", None)
    gallery.map_area(place, 470, 150, 710, 330, "fill-question")
    journey.click_in(question, 95, 20)
    journey.wait_gone(question)


def readme_picture(journey, gallery, place, palette):
    palette = drag_palette(journey, palette, 60, 345, FEATURES)
    journey.click_in(palette, *SOLID_GRID)
    journey.click_in(palette, *PURPLE_GRID)
    stroke(journey, place, [(705, 185), (745, 195), (775, 245)])
    gallery.framed(journey.map_window(), "The features palette at work", "features-palette", *FEW_COLOURS)
    journey.click_in(palette, *REMOVE_FEATURES)
    question = journey.wait_window(size=(280, 140))
    gallery.window(question, "Remove All Features", "question-remove")
    journey.click_in(question, 190, 120)
    journey.wait_gone(question)
    gallery.menu(place, FILE_MENU, "File, a palette open", None)
    journey.answer(palette, "Escape")


def move_costs(journey, gallery, place):
    journey.keys("ctrl+m")
    palette = journey.wait_window(size=MOVE_COSTS)
    palette = drag_palette(journey, palette, 490, 375, MOVE_COSTS)
    for box in list(COSTS.values())[1:]:
        journey.click_in(palette, *box)
    journey.click_in(palette, *COSTS[0])
    gallery.window(palette, "Edit > Move Cost", "palette-move-cost")
    for style, name in ((SOLID_BRUSH, "costs-solid"), (DOT_BRUSH, "costs-dot"), (FRAME_BRUSH, "costs-frame")):
        journey.click_in(palette, *style)
        gallery.map_area(place, 180, 230, 340, 370, name)
    journey.click_in(palette, *DOT_BRUSH)
    gallery.framed(journey.map_window(), "The move-cost palette at work", "move-costs", *FEW_COLOURS)
    journey.click_in(palette, *SOLID_BRUSH)

    for button, size, caption, name in (
        (ZERO_COSTS, (300, 120), "Zero All Move Costs", "question-zero"),
        (ROUGH_TOWNS, (200, 100), "Set Woods & Towns to R2", "question-rough"),
    ):
        journey.click_in(palette, *button)
        question = journey.wait_window(size=size)
        gallery.window(question, caption, name)
        journey.click_in(question, size[0] - 95, size[1] - 20)
        journey.wait_gone(question)
    journey.drag_on_map(place, [(300, 150), (350, 200), (420, 260)], "alt")
    question = journey.wait_window(size=(130, 40))
    gallery.window(question, "After Alt + drag, move costs", None)
    journey.click_in(question, 95, 20)
    journey.wait_gone(question)
    journey.answer(palette, "Escape")


def saving_and_quitting(journey, gallery):
    journey.keys("ctrl+q")
    question = journey.wait_window(size=(240, 70))
    gallery.window(question, "File > Quit, with unsaved work", "question-quit-unsaved")
    journey.click_in(question, 60, 50)
    journey.wait_gone(question)
    journey.keys("ctrl+s")
    question = journey.wait_window(size=(240, 100))
    gallery.window(question, "File > Save Map", "question-save")
    journey.answer(question)
    journey.keys("ctrl+q")
    question = journey.wait_window(size=(200, 70))
    gallery.window(question, "File > Quit", "question-quit")
    journey.keys("Return")
    if journey.wait_exit() != 0:
        raise RuntimeError("the program did not end well")


def take_all(journey, gallery):
    prepare_maps(journey)
    journey.start()
    before_a_map(journey, gallery)
    art = read_bitmap(journey.path("Map102c.bmp"))
    journey.open_map("Map102c.dat")
    place = resize(journey, journey.place_of_map(art), art, 800, 600)
    gallery.menu(place, FILE_MENU, "File", "menu-file")
    gallery.menu(place, EDIT_MENU, "Edit", "menu-edit")
    gallery.menu(place, HELP_MENU, "Help", "menu-help")
    properties(journey, gallery, place)
    views(journey, gallery, place)
    palette = features(journey, gallery, place)
    fill_areas(journey, gallery, place, palette)
    readme_picture(journey, gallery, place, palette)
    move_costs(journey, gallery, place)
    saving_and_quitting(journey, gallery)
    gallery.contact_sheet(os.path.join(gallery.folder, "contact-sheet.png"))


def start_desktop():
    """A private virtual display and its window manager; gives their processes."""
    for name in ("WAYLAND_DISPLAY", "XAUTHORITY", "DBUS_SESSION_BUS_ADDRESS", "PULSE_SERVER", "XDG_CURRENT_DESKTOP",
                 "QT_QPA_PLATFORM", "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE", "QT_SCALE_FACTOR", "QT_FONT_DPI"):
        os.environ.pop(name, None)
    home = os.path.join(FOLDER, "home")
    pixels = os.path.join(FOLDER, "pixels")
    for folder in (home, pixels):
        os.makedirs(folder, mode=0o700)
    os.environ.update(HOME=home, XDG_CONFIG_HOME=home, XDG_CACHE_HOME=home, XDG_RUNTIME_DIR=home)
    os.environ.update(LANG="C.UTF-8", LC_ALL="C.UTF-8", TZ="UTC")
    reader, writer = os.pipe()
    screen = "%dx%dx24" % SCREEN
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(writer), "-screen", "0", screen, "-fbdir", pixels, "-nocursor", "-noreset",
         "-nolisten", "tcp"], pass_fds=[writer], stderr=subprocess.DEVNULL)
    os.close(writer)
    with os.fdopen(reader) as answer:
        number = answer.readline().strip()
    if not number:
        raise RuntimeError("the virtual display does not start")
    os.environ["DISPLAY"] = ":" + number
    manager = subprocess.Popen(
        ["openbox", "--config-file", os.path.join(ROOT, "tests", "journeys", "support", "openbox.xml")],
        stderr=subprocess.DEVNULL)
    return [manager, server], os.path.join(pixels, "Xvfb_screen0")


def main():
    folder = os.path.abspath(sys.argv[1]) if len(sys.argv) > 1 else os.path.join(ROOT, "docs", "images")
    os.makedirs(folder, exist_ok=True)
    missing = [name for name in ("Xvfb", "openbox", "xdotool", "convert") if not shutil.which(name)]
    if missing:
        print("Install what is missing: " + " ".join(missing), file=sys.stderr)
        return 1
    shutil.rmtree(FOLDER, ignore_errors=True)
    os.mkdir(FOLDER, mode=0o700)
    processes, screen_file = start_desktop()
    journey = None
    try:
        journey = Journey(FOLDER, screen_file)
        journey.taller = 60 if FRENCH else 0
        take_all(journey, Gallery(journey, folder))
    except (TimeoutError, RuntimeError):
        if journey:
            journey.shot().save_png(os.path.join(tempfile.gettempdir(), "kestrel-screenshots-failed.png"))
        raise
    finally:
        if journey:
            journey.end()
        for process in processes:
            process.terminate()
            process.wait()
        shutil.rmtree(FOLDER, ignore_errors=True)
    names = [name for name in sorted(os.listdir(folder)) if name.endswith(".png")]
    size = sum(os.path.getsize(os.path.join(folder, name)) for name in names)
    print("%d pictures, %d KB" % (len(names), size // 1024))
    return 0


if __name__ == "__main__":
    sys.exit(main())
