# A quarter of an hour without a screen saver, ended after a few seconds. The X server itself says
# whether its screen saver is on, and for how long nobody has touched anything.

echo
echo "Keep awake"

left_alone_for() { [ "$(xssstate -i)" -ge "$1" ]; }
saver_is() { [ "$(xssstate -s)" = "$1" ]; }

xset s 1
click button 15m
expect_control "a session of a quarter of an hour runs" label "Active — 14:5? remaining"
expect_control "the switch is on" "check box" "Keep Awake" checked
move_pointer 960 800
wait_until left_alone_for 3000
result=0
saver_is off || result=1
verdict "the screen saver is set to one second, and nobody touches anything" "$result" \
    "read: left alone for $(xssstate -i) ms, screen saver $(xssstate -s)"
click "check box" "Keep Awake"
expect_control "the session has ended" label "Display sleep allowed"
expect "left alone again, the screen saver comes on" saver_is on
xset s off s reset
xdotool key Escape
expect "Escape closes the panel" panel_is_gone
