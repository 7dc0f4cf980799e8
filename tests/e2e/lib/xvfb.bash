# Shared by the end-to-end scripts: a private X server and a few checks.
# Usage: source this file, then start_xvfb; the server is killed on exit.

XVFB_PID=""

start_xvfb() {
    local n
    for n in $(seq 90 190); do
        if [ ! -e "/tmp/.X${n}-lock" ] && [ ! -e "/tmp/.X11-unix/X${n}" ]; then
            Xvfb ":${n}" -screen 0 1600x1000x24 -nolisten tcp >/dev/null 2>&1 &
            XVFB_PID=$!
            trap stop_xvfb EXIT
            local i
            for i in $(seq 1 100); do
                if [ -e "/tmp/.X11-unix/X${n}" ]; then
                    export DISPLAY=":${n}"
                    export LIBGL_ALWAYS_SOFTWARE=1
                    return 0
                fi
                if ! kill -0 "$XVFB_PID" 2>/dev/null; then break; fi
                sleep 0.05
            done
            kill "$XVFB_PID" 2>/dev/null || true
            wait "$XVFB_PID" 2>/dev/null || true
            XVFB_PID=""
        fi
    done
    echo "no free display for Xvfb" >&2
    exit 1
}

stop_xvfb() {
    if [ -n "$XVFB_PID" ]; then
        kill "$XVFB_PID" 2>/dev/null || true
        wait "$XVFB_PID" 2>/dev/null || true
        XVFB_PID=""
    fi
}

fail() {
    echo "FAIL: $*" >&2
    exit 1
}
