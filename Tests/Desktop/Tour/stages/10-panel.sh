# The item on the bar, and the panel that a click on it opens.

echo
echo "The panel"

# The item's window, which the bar has taken in.
item_window() { xdotool search --onlyvisible --class '^tilewright$' | while read -r id; do
    xwininfo -id "$id" -tree | grep -q 'Parent window.*root' || echo "$id"
done | head -n 1; }
item_shows() { [ -n "$(item_window)" ]; }

panel_shows() { shows dialog Tilewright; }
panel_is_gone() { ! panel_shows; }

# click_item: opens the panel, or closes it.
click_item() {
    client_frame "$(item_window)"
    click_at $((x + w / 2)) $((y + h / 2))
}

start_program
expect "the bar shows the item" item_shows
click_item
expect "a click on it opens the panel" panel_shows
expect_control "the display may sleep" label "Display sleep allowed"
for layout in Halves Thirds Quadrants "Priority Center" "Bento Box"; do
    expect_control "the layout can be chosen" "check box" "$layout"
done
picture panel
