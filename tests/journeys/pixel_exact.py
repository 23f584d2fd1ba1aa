"""Every screen pixel of the map window shows the map pixel that belongs there, however the map is scrolled and the
window sized."""

from journey import BAR_WIDTH, BELOW_VIEW, GREY_187, GREY_192, HAND, STRIP_HEIGHT, run
from support.mapfiles import coded_place

WIDTH, HEIGHT = 1500, 1300


def expect_furniture(journey, place, when):
    """The strip below the map and the grow box at its end."""
    journey.settle()
    shot = journey.shot()
    right, bottom = place.left + place.width, place.top + place.height
    fault = shot.first_other(place.left, bottom - STRIP_HEIGHT, right - 18, bottom, GREY_192)
    journey.expect(fault is None, "the status strip is plain grey %s: %s" % (when, fault))
    fault = shot.first_other(right - 15, bottom - 33, right, bottom - 18, GREY_187)
    journey.expect(fault is None, "the corner between the bars is grey 187 %s: %s" % (when, fault))
    grip = {shot.pixel(x, y) for x in range(right - 18, right) for y in range(bottom - 18, bottom)}
    journey.expect(len(grip) > 1 and (0, 0, 0) not in grip, "the grow box shows a grip %s" % when)


def take_scroll(journey, place):
    """Reads off the art where the map stands now."""
    journey.settle()
    place.h, place.v = coded_place(journey.shot().pixel(place.left, place.top))


def scroll_by_bars(journey, place, art):
    max_h, max_v = WIDTH - place.view_width, HEIGHT - place.view_height
    vertical = place.left + place.view_width + BAR_WIDTH // 2
    horizontal = place.top + place.view_height + BAR_WIDTH // 2
    top, bottom = place.top, place.top + place.view_height
    left, right = place.left, place.left + place.view_width

    journey.drag([(vertical, top + 40), (vertical, top + 50), (vertical, top + 60)], pause=HAND)
    take_scroll(journey, place)
    journey.expect(0 < place.v < max_v and place.h == 0, "the thumb drags the map a little down")
    journey.expect_view(place, art, "the dragged map is whole")
    journey.drag([(vertical, top + 100), (vertical, top + 300), (vertical, bottom + 90)], pause=HAND)
    take_scroll(journey, place)
    journey.expect((place.h, place.v) == (0, max_v), "the thumb at its end shows the map's lower edge")
    journey.expect_view(place, art, "the lower edge is whole")
    journey.click(vertical, top + 6)
    place.v -= 20
    journey.expect_view(place, art, "the upper arrow goes back by 20")
    journey.click(vertical, bottom - 6)
    place.v += 20
    journey.expect_view(place, art, "the lower arrow goes on by 20")
    journey.click(vertical, top + 22)
    place.v = max(0, place.v - place.view_height)
    journey.expect_view(place, art, "a click above the thumb turns a page")

    journey.drag([(left + 40, horizontal), (left + 300, horizontal), (right + 50, horizontal)], pause=HAND)
    take_scroll(journey, place)
    journey.expect((place.h, place.v) == (max_h, 0), "the thumb at its end shows the map's right edge")
    journey.expect_view(place, art, "the right edge is whole")
    journey.click(left + 6, horizontal)
    place.h -= 20
    journey.expect_view(place, art, "the left arrow goes back by 20")


