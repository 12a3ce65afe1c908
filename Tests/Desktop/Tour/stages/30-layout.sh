# A layout of one's own: three zones, made in the editor.

echo
echo "A layout of one's own"

layouts_file=$XDG_DATA_HOME/Tilewright/layouts.json

settings_window() { window_titled "Tilewright Settings"; }
settings_are_forward() { [ "$(xdotool getactivewindow getwindowname)" = "Tilewright Settings" ]; }
# The toolkit has heard of the place that the window manager chose; its points may be larger than a
# pixel.
settings_rest() {
    local dx dy
    shows frame "Tilewright Settings" || return 1
    client_frame "$(settings_window)"
    dx=$((cx - cw / 2 - x)) dy=$((cy - ch / 2 - y))
    [ ${dx#-} -lt 3 ] && [ ${dy#-} -lt 3 ]
}

# grip CORNER: moves the pointer onto the selected zone's handle.
grip() {
    wait_until rests button "$1 corner"
    move_pointer "$cx" "$cy"
}

click_item
click button "Settings…"
expect "\"Settings…\" opens the window, focused" settings_are_forward
wait_until settings_rest

click button New
expect_control "a new layout begins with the left half" "list item" "Zone 1, 50 % × 100 %"
click button "Add Zone"
expect_control "the next zone takes the right half" "list item" "Zone 2, 50 % × 100 %"
shows "list item" "Zone 2, *"
canvas_height=$ch canvas_width=$((2 * cw))
grip "Bottom right"
drag_by 0 $((-canvas_height * 4 / 10))
expect_control "its corner, dragged up, makes room below" "list item" "Zone 2, 50 % × [56]? %"
click button "Add Zone"
expect_control "the room takes a third zone" "list item" "Zone 3, 25 % × 25 %"
# Farther than the canvas goes, and to where the neighbour's edge is near enough.
grip "Bottom right"
drag_by $((canvas_width / 2)) $((canvas_height / 4))
shows "list item" "Zone 2, *"
edge=$((cy + ch / 2))
grip "Top left"
drag_by 0 $((edge - cy + 6))
expect_control "its corners, dragged, snap to the neighbour and to the edges" \
    "list item" "Zone 3, 50 % × [34]? %"

click text "Layout name"
xdotool key ctrl+a
xdotool type Writing
expect_control "it is named" text "Layout name" focused
picture editor
click button "Save Layout"
expect_control "saved: from now on it is updated" button "Update Layout"

work_area() { xprop -root -notype _NET_WORKAREA | sed 's/.*= //' | tr -d , | cut -d ' ' -f 1-4; }
# zones: what the file says of the layout, where a window that fills a zone would stand.
zones() {
    # shellcheck disable=SC2046 # four numbers
    /usr/bin/python3 "$here/zones.py" "$layouts_file" Writing $(work_area)
}
# zone_frame NUMBER: sets zx, zy, zw, zh.
zone_frame() { read -r zx zy zw zh < <(zones | sed -n "s/^Zone-$1 //p"); }
three_zones_tile_the_work_area() {
    local area left top width height lx ly lw lh ux uy uw uh
    area=$(work_area)
    read -r left top width height <<<"$area"
    zone_frame 1 && lx=$zx ly=$zy lw=$zw lh=$zh
    zone_frame 2 && ux=$zx uy=$zy uw=$zw uh=$zh
    zone_frame 3
    [ "$lx $ly $lh" = "$left $top $height" ] && [ "$ux $uy" = "$((lx + lw)) $top" ] &&
        [ "$zx $zy $zw" = "$ux $((uy + uh)) $uw" ] && [ $((zy + zh)) -eq $((top + height)) ] &&
        [ $((ux + uw)) -eq $((left + width)) ]
}
expect "the file on disk has it: three zones without a gap between them" \
    three_zones_tile_the_work_area
zones | sed -n 's/^Zone-/    read: zone /p'

click "page tab" Manage
expect_control "it stands among the user's own layouts" label Writing
xdotool key alt+F4
wait_until shows_no frame "Tilewright Settings"

echo "Click its card in the panel."
click_item
click "check box" Writing
expect_control "the card is the chosen one" "check box" Writing checked
is_assigned() { [ "$(zones | sed -n 's/^displays //p')" -eq 1 ]; }
expect "the file on disk assigns it to the display" is_assigned
xdotool key Escape
wait_until panel_is_gone
