"""Reads the game's window straight from the X server, in the game's logical pixels
(each 2 by 2 window pixels), and closes it as a window manager would, through the system's
libX11 with ctypes.

Usage:
  python3 x_window.py wait WINDOW X Y RRGGBB SECONDS [gone]
      waits until logical pixel (X, Y) has the colour (or, with "gone", no longer has
      it); exit 1 on timeout.
  python3 x_window.py count WINDOW X0 Y0 X1 Y1 RRGGBB
      prints how many logical pixels of the rectangle have the colour.
  python3 x_window.py view WINDOW [FILE.png]
      in window pixels: prints "WIDTH HEIGHT X0 Y0 X1 Y1", the window's size and the
      rectangle outside which it is black (the picture within its bars), and writes the
      whole window as a PNG if asked.
  python3 x_window.py close WINDOW
      sends WM_DELETE_WINDOW, as a window manager's close button does.
"""
import ctypes
import os
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from pictures import write  # noqa: E402

x11 = ctypes.cdll.LoadLibrary("libX11.so.6")
x11.XOpenDisplay.restype = ctypes.c_void_p
x11.XOpenDisplay.argtypes = [ctypes.c_char_p]
x11.XGetImage.restype = ctypes.c_void_p
x11.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint,
                          ctypes.c_uint, ctypes.c_ulong, ctypes.c_int]
x11.XGetWindowAttributes.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_void_p]
x11.XGetPixel.restype = ctypes.c_ulong
x11.XGetPixel.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_int]
x11.XDestroyImage = None  # a macro in C; the images are few and the process is short
x11.XInternAtom.restype = ctypes.c_ulong
x11.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
x11.XFlush.argtypes = [ctypes.c_void_p]
Z_PIXMAP = 2
ALL_PLANES = 0xFFFFFFFF

display = x11.XOpenDisplay(None)
if not display:
    sys.exit("no X display")


def grab(window, x0, y0, x1, y1):
    """Colours of logical pixels x0..x1-1, y0..y1-1 as 0xRRGGBB, row by row, or None."""
    image = x11.XGetImage(display, window, 2 * x0, 2 * y0, 2 * (x1 - x0), 2 * (y1 - y0), ALL_PLANES, Z_PIXMAP)
    if not image:
        return None
    return [[x11.XGetPixel(image, 2 * x, 2 * y) & 0xFFFFFF for x in range(x1 - x0)] for y in range(y1 - y0)]


class XWindowAttributes(ctypes.Structure):
    _fields_ = [("x", ctypes.c_int), ("y", ctypes.c_int), ("width", ctypes.c_int), ("height", ctypes.c_int)]
    # The rest of the structure is not read; room enough for it.
    _fields_ += [("rest", ctypes.c_char * 256)]


class XImage(ctypes.Structure):
    _fields_ = [("width", ctypes.c_int), ("height", ctypes.c_int), ("xoffset", ctypes.c_int),
                ("format", ctypes.c_int), ("data", ctypes.POINTER(ctypes.c_ubyte)), ("byte_order", ctypes.c_int),
                ("bitmap_unit", ctypes.c_int), ("bitmap_bit_order", ctypes.c_int), ("bitmap_pad", ctypes.c_int),
                ("depth", ctypes.c_int), ("bytes_per_line", ctypes.c_int), ("bits_per_pixel", ctypes.c_int)]


def whole(window):
    """The window's pixels as rows of RGB bytes, at window resolution (32-bit visuals)."""
    attributes = XWindowAttributes()
    x11.XGetWindowAttributes(display, window, ctypes.byref(attributes))
    w, h = attributes.width, attributes.height
    image = ctypes.cast(x11.XGetImage(display, window, 0, 0, w, h, ALL_PLANES, Z_PIXMAP), ctypes.POINTER(XImage))
    if not image or image.contents.bits_per_pixel != 32:
        sys.exit("window not readable as 32-bit pixels")
    line = image.contents.bytes_per_line
    raw = ctypes.string_at(image.contents.data, line * h)
    rows = []
    for y in range(h):
        bgrx = raw[y * line:y * line + 4 * w]  # little-endian 32-bit pixels: B G R X
        rgb = bytearray(3 * w)
        rgb[0::3], rgb[1::3], rgb[2::3] = bgrx[2::4], bgrx[1::4], bgrx[0::4]
        rows.append(bytes(rgb))
    return w, h, rows


def view(window, path):
    w, h, rows = whole(window)
    lit = [y for y in range(h) if rows[y].strip(b"\0")]
    x0 = min((len(r) - len(r.lstrip(b"\0"))) // 3 for r in rows if r.strip(b"\0")) if lit else 0
    x1 = max((len(r.rstrip(b"\0")) + 2) // 3 for r in rows if r.strip(b"\0")) if lit else 0
    print(w, h, x0, lit[0] if lit else 0, x1, lit[-1] + 1 if lit else 0)
    if path:
        write(path, w, h, rows)


class ClientMessage(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5)]


class XEvent(ctypes.Union):
    _fields_ = [("xclient", ClientMessage), ("pad", ctypes.c_long * 24)]


x11.XSendEvent.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_long, ctypes.POINTER(XEvent)]


def close(window):
    event = XEvent()
    event.xclient.type = 33  # ClientMessage
    event.xclient.window = window
    event.xclient.message_type = x11.XInternAtom(display, b"WM_PROTOCOLS", 0)
    event.xclient.format = 32
    event.xclient.data[0] = x11.XInternAtom(display, b"WM_DELETE_WINDOW", 0)
    event.xclient.data[1] = 0  # CurrentTime
    x11.XSendEvent(display, window, 0, 0, ctypes.byref(event))
    x11.XFlush(display)


def wait(window, x, y, colour, seconds, gone):
    end = time.time() + seconds
    got = None
    while time.time() < end:
        got = grab(window, x, y, x + 1, y + 1)
        if got is not None and (got[0][0] == colour) != gone:
            return True
        time.sleep(0.01)
    print("timeout: pixel (%d, %d) is %s" % (x, y, "%06x" % got[0][0] if got else "unreadable"))
    return False


def main(args):
    command, window = args[0], int(args[1], 0)
    if command == "wait":
        x, y, colour, seconds = int(args[2]), int(args[3]), int(args[4], 16), float(args[5])
        return 0 if wait(window, x, y, colour, seconds, len(args) > 6 and args[6] == "gone") else 1
    if command == "count":
        x0, y0, x1, y1, colour = int(args[2]), int(args[3]), int(args[4]), int(args[5]), int(args[6], 16)
        rows = grab(window, x0, y0, x1, y1) or []
        print(sum(1 for row in rows for c in row if c == colour))
        return 0
    if command == "view":
        view(window, args[2] if len(args) > 2 else None)
        return 0
    if command == "close":
        close(window)
        return 0
    sys.exit("unknown command " + command)


sys.exit(main(sys.argv[1:]))
