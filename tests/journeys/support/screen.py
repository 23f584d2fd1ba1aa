"""The virtual screen: its pixels, and the windows of a program on it."""

import ctypes
import mmap
import struct
import time
import zlib
from typing import NamedTuple

IS_VIEWABLE = 2
ANY_TYPE = 0


class Shot:
    """A copy of the screen's pixels, four bytes each: blue, green, red and one unused."""

    def __init__(self, pixels, width, height, stride):
        self.pixels = pixels
        self.width = width
        self.height = height
        self.stride = stride

    def pixel(self, x, y):
        """Red, green and blue."""
        at = y * self.stride + 4 * x
        return self.pixels[at + 2], self.pixels[at + 1], self.pixels[at]

    def row(self, x, y, width):
        at = y * self.stride + 4 * x
        return self.pixels[at : at + 4 * width]

    def first_other(self, left, top, right, bottom, colour):
        """The first place in the rectangle that has another colour, as (x, y, its colour)."""
        for y in range(top, bottom):
            for x in range(left, right):
                if self.pixel(x, y) != colour:
                    return x, y, self.pixel(x, y)
        return None

    def save_png(self, path):
        lines = bytearray()
        for y in range(self.height):
            line = self.pixels[y * self.stride : y * self.stride + 4 * self.width]
            rgb = bytearray(3 * self.width)
            rgb[0::3] = line[2::4]
            rgb[1::3] = line[1::4]
            rgb[2::3] = line[0::4]
            lines += b"\0" + rgb
        header = struct.pack(">2I5B", self.width, self.height, 8, 2, 0, 0, 0)
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n")
            for name, data in ((b"IHDR", header), (b"IDAT", zlib.compress(bytes(lines), 6)), (b"IEND", b"")):
                file.write(struct.pack(">I", len(data)) + name + data)
                file.write(struct.pack(">I", zlib.crc32(name + data)))


