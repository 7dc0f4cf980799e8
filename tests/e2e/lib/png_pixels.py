"""Decodes an RGBA PNG with Python's own zlib and prints WIDTH HEIGHT and a summary.

Usage: python3 png_pixels.py FILE  ->  "640 400 distinct=1 first=1b222aff"
Fails (exit 1) on a bad signature, a bad CRC, another colour type or a filter
byte other than 0.
"""
import struct
import sys
import zlib


def rows(path):
    """The picture's rows of RGBA bytes, filter bytes removed."""
    data = open(path, "rb").read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        sys.exit("bad signature")
    at, idat, width, height = 8, b"", 0, 0
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        (crc,) = struct.unpack(">I", data[at + 8 + length:at + 12 + length])
        if zlib.crc32(kind + body) != crc:
            sys.exit("bad crc in " + kind.decode())
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", body[:10])
            if depth != 8 or colour != 6:
                sys.exit("not 8-bit RGBA")
        elif kind == b"IDAT":
            idat += body
        at += 12 + length
    raw = zlib.decompress(idat)
    stride = 1 + 4 * width
    if len(raw) != stride * height:
        sys.exit("wrong data size")
    if any(raw[y * stride] != 0 for y in range(height)):
        sys.exit("filter byte not 0")
    return [raw[y * stride + 1:(y + 1) * stride] for y in range(height)]


def main():
    picture = rows(sys.argv[1])
    height = len(picture)
    width = len(picture[0]) // 4 if picture else 0
    pixels = {row[4 * x:4 * x + 4] for row in picture for x in range(width)}
    first = picture[0][:4].hex() if picture else ""
    print(f"{width} {height} distinct={len(pixels)} first={first}")


if __name__ == "__main__":
    main()
