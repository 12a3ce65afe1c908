# The tour's desktop: starting it, its applications, and a user's hands. Sourced by `tour`.

started=()

# start NAME COMMAND...: runs a program of the desktop until the tour ends.
start() {
    local name=$1
    shift
    "$@" >>"$output/$name.log" 2>&1 &
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
    # No screen saver but where the tour asks for one.
    xset s off
    start openbox openbox
    wait_until has_window_manager
    hsetroot -add '#2c3a57' -add '#4f6f88' -add '#b98a6a' -gradient 135
    start picom picom --backend xrender --config /dev/null
    wait_until has_compositor
    start_bar
    echo "A desktop of 1920x1080 on display $DISPLAY: openbox, picom, tint2."
}

has_window_manager() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }

has_compositor() { xwininfo -root -tree | grep -qi picom; }

# A bar at the top, as desktops have one: windows, the status area, the time.
start_bar() {
    cat >"$TILEWRIGHT_TOUR_HOME/tint2rc" <<'END'
rounded = 0
border_width = 0
background_color = #1c1e24 92
rounded = 4
border_width = 0
background_color = #ffffff 12
panel_items = TSC
panel_size = 100% 32
panel_position = top center horizontal
panel_background_id = 1
panel_padding = 6 4 6
strut_policy = follow_size
taskbar_padding = 2 0 6
task_text = 1
task_icon = 0
task_maximum_size = 180 24
task_padding = 8 2
task_font = Sans 9
task_font_color = #d8dae0 90
task_active_background_id = 2
systray_padding = 8 4 8
systray_icon_size = 22
time1_format = %H:%M
time1_font = Sans 9
clock_font_color = #d8dae0 100
clock_padding = 8 0
END
    start tint2 tint2 -c "$TILEWRIGHT_TOUR_HOME/tint2rc"
    wait_until window_titled tint2
}

# start_program [VARIABLE=VALUE...]: starts Tilewright in this environment, and sets `program_pid`.
start_program() {
    start tilewright env QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 "$@" "$program"
    program_pid=${started[-1]}
}

end_program() {
    kill -TERM "$program_pid"
    expect "Tilewright ends when asked to" has_ended
}

has_ended() { ! kill -0 "$program_pid"; }

applications=()

# open_window TITLE COMMAND...: starts an application and sets `window` to its window.
open_window() {
    local title=$1
    shift
    start "${1##*/}" "$@"
    applications+=("${started[-1]}")
    wait_until window_titled "$title"
    window=$(window_titled "$title")
}

close_windows() {
    kill "${applications[@]}"
    wait_until only_the_bar
}

# The bar is managed, too.
only_the_bar() { [ "$(xprop -root -notype _NET_CLIENT_LIST | grep -o 0x | wc -l)" -eq 1 ]; }

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

# click_at X Y
click_at() {
    move_pointer "$1" "$2"
    xdotool click 1
}

# drag_by DX DY: from where the pointer is.
drag_by() {
    local X Y
    eval "$(xdotool getmouselocation --shell | grep -E '^(X|Y)=')"
    xdotool mousedown 1
    move_pointer $((X + $1)) $((Y + $2)) 12
    xdotool mouseup 1
}
