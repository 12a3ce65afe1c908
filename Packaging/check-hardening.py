"""check-hardening.py PROGRAM COMPILE_COMMANDS

Fails unless the program is hardened as cmake/TilewrightHardening.cmake wants it: as far as it can be
read from the program itself, and for the rest from how each of its sources was compiled.
"""

import json
import platform
import subprocess
import sys

FLAGS = {"-fstack-protector-strong", "-fstack-clash-protection", "-D_FORTIFY_SOURCE=3", "-ffp-contract=off"}
IS_X86 = platform.machine() == "x86_64"


def readelf(program, *options):
    command = ["readelf", "--wide", *options, program]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def lacks_of_program(program):
    header = readelf(program, "--file-header")
    segments = readelf(program, "--segments")
    dynamic = readelf(program, "--dynamic")
    symbols = readelf(program, "--dyn-syms")
    stack = next(line for line in segments.splitlines() if "GNU_STACK" in line)
    found = {
        "a place in memory that is not known beforehand": "DYN" in header and "PIE" in dynamic,
        "tables that are read-only once it has started": "GNU_RELRO" in segments and "BIND_NOW" in dynamic,
        "a stack that is not executable": "RWE" not in stack,
        "guards on the stack": "__stack_chk_fail" in symbols,
        "calls of the C library that know their buffers' sizes": "printf_chk" in symbols,
    }
    return [f"{program} lacks {what}" for what, is_there in found.items() if not is_there]


def lacks_of_commands(path):
    # The program tells of -fcf-protection only where the system's own start-up code has it as well.
    wanted = FLAGS | ({"-fcf-protection"} if IS_X86 else set())
    with open(path, encoding="utf-8") as file:
        entries = json.load(file)
    if not entries:
        return [f"{path} names no source"]
    return [
        f"{entry['file']} was compiled without {' '.join(sorted(lacking))}"
        for entry in entries
        if (lacking := wanted - set(entry["command"].split()))
    ]


if __name__ == "__main__":
    lacking = lacks_of_program(sys.argv[1]) + lacks_of_commands(sys.argv[2])
    print(*lacking, sep="\n")
    sys.exit(1 if lacking else 0)
