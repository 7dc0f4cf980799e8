"""Screenshots for the end-to-end scripts, decoded with Python's own zlib: 8-bit RGBA with
filter 0, as the game writes them (a bad signature or CRC, another colour type or another
filter byte fails with exit 1).

Usage: pictures.py summary A.png                   ->  "640 400 distinct=1 first=1b222aff"
       pictures.py count A.png X0 Y0 X1 Y1 RRGGBB  ->  pixels of that colour
       pictures.py diff A.png B.png X0 Y0 X1 Y1    ->  pixels that differ
       pictures.py stage A.png                     ->  "stage_colours=N red=M"
       pictures.py stage A.png B.png               ->  "stage_diff=N"
       pictures.py make OUT.png W H                ->  writes an opaque RGB test picture
The stage is the band between the HUD line and the help bar (rows 18 to 385). "red" counts
the pixels of the Defence Line's hue: strong red, little green and blue.
"""
import struct
import sys
import zlib

STAGE_TOP, STAGE_BOTTOM = 18, 386


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


def write(path, width, height, rgb_rows):
    """Writes rows of 8-bit RGB bytes as a PNG, filter 0."""
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
    with open(path, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
                  + chunk(b"IDAT", zlib.compress(b"".join(b"\0" + r for r in rgb_rows))) + chunk(b"IEND", b""))


def rect(picture, x0, y0, x1, y1):
    return [row[4 * x:4 * x + 3] for row in picture[y0:y1] for x in range(x0, x1)]


def main(args):
    if args[0] == "summary":
        picture = rows(args[1])
        width = len(picture[0]) // 4 if picture else 0
        pixels = {row[4 * x:4 * x + 4] for row in picture for x in range(width)}
        print(f"{width} {len(picture)} distinct={len(pixels)} first={picture[0][:4].hex() if picture else ''}")
    elif args[0] == "count":
        colour = bytes.fromhex(args[6])
        print(sum(1 for p in rect(rows(args[1]), *map(int, args[2:6])) if p == colour))
    elif args[0] == "diff":
        box = list(map(int, args[3:7]))
        print(sum(1 for a, b in zip(rect(rows(args[1]), *box), rect(rows(args[2]), *box)) if a != b))
    elif args[0] == "stage" and len(args) > 2:
        first, second = (rows(a)[STAGE_TOP:STAGE_BOTTOM] for a in args[1:3])
        print(f"stage_diff={sum(1 for a, b in zip(first, second) for x in range(0, len(a), 4) if a[x:x + 3] != b[x:x + 3])}")
    elif args[0] == "stage":
        stage = [row[x:x + 3] for row in rows(args[1])[STAGE_TOP:STAGE_BOTTOM] for x in range(0, len(row), 4)]
        red = sum(1 for r, g, b in stage if r >= 150 and g <= 80 and b <= 70)
        print(f"stage_colours={len(set(stage))} red={red}")
    elif args[0] == "make":
        # A smooth gradient, as a painted picture might have.
        width, height = int(args[2]), int(args[3])
        write(args[1], width, height, [bytes(v for x in range(width) for v in (60 + x * 80 // width,
                                                                               40 + y * 100 // height, 90))
                                       for y in range(height)])
    else:
        sys.exit("unknown command " + args[0])


if __name__ == "__main__":
    main(sys.argv[1:])
