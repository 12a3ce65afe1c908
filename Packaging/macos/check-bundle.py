"""Checks the parts of the macOS bundle that can be read anywhere.

check-bundle.py Properties|Entitlements|Icon INFO_PLIST ENTITLEMENTS ICONSET
"""

import pathlib
import plistlib
import re
import struct
import sys

# The sides, in pixels, of the pictures that an icon has to bring, by their names.
SIDES = {
    f"icon_{points}x{points}{suffix}.png": points * scale
    for points in (16, 32, 128, 256, 512)
    for suffix, scale in (("", 1), ("@2x", 2))
}


def check_properties(info, entitlements, icon):
    values = plistlib.loads(info.read_bytes())
    assert values["LSUIElement"] is True, "the program would have a Dock icon"
    assert values["CFBundleIdentifier"] == "org.tilewright.Tilewright"
    assert values["CFBundlePackageType"] == "APPL"
    assert values["CFBundleExecutable"] == "Tilewright"
    assert values["CFBundleIconFile"] == icon.with_suffix(".icns").name
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
    found = {}
    for file in icon.iterdir():
        picture = file.read_bytes()
        assert picture[:8] == b"\x89PNG\r\n\x1a\n" and picture[12:16] == b"IHDR", file
        width, height = struct.unpack(">II", picture[16:24])
        assert width == height, file
        found[file.name] = width
    assert found == SIDES, found


if __name__ == "__main__":
    check = {"Properties": check_properties, "Entitlements": check_entitlements, "Icon": check_icon}
    check[sys.argv[1]](*map(pathlib.Path, sys.argv[2:5]))
