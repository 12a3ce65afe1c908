"""Reads a layouts file as anybody may: zones.py FILE NAME X Y WIDTH HEIGHT.

Prints a line for each zone of the layout of that name: where a window that fills the zone stands in
a work area at X, Y of that size. Edges are rounded, so that neighbours share theirs. Then a line
"displays" with the number of displays that the layout is assigned to.
"""

import json
import sys

file, name, *numbers = sys.argv[1:]
left, top, width, height = map(int, numbers)
with open(file, encoding="utf-8") as stored:
    content = json.load(stored)
layout = next(layout for layout in content["customLayouts"] if layout["name"] == name)
for zone in layout["zones"]:
    x = round(left + zone["x"] * width)
    y = round(top + zone["y"] * height)
    right = round(left + (zone["x"] + zone["width"]) * width)
    bottom = round(top + (zone["y"] + zone["height"]) * height)
    print(zone["name"].replace(" ", "-"), x, y, right - x, bottom - y)
print("displays", sum(chosen == layout["id"] for chosen in content["assignments"].values()))
