"""Finishes bundles over stand-ins for codesign and otool, and looks at what was asked of them.

finish-tests.py CMAKE FOLDER
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

CMAKE, FOLDER = sys.argv[1], pathlib.Path(sys.argv[2])

# A "binary" here is a text: what otool says of it.
OTOOL = """#!/bin/sh
grep -q '^MACH' "$2" || exit 1
case $1 in
-h) echo "Mach header" ;;
-L) echo "$2:"; sed -n 's/^LINK /\\t/p' "$2" ;;
-l) sed -n 's/^COMMAND //p' "$2" ;;
esac
"""
NOTING = """#!/bin/sh
echo "$@" >>"$LOG"
test "$1" != "$REFUSED"
"""


class Finishing(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.root = pathlib.Path(self.temporary.name)
        self.bundle = self.root / "Tilewright.app"
        self.log = self.root / "log"
        for name, text in (("otool", OTOOL), ("codesign", NOTING), ("xcrun", NOTING), ("spctl", NOTING)):
            tool = self.root / "tools" / name
            tool.parent.mkdir(exist_ok=True)
            tool.write_text(text)
            tool.chmod(0o755)
        self.binary("MacOS/Tilewright", "LINK @rpath/QtCore.framework/Versions/A/QtCore (compatibility 6)",
                    "LINK /usr/lib/libc++.1.dylib (compatibility 1)", "COMMAND minos 13.0")
        self.binary("Frameworks/QtCore.framework/Versions/A/QtCore",
                    "LINK @rpath/QtCore.framework/Versions/A/QtCore (compatibility 6)", "COMMAND minos 11.0")
        self.binary("PlugIns/platforms/libqcocoa.dylib",
                    "LINK /System/Library/Frameworks/AppKit.framework/AppKit (compatibility 45)")
        self.write("Resources/Licenses/Qt.txt", "a text")

    def tearDown(self):
        self.temporary.cleanup()

    def write(self, name, text):
        file = self.bundle / "Contents" / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)

    def binary(self, name, *lines):
        self.write(name, "\n".join(("MACH", *lines)) + "\n")

    def finish(self, identity="-"):
        done = subprocess.run(
            [CMAKE, f"-DBUNDLE={self.bundle}", "-DMINIMUM=13.0", f"-DIDENTITY={identity}",
             "-DENTITLEMENTS=own.entitlements", f"-DTOOLS={self.root / 'tools'}", "-P", FOLDER / "Finish.cmake"],
            env={**os.environ, "LOG": str(self.log)}, capture_output=True, text=True,
        )
        calls = self.log.read_text().splitlines() if self.log.exists() else []
        return " ".join(done.stderr.split()), [call.replace(f"{self.bundle}", "APP") for call in calls]

    def test_signs_each_piece_and_gives_entitlements_to_the_program_alone(self):
        error, calls = self.finish()
        self.assertEqual(error, "")
        common = "--force --options runtime --sign -"
        self.assertEqual(sorted(calls[:-2]), [
            f"{common} APP/Contents/Frameworks/QtCore.framework/Versions/A",
            f"{common} APP/Contents/PlugIns/platforms/libqcocoa.dylib",
        ])
        self.assertEqual(calls[-2:], [f"{common} --entitlements own.entitlements APP",
                                      "--verify --strict --deep APP"])

    def test_leaves_library_validation_on_and_asks_for_the_time_where_somebody_signs(self):
        error, calls = self.finish("Developer ID Application: Somebody")
        self.assertEqual(error, "")
        self.assertFalse([call for call in calls if "--entitlements" in call])
        self.assertTrue(all("--timestamp" in call for call in calls[:-1]), calls)

    def test_refuses_a_library_of_the_computer_that_it_was_built_on(self):
        self.binary("PlugIns/platforms/libqcocoa.dylib", "LINK /opt/homebrew/lib/libzstd.1.dylib (compatibility 1)")
        error, calls = self.finish()
        self.assertIn("libqcocoa.dylib is linked to /opt/homebrew/lib/libzstd.1.dylib", error)
        self.assertEqual(calls, [])

    def test_refuses_a_library_that_was_not_deployed(self):
        self.binary("PlugIns/platforms/libqcocoa.dylib",
                    "LINK @rpath/QtDBus.framework/Versions/A/QtDBus (compatibility 6)")
        self.assertIn("QtDBus, which is not in the bundle", self.finish()[0])

    def test_refuses_a_folder_of_libraries_outside_the_bundle(self):
        self.binary("PlugIns/platforms/libqcocoa.dylib", "COMMAND cmd LC_RPATH", "COMMAND path /opt/qt/lib (offset 12)")
        self.assertIn("looks for libraries in /opt/qt/lib", self.finish()[0])

    def test_refuses_a_qt_for_newer_systems_than_the_bundle_says(self):
        self.binary("Frameworks/QtCore.framework/Versions/A/QtCore", "COMMAND minos 14.0")
        self.assertIn("needs macOS 14.0, and the bundle says 13.0", self.finish()[0])

    def notarize(self, refused):
        tools = f"{self.root / 'tools'}:{os.environ['PATH']}"
        done = subprocess.run(
            [FOLDER / "notarize", "Tilewright.dmg", "profile"],
            env={**os.environ, "LOG": str(self.log), "PATH": tools, "REFUSED": refused}, capture_output=True,
        )
        calls = [call.split()[:2] for call in self.log.read_text().splitlines()]
        self.log.unlink()
        return done.returncode == 0, calls

    def test_staples_what_was_notarised_and_nothing_else(self):
        submitted = ["notarytool", "submit"]
        stapled = [["stapler", "staple"], ["stapler", "validate"], ["--assess", "--type"]]
        self.assertEqual(self.notarize(refused=""), (True, [submitted, *stapled]))
        self.assertEqual(self.notarize(refused="notarytool"), (False, [submitted]))
        self.assertFalse(self.notarize(refused="--assess")[0])


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]])
