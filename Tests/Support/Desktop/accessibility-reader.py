#!/usr/bin/python3
"""Reads what a program tells assistive tools, through the accessibility bus.

For each line on standard input, a process id, it prints one line of JSON: a list of the program's
accessible objects in the order of the tree, null while the program is not on the bus.

With a process id as its argument it reads that program once, and prints a line for each object that
is shown: role, name, states, x, y, width and height on the screen, with tabs between them.
"""

import json
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib

COORDINATES = Atspi.CoordType.SCREEN
# Roles are numbers to the bus; what the library calls them changed with its age. A button that opens a
# menu is any button to an older Qt, and has a role of its own to a newer one.
BUTTON = 43
BUTTON_WITH_MENU = 129


def role_of(node):
    role = node.get_role()
    return "button" if int(role) in (BUTTON, BUTTON_WITH_MENU) else Atspi.role_get_name(role)


def describe(node, depth):
    component = node.get_component_iface()
    extents = component.get_extents(COORDINATES) if component else None
    return {
        "depth": depth,
        "role": role_of(node),
        "name": node.get_name(),
        "description": node.get_description(),
        "states": [state.value_nick for state in node.get_state_set().get_states()],
        "frame": [extents.x, extents.y, extents.width, extents.height] if extents else None,
    }


def walk(node, depth, found):
    if node is None:
        return
    # What is kept of earlier walks may be old: no main loop runs here to hear of changes.
    node.clear_cache()
    found.append(describe(node, depth))
    if not {"showing", "visible"} & set(found[-1]["states"]):
        # Some toolkits call what is inside a hidden control shown.
        return
    for index in range(node.get_child_count()):
        walk(node.get_child_at_index(index), depth + 1, found)


def tree(process):
    desktop = Atspi.get_desktop(0)
    desktop.clear_cache()
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        if application is not None and application.get_process_id() == process:
            found = []
            walk(application, 0, found)
            return found
    return None


def answer_to(line):
    while GLib.MainContext.default().iteration(False):
        pass
    try:
        return tree(int(line))
    except GLib.Error:
        # An object went away in the middle of the walk.
        return None


def print_table(nodes):
    for node in nodes or []:
        if "showing" in node["states"] and node["frame"]:
            print(node["role"], node["name"], " ".join(node["states"]), *node["frame"], sep="\t")


Atspi.init()
if len(sys.argv) > 1:
    print_table(answer_to(sys.argv[1]))
else:
    for line in sys.stdin:
        print(json.dumps(answer_to(line)), flush=True)
