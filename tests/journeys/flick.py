"""Flicks of the pointer faster than any screen: each reported position paints its cell, and nothing else does."""

import random

from journey import RED, run, solid_mark
from support import model
from support.mapfiles import HI_LOW


def flick(journey, place, data, strokes):
    """Draws strokes in one breath: the program learns of the last before it is through with the first."""
    words = []
    for points in strokes:
        for i, point in enumerate(points):
            words += ["mousemove", *place.on_screen(point)] + (["mousedown", 1] if i == 0 else [])
        words += ["mouseup", 1]
        model.paint_stroke(data, model.feature_brush(HI_LOW), points)
    journey.xdotool(*words)


def flicks(journey):
    art, data = journey.make_map(160, 1000, 800)
    journey.start()
    journey.open_map("Map160c.dat")
    place = journey.place_of_map(art)
    palette = journey.open_palette("ctrl+t")  # with Hi/Low
    marks = lambda: journey.feature_marks(place, data, lambda word: word & HI_LOW, solid_mark(RED))
    journey.expect_view(place, art, "nothing is marked at first", marks(), [palette])

    flick(journey, place, data, [[(405, 15), (995, 415), (505, 795), (5, 405), (905, 705), (355, 355)]])
    journey.expect_view(place, art, "a flick paints the cells at its positions", marks(), [palette])

    chance = random.Random(160)

    def somewhere():
        return chance.randrange(340, 1000), chance.randrange(0, 800)

    for count in (3, 10, 40, 60, 250):
        flick(journey, place, data, [[somewhere() for _ in range(count)]])
        journey.expect_view(place, art, "a flick of %d positions paints them all" % count, marks(), [palette])
    flick(journey, place, data, [[somewhere() for _ in range(8)] for _ in range(5)])
    journey.expect_view(place, art, "five flicks in one breath paint all their cells", marks(), [palette])
    flick(journey, place, data, [[somewhere()] for _ in range(6)])
    journey.expect_view(place, art, "six clicks in one breath change six cells", marks(), [palette])
    flick(journey, place, data, [[(395, 405), (20, 100), (200, 200), (395, 455)]])
    journey.expect_view(place, art, "a flick goes on beneath the palette", marks(), [palette])
    journey.picture("flicks")

    journey.answer(palette, "Escape")
    journey.save()
    journey.expect_saved("Map160c.dat", data, "the file holds the cells of all positions")
    journey.expect(journey.quit() == 0, "the program ends with status 0")


run(flicks)