def drag_frame(journey, by_h, by_v):
    """Drags the lower right corner of the window manager's frame."""
    window = journey.map_window()
    corner = (window.left + window.width - 8, window.top + window.height + 3)
    steps = [(corner[0] + by_h * i // 4, corner[1] + by_v * i // 4) for i in range(5)]
    journey.drag(steps, pause=HAND)
    journey.settle()
    return journey.map_window()


def size_by_frame(journey, place, art):
    largest = (place.width, place.height)
    window = drag_frame(journey, -70, -90)
    journey.expect(window.width == largest[0] - 70, "the frame makes the window narrower, %d" % window.width)
    place = journey.place_of_map(art)
    journey.expect(place.height == largest[1] - 90, "the frame makes the window lower, %d" % place.height)
    journey.expect_view(place, art, "the map fills the window that was sized by its frame")
    expect_furniture(journey, place, "after sizing by the frame")
    journey.keys("Right", "Down", "Down")
    place.h, place.v = 600 - place.view_width, 400 - place.view_height
    journey.expect_view(place, art, "the sized window scrolls to the far corner")
    drag_frame(journey, 300, 300)
    place = journey.place_of_map(art)
    journey.expect((place.width, place.height) == largest, "the frame never grows beyond the map")
    journey.expect_view(place, art, "the map is shown whole again")
    expect_furniture(journey, place, "after sizing back")


def pixel_exact(journey):
    art, _ = journey.make_map(130, WIDTH, HEIGHT)
    small_art, _ = journey.make_map(131, 600, 400)
    tiny_art, _ = journey.make_map(132, 300, 200)

    journey.start()
    journey.open_map("Map130c.dat")
    place = journey.place_of_map(art)
    max_h, max_v = WIDTH - place.view_width, HEIGHT - place.view_height
    fits = place.left + place.width <= 1280 and place.top + place.height <= 1024
    journey.expect(fits, "the window fits the screen")
    journey.expect_view(place, art, "the large map shows its top-left corner")
    expect_furniture(journey, place, "after opening")
    journey.picture("pixels_opened")

    journey.keys("Right", "Down")
    place.h, place.v = 128, 80
    journey.expect_view(place, art, "arrow keys move the map by 128 and 80")
    journey.wheel_down(place)
    place.v = 160
    journey.expect_view(place, art, "the wheel moves the map by 80")
    journey.keys(*["Right"] * 4, *["Down"] * 6)
    place.h, place.v = max_h, max_v
    journey.expect_view(place, art, "arrow keys stop at the map's edges")
    journey.keys("Right", "Down")
    journey.settle()
    journey.expect_view(place, art, "and stay there")
    expect_furniture(journey, place, "after scrolling")
    journey.keys(*["Left"] * 5, *["Up"] * 7)
    place.h, place.v = 0, 0
    journey.expect_view(place, art, "and go back to the start")
    scroll_by_bars(journey, place, art)

    # Smaller by the grow box, and larger again at the far corner.
    journey.keys(*["Left"] * 5, *["Up"] * 7)
    place.h, place.v = 0, 0
    place = journey.size_by_grow_box(place, art, (710, 520), (700, 500))
    journey.expect_view(place, art, "the smaller window shows the map")
    expect_furniture(journey, place, "in the smaller window")
    journey.keys(*["Right"] * 8, *["Down"] * 12)
    place.h, place.v = WIDTH - place.view_width, HEIGHT - place.view_height
    journey.expect_view(place, art, "the smaller window reaches the far corner")
    place = journey.size_by_grow_box(place, art, (800, 550), (900, 640))
    journey.expect_view(place, art, "a larger window moves the map back to its far edges")
    expect_furniture(journey, place, "in the larger window")
    place = journey.size_by_grow_box(place, art, (200, 200), (100, 90), wanted=(370, 300))
    journey.expect_view(place, art, "the smallest window shows the map")
    journey.picture("pixels_smallest")
    journey.expect(journey.quit() == 0, "the program ends with status 0")

    journey.start()
    journey.open_map("Map131c.dat")
    place = journey.place_of_map(small_art)
    fitting = (600 + BAR_WIDTH, 400 + BELOW_VIEW)
    journey.expect((place.width, place.height) == fitting, "the window fits the small map")
    journey.expect_view(place, small_art, "the small map is shown whole")
    expect_furniture(journey, place, "around the small map")
    journey.keys("Right", "Down")
    journey.settle()
    journey.expect_view(place, small_art, "a map that is all in view does not scroll")
    size_by_frame(journey, place, small_art)
    journey.expect(journey.quit() == 0, "the program ends with status 0")

    journey.start()
    journey.open_map("Map132c.dat")
    journey.settle()
    place = journey.place_of_map(tiny_art)
    journey.expect(place.width >= 300 + BAR_WIDTH and place.height >= 200 + BELOW_VIEW, "the tiny map has room")
    journey.expect_view(place, tiny_art, "beyond a tiny map there is plain grey")
    expect_furniture(journey, place, "around the tiny map")
    journey.picture("pixels_tiny_map")
    journey.expect(journey.quit() == 0, "the program ends with status 0")


run(pixel_exact)
