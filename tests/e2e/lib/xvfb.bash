# Shared by the end-to-end scripts, each of which sources this file first, with the build
# folder as its argument: strict mode, BUILD, HERE (the scripts' folder), a private X server
# (start_xvfb or start_xvfb_in_workdir; it is killed on exit), the game's window and keys,
# and the probes of pictures.
set -euo pipefail
BUILD=$(cd "$1" && pwd)
HERE=$(cd "$(dirname "$0")" && pwd)
XVFB_PID=""

# Each script takes its own display number at random from a wide range, rather than the
# lowest free one (-displayfd alone), which the next script would take the moment another
# script's server exits. -displayfd still tells when the server is ready.
start_xvfb() {
    trap stop_xvfb EXIT
    local attempt i n numberFile ready
    for attempt in $(seq 1 20); do
        n=$(( 100 + RANDOM % 3900 ))
        if [ -e "/tmp/.X${n}-lock" ] || [ -e "/tmp/.X11-unix/X${n}" ]; then continue; fi
        numberFile=$(mktemp)
        Xvfb ":$n" -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp -noreset 3>"$numberFile" >/dev/null 2>&1 &
        XVFB_PID=$!
        ready=""
        for i in $(seq 1 200); do
            if [ -n "$(tr -dc '0-9' < "$numberFile")" ]; then ready=1; break; fi
            kill -0 "$XVFB_PID" 2>/dev/null || break
            sleep 0.05
        done
        rm -f "$numberFile"
        [ -n "$ready" ] && break
        stop_xvfb
    done
    [ -n "$ready" ] || fail "Xvfb did not start"
    export DISPLAY=":${n}"
    # On a crowded machine, make sure it answers. (Without -noreset the server would start
    # over when this check hangs up, and refuse the next client while it does.)
    for i in $(seq 1 100); do
        xdpyinfo >/dev/null 2>&1 && break
        sleep 0.05
    done
    export LIBGL_ALWAYS_SOFTWARE=1
}

stop_xvfb() {
    if [ -n "$XVFB_PID" ]; then
        kill "$XVFB_PID" 2>/dev/null || true
        wait "$XVFB_PID" 2>/dev/null || true
        XVFB_PID=""
    fi
}

# A fresh working folder that goes away on exit, with the X server if one was started.
start_workdir() {
    WORK=$(mktemp -d)
    trap 'stop_xvfb; rm -rf "$WORK"' EXIT
    cd "$WORK"
}

# A private X server and a fresh working and data folder that all go away on exit.
start_xvfb_in_workdir() {
    start_xvfb
    start_workdir
    # The game's settings and scores stay in here, never in the user's data folder.
    export XDG_DATA_HOME="$WORK/data"
}

# Runs a command without the strict mode's exit on failure; its exit status goes to rc.
status() {
    set +e
    "$@"
    rc=$?
    set -e
}

# The game's window, once it is there, in WINDOW, given the keyboard focus (no window manager does).
find_window() {
    WINDOW=$(timeout 20 xdotool search --sync --name '^Torvane$' | head -1) || fail "no window"
    xdotool windowfocus --sync "$WINDOW" || true
}

# Lets go of a key pressed in a window that may be gone by now, as when the key ended the
# program: the server keeps its state from one client to the next, and a key left down
# would repeat into the next program.
key_up() {
    xdotool keyup --window "$1" "$2" 2>/dev/null || xdotool keyup "$2" 2>/dev/null || true
}

# Starts the game in the background with these options, its errors unshown: its process in GAME.
start_game() {
    "$BUILD/torvane" --windowed "$@" 2>/dev/null &
    GAME=$!
    find_window
}

# The game ($GAME) must be gone within five seconds after $1, with status 0.
expect_end() {
    local i
    for i in $(seq 1 100); do
        kill -0 "$GAME" 2>/dev/null || break
        sleep 0.05
    done
    if kill -0 "$GAME" 2>/dev/null; then
        kill -s KILL "$GAME"
        fail "still running after $1"
    fi
    status wait "$GAME"
    GAME=""
    [ "$rc" -eq 0 ] || fail "exit status $rc after $1"
}

# Taps keys in WINDOW, each held over several frames and let go before it would repeat.
tap() {
    local key
    for key in "$@"; do
        xdotool keydown --window "$WINDOW" "$key"
        sleep 0.12
        key_up "$WINDOW" "$key"
        sleep 0.15
    done
}

# Screenshots (lib/pictures.py) and the window on the X server (lib/x_window.py).
png() { python3 "$HERE/lib/pictures.py" "$@"; }
px() { python3 "$HERE/lib/x_window.py" "$@"; }

fail() {
    echo "FAIL: $*" >&2
    exit 1
}

# A screenshot $1 of $2 by $3 pixels that decodes and is not of one colour (summary in SUMMARY).
expect_picture() {
    SUMMARY=$(png summary "$1") || fail "$1 does not decode"
    echo "$SUMMARY"
    case "$SUMMARY" in
      "$2 $3 distinct=1 "*) fail "$1 is of one colour: $SUMMARY" ;;
      "$2 $3 "*) ;;
      *) fail "$1: unexpected picture $SUMMARY" ;;
    esac
}

# The screenshot at one second: the logo in the middle of the black screen.
expect_logo_picture() {
    expect_picture "$1" 640 400
    [ "${SUMMARY##* first=}" = 000000ff ] || fail "no logo on the black screen: $SUMMARY"
}
