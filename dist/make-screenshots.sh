#!/usr/bin/env bash
# Remakes the screenshots of the software-centre entry with the game's own --screenshot option.
# Usage: dist/make-screenshots.sh [BUILD], BUILD the build folder (default build/).
set -euo pipefail
HERE=$(cd "$(dirname "$0")" && pwd)
GAME=$(cd "${1:-$HERE/../build}" && pwd)/torvane
cd "$HERE/screenshots"
shot() { # $1 name, then the game's options
    local name=$1
    shift
    xvfb-run -a "$GAME" --windowed --no-sound --skip-intro "$@" --screenshot="$name.png" 2>/dev/null
}
shot attack --seed=5 --autoplay --level=2 --exit-on=attack
shot build --seed=3 --autoplay --level=3 --exit-after=14
shot classic --classic --seed=4 --autoplay --level=2 --exit-on=attack
# The game writes its pictures fast rather than small: compress them for the repository.
python3 - attack.png build.png classic.png <<'PY'
import struct, sys, zlib
for path in sys.argv[1:]:
    data = open(path, "rb").read()
    at, chunks, idat = 8, [], b""
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if kind == b"IDAT":
            if not idat: chunks.append((b"IDAT", None))
            idat += body
        else:
            chunks.append((kind, body))
        at += 12 + length
    out = data[:8]
    for kind, body in chunks:
        if body is None: body = zlib.compress(zlib.decompress(idat), 9)
        out += struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
    open(path, "wb").write(out)
PY
