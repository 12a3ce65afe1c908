"""Shows that the tests that are written are the tests that run.

expected-tests.py before BUILD_FOLDER   says what will be run, and what this release cannot say
                                        anything of; fails if a test that stands in the sources is
                                        not registered, or is disabled
expected-tests.py elsewhere BUILD_FOLDER
                                        says which of the tests that were built this release cannot
                                        say anything of
expected-tests.py after BUILD_FOLDER    fails if a registered test did not run to its end; says how
                                        often tests did something once more because of a fault of a
                                        window manager
"""

import collections
import json
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree

# Why a test may not run, by its label: it needs what only some release has.
ELSEWHERE = {
    "oldlibrary": "needs libc++ 14, the library of the oldest macOS that is supported",
    "x11-mutter": "needs a mutter that manages windows on X servers, as before GNOME 50",
    "desktop-labwc-quick": "needs labwc, as in newer releases",
    "desktop-wayfire-quick": "needs wayfire, which Tests/Releases/root puts into a root when asked for wayfire",
    "desktop-plasma": "needs Plasma's desktop, which Tests/Releases/root puts into a root when asked for plasma",
}

ROOT = pathlib.Path(__file__).resolve().parent.parent
TEST_MACRO = re.compile(r"^\s*(?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)\s*\)", re.MULTILINE)


def tests_in_sources():
    found = {}
    folders = [ROOT / "Packages", ROOT / "Tilewright", ROOT / "Tests", ROOT / "Fuzz", ROOT / "Packaging"]
    for source in sorted(path for folder in folders for path in folder.rglob("*.cpp")):
        for suite, name in TEST_MACRO.findall(source.read_text(encoding="utf-8")):
            found[f"{suite}.{name}"] = source.relative_to(ROOT)
    return found


def registered(build):
    listing = subprocess.run(
        ["ctest", "--test-dir", build, "--show-only=json-v1"], check=True, capture_output=True, text=True
    )
    tests = {}
    for test in json.loads(listing.stdout)["tests"]:
        properties = {p["name"]: p["value"] for p in test.get("properties", [])}
        tests[test["name"]] = properties.get("LABELS", []), properties.get("DISABLED", False)
    return tests


def why_elsewhere(labels):
    return next((ELSEWHERE[label] for label in labels if label in ELSEWHERE), None)


def before(build):
    sources = tests_in_sources()
    tests = registered(build)
    # A parameterised test is registered as Prefix/Suite.Name/parameter.
    plain = {re.sub(r"^[^/.]*/", "", name).split("/")[0] for name in tests} | set(tests)
    missing = [f"{name} ({file})" for name, file in sources.items() if name not in plain]
    left_out = {name: why_elsewhere(labels) for name, (labels, disabled) in tests.items() if disabled}
    bad = [name for name in tests if "DISABLED_" in name or name.endswith("_NOT_BUILT")]
    bad += [name for name, why in left_out.items() if why is None]
    if missing or bad:
        print("Not registered, disabled or not built:", *missing, *bad, sep="\n  ")
        return 1
    meaning = {
        "unit": "tests of the code by itself, on fakes of the desktop",
        "desktop": "tests on real X servers, window managers, applications and services",
        "long": "long runs, left out here",
        "other": "checks of the build",
    }
    counts = collections.Counter()
    for labels, disabled in tests.values():
        if not disabled:
            counts.update({label.split("-")[0] for label in labels} & set(meaning) or {"other"})
    print("This runs:")
    for label, count in counts.most_common():
        print(f"  {count:5} {meaning[label]}")
    tell(left_out)
    return 0


def tell(left_out):
    for name, why in left_out.items():
        print(f"Not run: {name} ({why})")


def elsewhere(build):
    tell({name: why_elsewhere(labels) for name, (labels, disabled) in registered(build).items() if disabled})
    return 0


def after(build):
    cases = xml.etree.ElementTree.parse(pathlib.Path(build, "test-results.xml")).getroot().iter("testcase")
    unfinished = [case.get("name") for case in cases if case.get("status") not in ("run", "fail", "disabled")]
    log = pathlib.Path(build, "Testing/Temporary/LastTest.log").read_text(encoding="utf-8", errors="replace")
    repeated = collections.Counter(re.findall(r"^repeated: (.*)$", log, re.MULTILINE))
    print(f"repeated: {sum(repeated.values())}")
    for what, count in repeated.most_common():
        print(f"  {count:5} {what}")
    if unfinished:
        print("Did not run:", *unfinished, sep="\n  ")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit({"before": before, "elsewhere": elsewhere, "after": after}[sys.argv[1]](sys.argv[2]))
