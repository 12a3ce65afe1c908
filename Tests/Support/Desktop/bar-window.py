"""A desktop's green bar on an X server, which takes no room away: bar-window.py TITLE WIDTH HEIGHT."""

import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402

width, height = map(int, sys.argv[2:])
green = Gtk.CssProvider()
green.load_from_data(b"window { background: #208040; }")
window = Gtk.Window(title=sys.argv[1])
window.set_type_hint(Gdk.WindowTypeHint.DOCK)
window.get_style_context().add_provider(green, Gtk.STYLE_PROVIDER_PRIORITY_USER)
window.set_default_size(width, height)
window.show_all()
Gtk.main()
