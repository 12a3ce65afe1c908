# What independent clients see, and whether it is what was asked. Sourced by `tour`.

failures=0

# outer_frame WINDOW: sets x, y, w, h to what the user sees of the window, in pixels: with the window
# manager's decorations, without invisible shadows.
outer_frame() {
    local info extents left right top bottom
    info=$(xwininfo -id "$1")
    x=$(awk '/Absolute upper-left X/ { print $4 }' <<<"$info")
    y=$(awk '/Absolute upper-left Y/ { print $4 }' <<<"$info")
    w=$(awk '/Width:/ { print $2 }' <<<"$info")
    h=$(awk '/Height:/ { print $2 }' <<<"$info")
    extents=$(xprop -id "$1" -notype _NET_FRAME_EXTENTS | sed -n 's/.*= //p' | tr -d ,)
    read -r left right top bottom <<<"${extents:-0 0 0 0}"
    x=$((x - left)) y=$((y - top)) w=$((w + left + right)) h=$((h + top + bottom))
    extents=$(xprop -id "$1" -notype _GTK_FRAME_EXTENTS | sed -n 's/.*= //p' | tr -d ,)
    read -r left right top bottom <<<"${extents:-0 0 0 0}"
    x=$((x + left)) y=$((y + top)) w=$((w - left - right)) h=$((h - top - bottom))
}

frame_text() { echo "${3}x${4} at ${1},${2}"; }

# has_frame WINDOW X Y W H [SLACK_W SLACK_H]: the size may be smaller by less than the slack.
has_frame() {
    outer_frame "$1"
    [ "$x" -eq "$2" ] && [ "$y" -eq "$3" ] && [ "$w" -le "$4" ] && [ "$h" -le "$5" ] &&
        [ "$w" -gt $(($4 - ${6:-1})) ] && [ "$h" -gt $(($5 - ${7:-1})) ]
}

# expect_frame WHAT WINDOW X Y W H [SLACK_W SLACK_H]
expect_frame() {
    local what=$1 verdict=ok
    shift
    wait_until has_frame "$@" 2>/dev/null || verdict=WRONG
    outer_frame "$1"
    echo "  $what"
    echo "    asked: $(frame_text "$2" "$3" "$4" "$5")${6:+, whole character cells only}"
    echo "    read:  $(frame_text "$x" "$y" "$w" "$h")  [$verdict]"
    [ "$verdict" = ok ] || failures=$((failures + 1))
}

# expect WHAT COMMAND...: the command has to succeed, in the end.
expect() {
    local what=$1 verdict=ok
    shift
    wait_until "$@" 2>/dev/null || verdict=WRONG
    echo "  $what  [$verdict]"
    [ "$verdict" = ok ] || failures=$((failures + 1))
}

# picture NAME: of the whole screen.
picture() {
    import -window root "$output/$1.png"
    echo "    picture: $output/$1.png"
}

finish() {
    if [ "$failures" -ne 0 ]; then
        echo "$failures step(s) did not end where they should; the programs' own output is in $output."
        exit 1
    fi
    echo "Everything is where it belongs."
}
