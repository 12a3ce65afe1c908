"""Says which reports of valgrind's memory checker have this program's own code on their stack.

own-reports.py LOG    fails where there is one, or where the log is not one of a whole run
"""

import pathlib
import re
import sys


def main():
    lines = pathlib.Path(sys.argv[1]).read_text(encoding="utf-8", errors="replace").splitlines()
    text = [re.sub(r"^==\d+== ?", "", line) for line in lines if re.match(r"^==\d+==", line)]
    summary = [line for line in text if line.startswith("ERROR SUMMARY")]
    if not summary:
        print("The log is not one of a whole run")
        return 1
    reports = [report.split("\n") for report in re.split(r"\n\s*\n", "\n".join(text))]
    reports = [report for report in reports if any(re.match(r"\s+(at|by) 0x", line) for line in report)]
    # A leak is told of with the stack that allocated: what others keep for good is no fault of ours.
    own = [report for report in reports if any("tilewright::" in line for line in report)]
    print(f"{summary[-1]}; {len(reports)} reports, {len(own)} of them with this program's own code")
    for report in own:
        print("\n".join(report), end="\n\n")
    return 1 if own else 0


sys.exit(main())
