# The panel and the settings on a desktop of twice the resolution, light and dark.

echo
echo "Light and dark, at scale 2"

# colours WINDOW BASE TEXT: writes the desktop's colour scheme.
colours() {
    local group
    for group in Window View Button; do
        echo "[Colors:$group]"
        echo "BackgroundNormal=$([ $group = View ] && echo "$2" || echo "$1")"
        echo "ForegroundNormal=$3"
    done >"$XDG_CONFIG_HOME/kdeglobals"
}

# panel_window: the panel with its shadow.
panel_window() {
    xdotool search --onlyvisible --name '^Tilewright$' | head -n 1
}

# Not `item_shows`: where Plasma is installed, its theme for Qt offers the item on the bus alone.
item_is_offered() {
    dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.ListNames |
        grep "org\.kde\.StatusNotifierItem-$program_pid-"
}

looks() {
    local tone=$1 tab
    start_program XDG_CURRENT_DESKTOP=KDE KDE_SESSION_VERSION=5 QT_SCALE_FACTOR=2
    scale=2
    wait_until item_is_offered
    move_pointer 1400 540
    # A second start of the program opens the panel of the first, by the pointer.
    XDG_CURRENT_DESKTOP=KDE KDE_SESSION_VERSION=5 "$program"
    expect "$tone: a second start opens the panel of the first" panel_shows
    move_pointer 400 1000
    client_frame "$(panel_window)"
    picture "panel-$tone" "$x" "$y" "$w" "$h"
    click button "Settings…"
    wait_until settings_rest
    for tab in Layouts Manage General Accessibility; do
        click "page tab" "$tab"
        expect_control "$tone: the tab shows" "page tab list" "$tab"
        move_pointer 100 1000
        client_frame "$(settings_window)"
        picture "settings-${tab,,}-$tone" "$x" "$y" "$w" "$h"
    done
    end_program
    scale=1
}

colours 238,239,242 255,255,255 28,28,31
looks light
colours 42,43,47 31,32,35 242,242,244
looks dark
