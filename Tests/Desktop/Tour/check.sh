# What independent clients see, and whether it is what was asked. Sourced by `tour`.

failures=0
# What the program's own points are, in pixels.
scale=1

# outer_frame WINDOW: sets x, y, w, h to what the user sees of the window, in pixels: with the window
# manager's decorations, without invisible shadows.
outer_frame() {
    local extents left right top bottom
    client_frame "$1"
    extents=$(xprop -id "$1" -notype _NET_FRAME_EXTENTS | sed -n 's/.*= //p' | tr -d ,)
    read -r left right top bottom <<<"${extents:-0 0 0 0}"
    x=$((x - left)) y=$((y - top)) w=$((w + left + right)) h=$((h + top + bottom))
    extents=$(xprop -id "$1" -notype _GTK_FRAME_EXTENTS | sed -n 's/.*= //p' | tr -d ,)
    read -r left right top bottom <<<"${extents:-0 0 0 0}"
    x=$((x + left)) y=$((y + top)) w=$((w - left - right)) h=$((h - top - bottom))
}

# client_frame WINDOW: the same without decorations.
client_frame() {
    local info
    info=$(xwininfo -id "$1")
    x=$(awk '/Absolute upper-left X/ { print $4 }' <<<"$info")
    y=$(awk '/Absolute upper-left Y/ { print $4 }' <<<"$info")
    w=$(awk '/Width:/ { print $2 }' <<<"$info")
    h=$(awk '/Height:/ { print $2 }' <<<"$info")
}

frame_text() { echo "${3}x${4} at ${1},${2}"; }

# has_frame WINDOW X Y W H [SLACK_W SLACK_H]: the size may be smaller by less than the slack.
has_frame() {
    outer_frame "$1"
    [ "$x" -eq "$2" ] && [ "$y" -eq "$3" ] && [ "$w" -le "$4" ] && [ "$h" -le "$5" ] &&
        [ "$w" -gt $(($4 - ${6:-1})) ] && [ "$h" -gt $(($5 - ${7:-1})) ]
}

# verdict WHAT RESULT [DETAIL...]: prints a step's line, and counts it where it went wrong.
verdict() {
    local word=ok detail
    if [ "$2" -ne 0 ]; then
        word=WRONG
        failures=$((failures + 1))
    fi
    echo "  $1  [$word]"
    for detail in "${@:3}"; do
        echo "    $detail"
    done
}

# expect_frame WHAT WINDOW X Y W H [SLACK_W SLACK_H]
expect_frame() {
    local what=$1 result=0
    shift
    wait_until has_frame "$@" 2>/dev/null || result=1
    outer_frame "$1"
    verdict "$what" "$result" \
        "asked: $(frame_text "$2" "$3" "$4" "$5")${6:+, whole character cells only}" \
        "read:  $(frame_text "$x" "$y" "$w" "$h")"
}

# expect WHAT COMMAND...: the command has to succeed, in the end.
expect() {
    local what=$1 result=0
    shift
    wait_until "$@" 2>/dev/null || result=1
    verdict "$what" "$result"
}

# controls: what the program tells assistive tools of its windows, a line for each control.
controls() { /usr/bin/python3 -W ignore "$reader" "$program_pid" 2>/dev/null; }

# shows ROLE NAME [STATE]: whether there is such a control now, in this state. NAME is a pattern of
# the shell's. Sets cx, cy to its centre on the screen and cw, ch to its size, in pixels.
shows() {
    local role name states left top width height
    while IFS=$'\t' read -r role name states left top width height; do
        # shellcheck disable=SC2053 # a pattern
        if [ "$role" = "$1" ] && [[ $name == $2 ]] && [[ " $states " == *" ${3:-} "* || -z ${3:-} ]]; then
            cx=$(((left + width / 2) * scale)) cy=$(((top + height / 2) * scale))
            cw=$((width * scale)) ch=$((height * scale))
            shown_name=$name
            return 0
        fi
    done < <(controls)
    return 1
}

shows_no() { ! shows "$@"; }

# rests ROLE NAME: whether the control is there, and where it was a moment ago: the window manager
# may still be placing its window.
rests() {
    local before
    shows "$1" "$2" || return 1
    before="$cx $cy $cw $ch"
    shows "$1" "$2" && [ "$before" = "$cx $cy $cw $ch" ]
}

# click ROLE NAME: clicks the control, wherever it is.
click() {
    wait_until rests "$1" "$2" || {
        verdict "\"$2\" can be clicked" 1
        return 0
    }
    click_at "$cx" "$cy"
}

# expect_control WHAT ROLE NAME [STATE]
expect_control() {
    local what=$1 result=0 shown_name=nothing
    shift
    wait_until shows "$@" 2>/dev/null || result=1
    verdict "$what" "$result" "read: $1 \"$shown_name\"${3:+, $3}"
}

# picture NAME [X Y W H]: of the screen, or a part of it.
picture() {
    local part=()
    [ $# -eq 1 ] || part=(-crop "${4}x${5}+${2}+${3}" +repage)
    import -window root "${part[@]}" "$output/$1.png"
    echo "    picture: $output/$1.png"
}

finish() {
    if [ "$failures" -ne 0 ]; then
        echo "$failures step(s) did not end where they should; the programs' own output is in $output."
        exit 1
    fi
    echo "Everything is where it belongs."
}
