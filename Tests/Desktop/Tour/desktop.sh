# The tour's desktop: starting it, its applications, and a user's hands. Sourced by `tour`.

started=()

# start NAME COMMAND...: runs a program of the desktop until the tour ends.
start() {
    local name=$1
    shift
    "$@" >"$output/$name.log" 2>&1 &
    started+=($!)
}

stop_everything() {
    local pid
    for pid in "${started[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
    wait 2>/dev/null || true
}

# wait_until COMMAND...: until the command succeeds; fails after 30 seconds.
wait_until() {
    local deadline=$((SECONDS + 30))
    until "$@" >/dev/null 2>&1; do
        if [ $SECONDS -ge $deadline ]; then
            echo "Waited in vain for: $*" >&2
            return 1
        fi
        sleep 0.05
    done
}

start_desktop() {
    trap stop_everything EXIT
    mkdir -p -m 700 "$XDG_RUNTIME_DIR"
    mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME"
    local number=$TILEWRIGHT_TOUR_HOME/display
    # The server chooses a free number and writes it to its descriptor 3.
    Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp -noreset +extension RANDR \
        3>"$number" >"$output/xvfb.log" 2>&1 &
    started+=($!)
    wait_until test -s "$number"
    DISPLAY=:$(<"$number")
    export DISPLAY
    # After the display: what the bus starts has to know it.
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus
    start bus dbus-daemon --session --nofork --nopidfile --address="$DBUS_SESSION_BUS_ADDRESS"
    wait_until test -S "$XDG_RUNTIME_DIR/bus"
    start openbox openbox
    wait_until xprop -root -notype _NET_SUPPORTING_WM_CHECK
    wait_until has_window_manager
    start picom picom --backend xrender --config /dev/null
    wait_until has_compositor
    echo "A desktop of 1920x1080 on display $DISPLAY: openbox, picom."
}

has_window_manager() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }

has_compositor() { xwininfo -root -tree | grep -qi picom; }

# open_window TITLE COMMAND...: starts an application and sets `window` to its window.
open_window() {
    local title=$1
    shift
    start "${1##*/}" "$@"
    wait_until window_titled "$title"
    window=$(window_titled "$title")
}

window_titled() {
    local found
    found=$(xdotool search --onlyvisible --name "^$1\$" | head -n 1)
    [ -n "$found" ] && echo "$found"
}

# The pointer moves through the server's test extension in relative steps: a warp of the pointer
# would be no input.
move_pointer() {
    local X Y steps=${3:-1} step
    for ((step = steps; step > 0; --step)); do
        eval "$(xdotool getmouselocation --shell | grep -E '^(X|Y)=')"
        xdotool mousemove_relative -- $((($1 - X) / step)) $((($2 - Y) / step))
    done
}
