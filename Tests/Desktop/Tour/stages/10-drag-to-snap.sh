# Three windows are dragged into zones of Bento Box, the layout of a display without a choice.

echo
echo "Drag to snap"

open_window "Icon Browser" gtk3-icon-browser
open_window "Application Class" gtk3-demo
demo=$window
open_window "Terminal" xterm -T Terminal -geometry 80x24+120+160
terminal=$window

overlay_window() {
    xwininfo -root -tree | awk '/"tilewright"/ && /1920x1080/ { print $1 }' | while read -r id; do
        xwininfo -id "$id" | grep -q IsViewable && echo "$id"
    done
}
overlay_shows() { [ -n "$(overlay_window)" ]; }
overlay_is_gone() { [ -z "$(overlay_window)" ]; }

# It tells nobody that it listens: drags over an empty place until the overlay shows. The key goes up
# first, so that nothing is snapped.
answers_to_a_drag() {
    local try
    move_pointer 960 1060
    xdotool keydown ctrl mousedown 1
    for try in 1 2 3 4 5; do
        move_pointer 964 1060
        move_pointer 960 1060
        overlay_shows && break
    done
    local shows=$?
    xdotool keyup ctrl mouseup 1
    return $shows
}

start tilewright "$program"
program_pid=${started[-1]}
expect "Tilewright answers to a drag" answers_to_a_drag
wait_until overlay_is_gone

# take WINDOW GRIP_X GRIP_Y: presses key and button there, and begins to drag. The grip counts from
# the window's corner.
take() {
    outer_frame "$1"
    move_pointer $((x + $2)) $((y + $3))
    xdotool keydown ctrl mousedown 1
    move_pointer $((x + $2 + 12)) $((y + $3 + 4)) 4
    expect "the overlay shows" overlay_shows
}

let_go() {
    xdotool mouseup 1 keyup ctrl
    expect "the overlay is gone" overlay_is_gone
}

echo "Control-drag the GTK window by its own header bar into the zone at the top right."
take "$demo" 300 20
move_pointer 1500 250 24
picture overlay-gtk
let_go
expect_frame "the GTK window fills the zone" "$demo" 1190 0 730 594

echo "Control-drag the terminal into the tall zone at the left."
take "$terminal" 150 8
move_pointer 500 600 24
picture overlay-terminal
let_go
expect_frame "the terminal fills the zone" "$terminal" 0 0 1190 1080 12 24

echo "Drag the terminal and let go of Control before the button: nothing is snapped."
take "$terminal" 150 8
move_pointer 1500 800 12
outer_frame "$terminal"
expected=$(frame_text "$x" "$y" "$w" "$h")
xdotool keyup ctrl
expect "the overlay is gone" overlay_is_gone
xdotool mouseup 1
outer_frame "$terminal"
expect "the terminal is where the drag left it: $expected" \
    test "$(frame_text "$x" "$y" "$w" "$h")" = "$expected"
picture result

kill -TERM "$program_pid"
has_ended() { ! kill -0 "$program_pid"; }
expect "Tilewright ends when asked to" has_ended
