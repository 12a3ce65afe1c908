"""A GTK 4 window with a header bar of its own: gtk4-window.py TITLE."""

import sys

import gi

gi.require_version("Gtk", "4.0")
from gi.repository import Gtk  # noqa: E402


def open_window(application):
    window = Gtk.ApplicationWindow(
        application=application, title=sys.argv[1], default_width=640, default_height=420
    )
    window.set_titlebar(Gtk.HeaderBar())
    window.set_child(Gtk.Label(label=sys.argv[1]))
    window.present()


application = Gtk.Application(application_id="org.tilewright.TestWindow")
application.connect("activate", open_window)
application.run([])
