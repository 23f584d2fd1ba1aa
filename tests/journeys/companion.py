"""kestrel-map at the shell: its pictures are the editor's window pixel for pixel, its exports are read by others and
come back byte for byte, and masks of every kind say the same."""

import json
import os
import random
import shutil
import struct
import subprocess
from copy import copy

from journey import ROOT, SAMPLES, VIEW_MENU, run
from support import palettes
from support.mapfiles import COST_SHIFT, Art, MapData, read_bitmap

COMPANION = os.environ.get("KESTREL_COMPANION", os.path.join(ROOT, "build", "kestrel-map"))
SHOW_COSTS = [(89, 50 + 16 * i) for i in range(6)]


def call(journey, *words, status=0, limit=""):
    """Runs a shell command in the folder of maps and gives its standard output."""
    line = " ".join(words)
    done = subprocess.run(["sh", "-c", limit + line], cwd=journey.maps, capture_output=True, timeout=60)
    claim = "%s ends with %d, not %d: %s" % (line, status, done.returncode, done.stderr.decode("utf-8", "replace"))
    journey.expect(done.returncode == status, claim)
    return done.stdout


def rendered(journey, place, name, *options):
    """The picture that the companion makes of what the window shows, as art."""
    area = (place.h, place.v, place.h + place.view_width, place.v + place.view_height)
    words = [COMPANION, "render", name, *options, "--area", "%d,%d,%d,%d" % area, "-o", "-"]
    pixels = bytearray(call(journey, *words, "| convert png:- -depth 8 bgra:-"))
    pixels[3::4] = bytes(len(pixels) // 4)
    width, height = place.view_width, place.view_height
    journey.expect(len(pixels) == 4 * width * height, "the picture has the size of its area")
    return Art(width, height, [bytes(pixels[4 * width * y : 4 * width * (y + 1)]) for y in range(height)])


def expect_same(journey, place, name, *options, holes=()):
    here = copy(place)
    here.h = here.v = 0
    art = rendered(journey, place, name, *options)
    journey.expect_view(here, art, "%s of %s as in the window" % (" ".join(options) or "art", name), holes=holes)


def compare_views(journey, place, name):
    expect_same(journey, place, name)
    journey.choose(place, VIEW_MENU, 2)
    expect_same(journey, place, name, "--numbers")
    journey.keys("F8")
    expect_same(journey, place, name, "--view", "analysis", "--numbers")
    journey.keys("F8")
    journey.choose(place, VIEW_MENU, 1)

    palette = journey.open_palette("ctrl+t")
    expect_same(journey, place, name, "--view", "features", "--feature", "hilow", holes=[palette])
    journey.click_in(palette, *palettes.NO_GO_2)
    expect_same(journey, place, name, "--view", "features", "--no-go", "2", holes=[palette])
    journey.click_in(palette, *palettes.SHOW_ALL)
    expect_same(journey, place, name, "--view", "features", holes=[palette])
    journey.click_in(palette, *palettes.SOLID_GRID)
    expect_same(journey, place, name, "--view", "features", "--style", "frame", holes=[palette])
    journey.answer(palette, "Escape")

    palette = journey.open_palette("ctrl+m")
    for box in SHOW_COSTS:
        journey.click_in(palette, *box)
    for style, box in (("solid", None), ("dot", palettes.DOT_BRUSH), ("frame", palettes.FRAME_BRUSH)):
        if box:
            journey.click_in(palette, *box)
        expect_same(journey, place, name, "--view", "costs", "--style", style, holes=[palette])
    journey.answer(palette, "Escape")


def exchange_maps(journey):
    chance = random.Random(20)
    for number in range(100, 300):
        columns, rows = chance.randint(1, 40), chance.randint(1, 40)
        words = [chance.randint(-32768, 32767) for _ in range(28)]
        words[0], words[3], words[4], words[5:9] = number, columns, rows, [0, 0, 10 * columns, 10 * rows]
        text = bytes(chance.randint(1, 255) for _ in range(chance.randint(0, 255)))
        with open(journey.path("Map%dc.dat" % number), "wb") as file:
            file.write(struct.pack("<28h", *words) + text + b"\0" + chance.randbytes(2 * columns * rows))
    for kind in ("csv", "json"):
        call(journey, 'for map in Map[12]??c.dat; do "%s" export $map --to %s -o - | ' % (COMPANION, kind)
             + '"%s" import back.dat --from %s && cmp back.dat $map || exit 1; done' % (COMPANION, kind))
    call(journey, "rm Map[12]??c.dat back.dat*")


def read_grids(journey):
    call(journey, COMPANION, "export Map102c.dat --to asc -o grid")
    for name in "cost nogo hilow woods town road misclosblock".split():
        said = call(journey, "gdalinfo -mm grid-%s.asc" % name).decode()
        wanted = ("Size is 120, 90", "Origin = (63900.0", ",26900.0", "Pixel Size = (100.0")
        journey.expect(all(part in said for part in wanted), "GDAL places %s: %s" % (name, said))
    value = call(journey, "gdallocationinfo -valonly grid-cost.asc 0 0").strip()
    journey.expect(value == b"3", "GDAL reads the first cell's cost, 3, not %s" % value)


def set_by_masks(journey):
    call(journey, "convert -size 1200x900 xc:black -fill white -draw 'rectangle 0,0 299,205' grey.png")
    data = MapData(journey.read("Map102c.dat"))
    wanted = [(x, y) for x in range(30) for y in range(21) if data.cell(x, y) >> COST_SHIFT != 6]
    kinds = {
        "grey": "", "sixteen": "-depth 16 -type TrueColor -define png:color-type=2 -define png:bit-depth=16", "interlaced": "-interlace PNG",
        "palette": "-type Palette -define png:color-type=3", "alpha": "-transparent black -fill white -colorize 100",
        "cells": "-filter box -resize 120x90!", "dim": "-type Grayscale -evaluate multiply 0.9 -define png:bit-depth=8",
    }
    for name, options in kinds.items():
        call(journey, "convert grey.png '%s' PNG:%s.mask" % ("' '".join(options.split()), name) if options
             else "cp grey.png grey.mask")
        shutil.copy(journey.path("Map102c.dat"), journey.path("Map104c.dat"))
        call(journey, COMPANION, "set Map104c.dat --cost water --mask %s.mask --threshold 50" % name)
        changed = call(journey, COMPANION, "diff Map102c.dat Map104c.dat --json", status=1)
        cells = sorted(map(tuple, json.loads(changed)["cells"]))
        journey.expect(cells == wanted, "the %s mask covers 30 x 21 cells that were not water, not %d" % (name, len(cells)))
    call(journey, "convert -size 1199x900 xc:white wrong.png")
    call(journey, COMPANION, "set Map104c.dat --cost water --mask wrong.png", status=2)
    call(journey, "head -c 300 sixteen.mask > cut.png;", COMPANION, "set Map104c.dat --cost water --mask cut.png", status=2)


def keep_what_is_there(journey):
    """A disk that takes no more, and folders that are not there."""
    before = call(journey, "echo before > kept.png; cat Map102c.dat").strip()
    for words in ("render Map102c.dat -o kept.png", "set Map102c.dat --cost water --all"):
        call(journey, COMPANION, words, status=2, limit="ulimit -f 8; ")
    journey.expect(call(journey, "cat kept.png") == b"before\n", "a picture that does not fit leaves the old one")
    journey.expect(call(journey, "cat Map102c.dat").strip() == before, "a map that does not fit leaves the old one")
    journey.expect(not call(journey, "ls | grep new || true"), "nothing is left beside them")
    call(journey, COMPANION, "export Map102c.dat --to csv -o nowhere/x.csv", status=2)
    call(journey, COMPANION, "check .", "| grep -q 'art-missing'")


def companion(journey):
    for name in os.listdir(SAMPLES):
        if name.startswith("Map"):
            shutil.copy(os.path.join(SAMPLES, name), journey.maps)
    for number in (101, 102, 103):
        name = "Map%dc.dat" % number
        journey.start()
        journey.open_map(name)
        journey.settle()
        place = journey.place_of_map(read_bitmap(journey.path(name.replace("dat", "bmp"))))
        compare_views(journey, place, name)
        if number == 103:
            journey.keys("Right", "Down", "Down")
            place.h, place.v = 128, 160
            expect_same(journey, place, name)
        journey.expect(journey.quit(saves=False) == 0, "the program ends with status 0")
    set_by_masks(journey)
    read_grids(journey)
    keep_what_is_there(journey)
    call(journey, "rm *.dat *.bmp")
    exchange_maps(journey)


run(companion)
