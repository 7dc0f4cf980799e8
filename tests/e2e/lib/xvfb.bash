# Shared by the end-to-end scripts: a private X server and a few checks.
# Usage: source this file, then start_xvfb (or start_xvfb_in_workdir); the server is killed on exit.

XVFB_PID=""

# Xvfb picks a free display number itself (-displayfd), so scripts running side by
# side never race for the same one.
start_xvfb() {
    local numberFile
    numberFile=$(mktemp)
    Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$numberFile" >/dev/null 2>&1 &
    XVFB_PID=$!
    trap stop_xvfb EXIT
    local i n=""
    for i in $(seq 1 200); do
        n=$(tr -dc '0-9' < "$numberFile")
        [ -n "$n" ] && break
        kill -0 "$XVFB_PID" 2>/dev/null || break
        sleep 0.05
    done
    rm -f "$numberFile"
    [ -n "$n" ] || fail "Xvfb did not start"
    export DISPLAY=":${n}"
    # The number comes as the server is ready; on a crowded machine, make sure it answers.
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

# A private X server and a fresh working and data folder that all go away on exit.
start_xvfb_in_workdir() {
    start_xvfb
    WORK=$(mktemp -d)
    trap 'stop_xvfb; rm -rf "$WORK"' EXIT
    cd "$WORK"
    # The game's settings and scores stay in here, never in the user's data folder.
    export XDG_DATA_HOME="$WORK/data"
}

fail() {
    echo "FAIL: $*" >&2
    exit 1
}

# The screenshot at one second: the logo in the middle of the black screen.
expect_logo_picture() {
    local summary
    summary=$(python3 "$(dirname "${BASH_SOURCE[0]}")/png_pixels.py" "$1") || fail "PNG does not decode"
    echo "$summary"
    case "$summary" in
      "640 400 distinct=1 "*) fail "no logo on the black screen: $summary" ;;
      "640 400 distinct="*" first=000000ff") ;;
      *) fail "unexpected picture: $summary" ;;
    esac
}
