"""A GTK 3 window with client-side decorations: csd-window.py TITLE [X Y WIDTH HEIGHT]."""

import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gtk  # noqa: E402

title = sys.argv[1]
window = Gtk.Window(title=title)
header = Gtk.HeaderBar(title=title, show_close_button=True)
window.set_titlebar(header)
window.add(Gtk.Label(label=title))
if len(sys.argv) == 6:
    x, y, width, height = map(int, sys.argv[2:])
    window.set_default_size(width, height)
    window.move(x, y)
else:
    window.set_default_size(640, 420)
window.connect("destroy", Gtk.main_quit)
window.show_all()
Gtk.main()
