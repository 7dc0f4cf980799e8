"""Facts about the stage of a screenshot, for the end-to-end scripts.

Usage: python3 png_stage.py A.png            ->  "stage_colours=N red=M"
       python3 png_stage.py A.png B.png      ->  "stage_diff=N"
The stage is the band between the HUD line and the help bar (rows 18 to 385).
"red" counts the pixels of the Defence Line's hue: strong red, little green and blue.
Decoding is that of png_pixels.py (8-bit RGBA, filter 0, as the game writes them).
"""
import struct
import sys
import zlib

STAGE_TOP, STAGE_BOTTOM = 18, 386


def rows(path):
    data = open(path, "rb").read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        sys.exit("bad signature")
    at, idat, width, height = 8, b"", 0, 0
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", body[:10])
            if depth != 8 or colour != 6:
                sys.exit("not 8-bit RGBA")
        elif kind == b"IDAT":
            idat += body
        at += 12 + length
    raw = zlib.decompress(idat)
    stride = 1 + 4 * width
    return [raw[y * stride + 1:(y + 1) * stride] for y in range(height)]


def main():
    first = rows(sys.argv[1])[STAGE_TOP:STAGE_BOTTOM]
    if len(sys.argv) > 2:
        second = rows(sys.argv[2])[STAGE_TOP:STAGE_BOTTOM]
        diff = sum(1 for a, b in zip(first, second)
                   for x in range(0, len(a), 4) if a[x:x + 3] != b[x:x + 3])
        print(f"stage_diff={diff}")
        return
    colours, red = set(), 0
    for row in first:
        for x in range(0, len(row), 4):
            r, g, b = row[x], row[x + 1], row[x + 2]
            colours.add((r, g, b))
            if r >= 150 and g <= 80 and b <= 70:
                red += 1
    print(f"stage_colours={len(colours)} red={red}")


if __name__ == "__main__":
    main()
