"""Reads the game's window straight from the X server, in the game's logical pixels
(each 2 by 2 window pixels), through libX11 with ctypes.

Usage:
  python3 x_pixels.py wait WINDOW X Y RRGGBB SECONDS [gone]
      waits until logical pixel (X, Y) has the colour (or, with "gone", no longer has
      it); exit 1 on timeout.
  python3 x_pixels.py count WINDOW X0 Y0 X1 Y1 RRGGBB
      prints how many logical pixels of the rectangle have the colour.
  python3 x_pixels.py press-when WINDOW X Y RRGGBB SECONDS KEYSYM
      as wait, then at once a press of the key through XTest to the focused window,
      for the cases where a shell's round trip would come too late.
"""
import ctypes
import sys
import time

x11 = ctypes.cdll.LoadLibrary("libX11.so.6")
x11.XOpenDisplay.restype = ctypes.c_void_p
x11.XOpenDisplay.argtypes = [ctypes.c_char_p]
x11.XGetImage.restype = ctypes.c_void_p
x11.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint,
                          ctypes.c_uint, ctypes.c_ulong, ctypes.c_int]
x11.XGetPixel.restype = ctypes.c_ulong
x11.XGetPixel.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_int]
x11.XKeysymToKeycode.restype = ctypes.c_ubyte
x11.XKeysymToKeycode.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
x11.XStringToKeysym.restype = ctypes.c_ulong
x11.XStringToKeysym.argtypes = [ctypes.c_char_p]
x11.XFlush.argtypes = [ctypes.c_void_p]
xtst = ctypes.cdll.LoadLibrary("libXtst.so.6")
xtst.XTestFakeKeyEvent.argtypes = [ctypes.c_void_p, ctypes.c_uint, ctypes.c_int, ctypes.c_ulong]
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


def press(keysym):
    code = x11.XKeysymToKeycode(display, x11.XStringToKeysym(keysym.encode()))
    xtst.XTestFakeKeyEvent(display, code, 1, 0)
    x11.XFlush(display)
    time.sleep(0.08)  # over a few frames
    xtst.XTestFakeKeyEvent(display, code, 0, 0)
    x11.XFlush(display)


def main(args):
    command, window = args[0], int(args[1], 0)
    if command in ("wait", "press-when"):
        x, y, colour, seconds = int(args[2]), int(args[3]), int(args[4], 16), float(args[5])
        if not wait(window, x, y, colour, seconds, command == "wait" and len(args) > 6 and args[6] == "gone"):
            return 1
        if command == "press-when":
            press(args[6])
        return 0
    if command == "count":
        x0, y0, x1, y1, colour = int(args[2]), int(args[3]), int(args[4]), int(args[5]), int(args[6], 16)
        rows = grab(window, x0, y0, x1, y1) or []
        print(sum(1 for row in rows for c in row if c == colour))
        return 0
    sys.exit("unknown command " + command)


sys.exit(main(sys.argv[1:]))
