"""Checks the parts of the macOS bundle that can be read anywhere.

check-bundle.py Properties|Entitlements|Icon INFO_PLIST ENTITLEMENTS ICON
"""

import pathlib
import plistlib
import re
import struct
import sys

# The sides, in pixels, of the pictures that an icon has to bring, by the types of their entries.
SIDES = {
    b"icp4": 16, b"icp5": 32, b"ic11": 32, b"ic12": 64, b"ic07": 128,
    b"ic08": 256, b"ic13": 256, b"ic09": 512, b"ic14": 512, b"ic10": 1024,
}


def check_properties(info, entitlements, icon):
    values = plistlib.loads(info.read_bytes())
    assert values["LSUIElement"] is True, "the program would have a Dock icon"
    assert values["CFBundleIdentifier"] == "org.tilewright.Tilewright"
    assert values["CFBundlePackageType"] == "APPL"
    assert values["CFBundleExecutable"] == "Tilewright"
    assert values["CFBundleIconFile"] == icon.name
    assert values["LSMinimumSystemVersion"] == "13.0"
    assert values["NSHighResolutionCapable"] is True
    assert re.fullmatch(r"\d+\.\d+\.\d+", values["CFBundleShortVersionString"])
    assert "@" not in info.read_text(encoding="utf-8"), "something was not filled in"


def check_entitlements(info, entitlements, icon):
    values = plistlib.loads(entitlements.read_bytes())
    # In a sandbox no other program's window can be moved.
    assert "com.apple.security.app-sandbox" not in values
    assert values == {"com.apple.security.cs.disable-library-validation": True}


def check_icon(info, entitlements, icon):
    data = icon.read_bytes()
    magic, length = struct.unpack(">4sI", data[:8])
    assert magic == b"icns" and length == len(data)
    found = {}
    at = 8
    while at < len(data):
        kind, length = struct.unpack(">4sI", data[at : at + 8])
        picture = data[at + 8 : at + length]
        assert picture[:8] == b"\x89PNG\r\n\x1a\n" and picture[12:16] == b"IHDR", kind
        width, height = struct.unpack(">II", picture[16:24])
        assert width == height, kind
        found[kind] = width
        at += length
    assert at == len(data) and found == SIDES, found


if __name__ == "__main__":
    check = {"Properties": check_properties, "Entitlements": check_entitlements, "Icon": check_icon}
    check[sys.argv[1]](*map(pathlib.Path, sys.argv[2:5]))
