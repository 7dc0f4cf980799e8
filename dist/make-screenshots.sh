#!/usr/bin/env bash
# Remakes the screenshots of the software-centre entry with the game's own --screenshot option.
# Usage: dist/make-screenshots.sh [BUILD], BUILD the build folder (default build/).
set -euo pipefail
HERE=$(cd "$(dirname "$0")" && pwd)
GAME=$(cd "${1:-$HERE/../build}" && pwd)/torvane
cd "$HERE/screenshots"
# A fresh data folder, so that no one's settings show: the defaults, in English.
export XDG_DATA_HOME
XDG_DATA_HOME=$(mktemp -d)
trap 'rm -rf "$XDG_DATA_HOME"' EXIT
mkdir "$XDG_DATA_HOME/Torvane"
printf 'settings_version=2\nlanguage=en\n' > "$XDG_DATA_HOME/Torvane/settings.txt"
shot() { # $1 name, then the game's options
    local name=$1
    shift
    xvfb-run -a "$GAME" --windowed --no-sound --skip-intro "$@" --screenshot="$name.png" 2>/dev/null
}
shot title --exit-after=4
shot attack --seed=7 --autoplay --level=3 --exit-on=attack
shot classic --classic --seed=4 --autoplay --level=2 --exit-after=12
# The game writes its pictures fast rather than small: compress them for the repository.
python3 - title.png attack.png classic.png <<'PY'
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
