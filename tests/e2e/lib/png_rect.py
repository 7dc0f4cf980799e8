"""Rectangles of a screenshot, for the end-to-end scripts (decoding as png_pixels.py).

Usage: python3 png_rect.py count A.png X0 Y0 X1 Y1 RRGGBB  ->  pixels of that colour
       python3 png_rect.py diff A.png B.png X0 Y0 X1 Y1    ->  pixels that differ
       python3 png_rect.py make OUT.png W H                ->  writes an opaque RGB test picture
"""
import os
import struct
import sys
import zlib

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from png_pixels import rows  # noqa: E402


def rect(picture, x0, y0, x1, y1):
    return [row[4 * x:4 * x + 3] for row in picture[y0:y1] for x in range(x0, x1)]


def make(path, width, height):
    """A smooth gradient, as a painted picture might have; 8-bit RGB, filter 0."""
    raw = b"".join(b"\0" + bytes(v for x in range(width) for v in (60 + x * 80 // width, 40 + y * 100 // height, 90))
                   for y in range(height))

    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
    with open(path, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
                  + chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b""))


def main(args):
    if args[0] == "count":
        colour = bytes.fromhex(args[6])
        print(sum(1 for p in rect(rows(args[1]), *map(int, args[2:6])) if p == colour))
    elif args[0] == "diff":
        box = list(map(int, args[3:7]))
        print(sum(1 for a, b in zip(rect(rows(args[1]), *box), rect(rows(args[2]), *box)) if a != b))
    elif args[0] == "make":
        make(args[1], int(args[2]), int(args[3]))
    else:
        sys.exit("unknown command " + args[0])


if __name__ == "__main__":
    main(sys.argv[1:])
