# Windows are dragged into the zones of the layout, and one is sent there from the panel.

echo
echo "Drag to snap"

open_window "Icon Browser" gtk3-icon-browser
open_window "Application Class" gtk3-demo
demo=$window
open_window "Terminal" xterm -T Terminal -geometry 80x24+120+160 -e env PS1='$ ' sh
terminal=$window

overlay_window() {
    xwininfo -root -tree | awk '/"tilewright"/ && /1920x1080/ { print $1 }' | while read -r id; do
        xwininfo -id "$id" | grep -q IsViewable && echo "$id"
    done
}
overlay_shows() { [ -n "$(overlay_window)" ]; }
overlay_is_gone() { [ -z "$(overlay_window)" ]; }

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

echo "Control-drag the GTK window by its own header bar into the second zone."
zone_frame 2
take "$demo" 300 20
move_pointer $((zx + zw / 2)) $((zy + 120)) 24
picture overlay
let_go
expect_frame "the GTK window fills the zone" "$demo" "$zx" "$zy" "$zw" "$zh"

echo "Control-drag the terminal into the first zone."
zone_frame 1
take "$terminal" 150 8
move_pointer $((zx + zw / 2)) $((zy + zh / 2)) 24
picture overlay-terminal
let_go
expect_frame "the terminal fills the zone" "$terminal" "$zx" "$zy" "$zw" "$zh" 12 24

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

echo "Click the third zone in the panel."
click_item
zone_frame 3
click button "Snap to Zone 3"
expect_frame "the terminal, which has the focus, fills it" "$terminal" "$zx" "$zy" "$zw" "$zh" 12 24
xdotool key Escape
wait_until panel_is_gone
picture result
end_program
close_windows
