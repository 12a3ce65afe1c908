"""Lists what the blocks of an Objective-C file capture strongly, and fails on what nobody has reviewed.

check-blocks.py SOURCE COMPILER [ARGUMENT...]

No test here shows a cycle of references, so each block that may close one is looked at by a person
and noted below with the reason why it closes none.
"""

import pathlib
import re
import subprocess
import sys

# By file and captured name.
REVIEWED = {
    # The handler, shared with nobody but the block: AppKit lets go of it when the monitor is removed.
    ("AppKitEventMonitor.mm", "shared"),
}


def captures(source, command):
    tree = subprocess.run(
        [*command, "-Xclang", "-ast-dump", "-Xclang", "-ast-dump-filter=ilewright", "-fno-color-diagnostics", source],
        check=True, capture_output=True, text=True,
    ).stdout
    found = []
    inside = -1
    for line in tree.splitlines():
        depth = len(line) - len(line.lstrip(" |`-"))
        if "BlockDecl" in line:
            inside = depth
            if "captures_this" in line:
                found.append("this")
            found.append(None)
        elif inside >= 0 and depth > inside:
            captured = re.search(r"\bcapture .*?(?:Var|ParmVar|ImplicitParam) 0x\w+ '(\w+)' '([^']*)'", line)
            if captured and "__weak" not in captured.group(2):
                found.append(captured.group(1))
        else:
            inside = -1
    return found


def main(source, command):
    name = pathlib.Path(source).name
    found = captures(source, command)
    print(f"{name}: {found.count(None)} blocks")
    unknown = []
    for captured in sorted(set(found) - {None}):
        is_reviewed = (name, captured) in REVIEWED
        print(f"  {captured}{'' if is_reviewed else ': not reviewed'}")
        if not is_reviewed:
            unknown.append(captured)
    return 1 if unknown else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2:]))
