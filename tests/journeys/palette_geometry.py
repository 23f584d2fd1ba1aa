"""The palettes stand where they should, to the pixel, and come back where they were left."""

from journey import HAND, run
from support.palettes import CLOSE_BOX, FEATURES, MOVE_COSTS

OLIVE = (89, 122, 25)


def expect_place(journey, window, place, claim):
    journey.expect((window.left, window.top) == place, "%s, not at %s" % (claim, (window.left, window.top)))


def expect_frame(journey, window, view, art, name):
    """The frame's edges on their pixels, and the map right beside them."""
    journey.xdotool("mousemove", window.left + 500, window.top + 350)
    journey.settle()
    shot = journey.shot()
    left, top = window.left, window.top
    right, bottom = left + window.width - 1, top + window.height - 1
    probes = {
        (0, 0): (0xBB,) * 3,
        (3, 100): (0x33,) * 3,
        (6, 22): OLIVE,
        (60, window.height - 1): (0x11,) * 3,
        (window.width - 1, 100): (0x11,) * 3,
    }
    for (x, y), wanted in probes.items():
        found = shot.pixel(left + x, top + y)
        journey.expect(found == wanted, "%s has %s at (%d, %d), not %s" % (name, wanted, x, y, found))
    for x, y in ((left - 1, top + 30), (right + 1, top + 30), (left + 30, top - 1), (left + 30, bottom + 1)):
        journey.expect(
            shot.pixel(x, y) == art.pixel(x - view.left, y - view.top), "the map begins right beside " + name
        )


def palette_geometry(journey):
    art, _ = journey.make_map(150, 1000, 800)
    journey.start()
    journey.open_map("Map150c.dat")
    view = journey.place_of_map(art)

    palette = journey.open_palette("ctrl+t")
    expect_place(journey, palette, (25, 50), "the features palette opens at (25, 50)")
    expect_frame(journey, palette, view, art, "the features palette")
    journey.expect_view(view, art, "the rest of the map is shown", holes=[palette])
    journey.picture("palette_features")

    grip = (palette.left + 60, palette.top + 9)
    path = [grip, (grip[0] + 3, grip[1] + 2), (grip[0] + 120, grip[1] + 60), (grip[0] + 211, grip[1] + 137)]
    journey.drag(path, pause=HAND)
    journey.expect_soon(
        lambda: journey.find_window(size=FEATURES).left == 236, "the palette follows its title bar to 236"
    )
    palette = journey.wait_window(size=FEATURES)
    expect_place(journey, palette, (236, 187), "the palette is where it was dragged")
    expect_frame(journey, palette, view, art, "the dragged palette")
    journey.expect_view(view, art, "the map is whole where the palette and its outline were", holes=[palette])

    journey.click_in(palette, *CLOSE_BOX)
    journey.wait_gone(palette)
    journey.expect_view(view, art, "the close box leaves the map whole")
    for times in range(2):
        palette = journey.open_palette("ctrl+t")
        expect_place(journey, palette, (236, 187), "the palette reopens where it was left, %d" % times)
        journey.answer(palette, "Escape")

    costs = journey.open_palette("ctrl+m")
    expect_place(journey, costs, (236, 187), "the move-cost palette opens at the same place")
    expect_frame(journey, costs, view, art, "the move-cost palette")
    journey.expect_view(view, art, "no move cost is marked at first", holes=[costs])
    journey.picture("palette_move_costs")
    journey.drag([(costs.left + 60, costs.top + 9), (costs.left + 200, costs.top + 100), (100, 300)])  # in no time
    journey.expect_soon(lambda: journey.find_window(size=MOVE_COSTS).left == 40, "the move-cost palette is dragged")
    journey.click_in(journey.wait_window(size=MOVE_COSTS), 272, 9)
    journey.wait_gone(costs)
    journey.expect_view(view, art, "the right box closes the palette and leaves the map whole")
    palette = journey.open_palette("ctrl+t")
    expect_place(journey, palette, (40, 291), "the features palette follows the move-cost palette")
    journey.answer(palette, "ctrl+w")
    journey.expect(journey.quit(saves=False) == 0, "the program ends with status 0")


run(palette_geometry)
