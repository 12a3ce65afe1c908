#!/usr/bin/python3
"""Hears what programs announce on the accessibility bus, as a screen reader does.

Prints a line of JSON for each object that comes to be shown, role and name, after a first line that
says that it is listening.
"""

import json

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib


def heard(event):
    if not event.type.startswith("object:state-changed:showing") or event.detail1 != 1:
        return
    try:
        role = Atspi.role_get_name(event.source.get_role())
        print(json.dumps({"role": role, "name": event.source.get_name()}), flush=True)
    except GLib.Error:
        # The object went away before it could be asked.
        pass


Atspi.init()
listener = Atspi.EventListener.new(heard)
# The library keeps the names that it has been asked for, until it is told of a change.
listener.register("object:property-change:accessible-name")
listener.register("object:state-changed:showing")
print(json.dumps({"role": "listening", "name": ""}), flush=True)
Atspi.event_main()