class Pixels:
    """The file in which the display server keeps the screen."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self.memory = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        words = struct.unpack(">25I", self.memory[:100])
        self.width, self.height, self.stride = words[4], words[5], words[12]
        self.start = words[0] + 12 * words[19]
        if words[11] != 32 or words[7] != 0:
            raise RuntimeError("the virtual screen has an unexpected pixel layout")

    def shot(self):
        pixels = bytearray(self.memory[self.start : self.start + self.stride * self.height])
        pixels[3::4] = bytes(len(pixels) // 4)  # what the unused byte holds depends on who drew last
        return Shot(bytes(pixels), self.width, self.height, self.stride)


class XAttributes(ctypes.Structure):
    _fields_ = (
        [(name, ctypes.c_int) for name in "x y width height border_width depth".split()]
        + [("visual", ctypes.c_void_p), ("root", ctypes.c_ulong)]
        + [(name, ctypes.c_int) for name in "window_class bit_gravity win_gravity backing_store".split()]
        + [("backing_planes", ctypes.c_ulong), ("backing_pixel", ctypes.c_ulong), ("save_under", ctypes.c_int)]
        + [("colormap", ctypes.c_ulong), ("map_installed", ctypes.c_int), ("map_state", ctypes.c_int)]
        + [(name, ctypes.c_long) for name in "all_event_masks your_event_mask do_not_propagate_mask".split()]
        + [("override_redirect", ctypes.c_int), ("screen", ctypes.c_void_p)]
    )


class XClientMessage(ctypes.Structure):
    _fields_ = [
        ("type", ctypes.c_int),
        ("serial", ctypes.c_ulong),
        ("send_event", ctypes.c_int),
        ("display", ctypes.c_void_p),
        ("window", ctypes.c_ulong),
        ("message_type", ctypes.c_ulong),
        ("format", ctypes.c_int),
        ("data", ctypes.c_long * 5),
        ("room", ctypes.c_long * 16),  # an event of any kind is longer
    ]


ERROR_HANDLER = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)
CLIENT_MESSAGE = 33


class Window(NamedTuple):
    """A window of a program that is on the screen now: its place, its title, whether it is a pop-up of its own."""

    number: int
    left: int
    top: int
    width: int
    height: int
    title: str
    overrides: bool  # menus: the window manager has no say

    def size(self):
        return self.width, self.height


class Display:
    """A connection of our own to the display server, to ask about windows."""

    def __init__(self):
        x11 = ctypes.CDLL("libX11.so.6")
        x11.XOpenDisplay.restype = ctypes.c_void_p
        x11.XDefaultRootWindow.restype = ctypes.c_ulong
        x11.XInternAtom.restype = ctypes.c_ulong
        # A window may vanish between two questions about it.
        self.ignore_errors = ERROR_HANDLER(lambda display, error: 0)
        x11.XSetErrorHandler(self.ignore_errors)
        opened = x11.XOpenDisplay(None)
        if not opened:
            raise RuntimeError("there is no display")
        self.x11 = x11
        self.display = ctypes.c_void_p(opened)
        self.root = x11.XDefaultRootWindow(self.display)

    def atom(self, name):
        return ctypes.c_ulong(self.x11.XInternAtom(self.display, name.encode(), 0))

    def property(self, window, name):
        """The property's bytes; words of 32 bits come as longs. Empty when there is none."""
        kind, form = ctypes.c_ulong(), ctypes.c_int()
        count, rest = ctypes.c_ulong(), ctypes.c_ulong()
        data = ctypes.c_void_p()
        where = (self.display, ctypes.c_ulong(window), self.atom(name), ctypes.c_long(0), ctypes.c_long(256), 0)
        answers = [ctypes.byref(answer) for answer in (kind, form, count, rest, data)]
        self.x11.XGetWindowProperty(*where, ctypes.c_ulong(ANY_TYPE), *answers)
        if not data.value:
            return b""
        unit = {8: 1, 16: 2, 32: ctypes.sizeof(ctypes.c_long)}.get(form.value, 0)
        value = ctypes.string_at(data, count.value * unit)
        self.x11.XFree(data)
        return value

    def children(self, window):
        root, parent = ctypes.c_ulong(), ctypes.c_ulong()
        found = ctypes.POINTER(ctypes.c_ulong)()
        count = ctypes.c_uint()
        answers = [ctypes.byref(answer) for answer in (root, parent, found, count)]
        if not self.x11.XQueryTree(self.display, ctypes.c_ulong(window), *answers):
            return []
        numbers = [found[i] for i in range(count.value)]
        if count.value:
            self.x11.XFree(found)
        return numbers

    def describe(self, number):
        """The window, or None when it is not on the screen."""
        attributes = XAttributes()
        if not self.x11.XGetWindowAttributes(self.display, ctypes.c_ulong(number), ctypes.byref(attributes)):
            return None
        if attributes.map_state != IS_VIEWABLE:
            return None
        left, top, child = ctypes.c_int(), ctypes.c_int(), ctypes.c_ulong()
        windows = ctypes.c_ulong(number), ctypes.c_ulong(self.root)
        answers = [ctypes.byref(answer) for answer in (left, top, child)]
        self.x11.XTranslateCoordinates(self.display, *windows, 0, 0, *answers)
        title = self.property(number, "_NET_WM_NAME").decode("utf-8", "replace")
        width, height = attributes.width, attributes.height
        return Window(number, left.value, top.value, width, height, title, attributes.override_redirect != 0)

    def windows_of(self, process):
        """The windows of the process that are on the screen, lowest first."""
        found = []
        pending = list(reversed(self.children(self.root)))
        while pending:
            number = pending.pop()
            owner = self.property(number, "_NET_WM_PID")
            if len(owner) >= 4 and struct.unpack("<I", owner[:4])[0] == process:
                window = self.describe(number)
                if window:
                    found.append(window)
            else:
                pending.extend(reversed(self.children(number)))
        return found

    def has_manager(self):
        return len(self.property(self.root, "_NET_SUPPORTING_WM_CHECK")) > 0

    def ask_to_close(self, window):
        """What a window manager sends when the user closes the window."""
        message = XClientMessage()
        message.type = CLIENT_MESSAGE
        message.window = window.number
        message.message_type = self.atom("WM_PROTOCOLS").value
        message.format = 32
        message.data[0] = self.atom("WM_DELETE_WINDOW").value
        message.data[1] = 0
        self.x11.XSendEvent(self.display, ctypes.c_ulong(window.number), 0, ctypes.c_long(0), ctypes.byref(message))
        self.x11.XFlush(self.display)


def wait_until(ready, what, timeout=10):
    """Polls until ready() gives something true, which is returned; a failure after so many seconds."""
    deadline = time.monotonic() + timeout
    while True:
        result = ready()
        if result:
            return result
        if time.monotonic() > deadline:
            raise TimeoutError("waited %g s in vain: %s" % (timeout, what))
        time.sleep(0.01)
