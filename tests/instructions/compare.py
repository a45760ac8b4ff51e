#!/usr/bin/env python3
# tests/instructions/compare.py: counts the library's instructions and compares them with what is
# recorded.
"""Usage: compare.py [--record] PROGRAM COMPILER BUILD_TYPE

PROGRAM is run under valgrind. Only instructions of the library's own file count: those of the C
library depend on the processor that it finds. Each operation's count has to be within 5 % of
recorded.json. Where the compiler, valgrind, the build or the processor's architecture is another
than the recorded one the comparison is skipped, with exit status 77. --record writes the file anew.
"""
import glob
import json
import os
import platform
import re
import shutil
import subprocess
import sys
import tempfile

LIBRARY = "liborbcommon.so"
RECORD = os.path.join(os.path.dirname(os.path.abspath(__file__)), "recorded.json")
TOLERANCE = 0.05
SKIPPED = 77


def first_line(*command):
    return subprocess.run(command, check=True, capture_output=True,
                          text=True).stdout.splitlines()[0]


def surroundings(compiler, build_type):
    """What has to be the same for counts to be comparable."""
    return {
        "compiler": first_line(compiler, "--version").split(" ", 1)[1],
        "valgrind": first_line("valgrind", "--version"),
        "build": build_type,
        "architecture": platform.machine(),
    }


def library_instructions(path):
    """The instructions of the library's functions themselves in one of callgrind's files."""
    total, inside, skip = 0, False, False
    with open(path, encoding="utf-8") as lines:
        for line in lines:
            if line.startswith("ob="):
                inside = os.path.basename(line[3:].strip()).startswith(LIBRARY)
            elif line.startswith("calls="):
                skip = True  # the line behind it is what the called function cost
            elif re.match(r"[0-9+*-]", line):
                if inside and not skip:
                    total += int(line.split()[-1])
                skip = False
    return total


def part_number(path):
    return int(path.rpartition(".")[2])


def count(program):
    """Instructions by operation."""
    with tempfile.TemporaryDirectory() as folder:
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", f"--callgrind-out-file={folder}/counts",
             "--compress-strings=no", "--compress-pos=no",
             "--toggle-collect=measured(*", "--dump-before=operation_ends(*", program],
            capture_output=True, text=True)
        if run.returncode != 0:
            sys.exit(f"the program failed under valgrind:\n{run.stdout}{run.stderr}")
        names = run.stdout.split()
        parts = sorted(glob.glob(f"{folder}/counts.*"), key=part_number)[:len(names)]
        counts = dict(zip(names, map(library_instructions, parts)))
    if len(counts) != len(names) or 0 in counts.values():
        sys.exit(f"valgrind did not count every operation: {counts}")
    return counts


def compare(counts, recorded):
    """Whether every operation is as recorded; prints one line for each."""
    agreed = set(counts) == set(recorded)
    if not agreed:
        print(f"other operations are recorded: {sorted(set(counts) ^ set(recorded))}")
    for name in sorted(set(counts) & set(recorded)):
        change = counts[name] / recorded[name] - 1
        within = abs(change) <= TOLERANCE
        agreed = agreed and within
        print(f"{name}: {counts[name]} instructions, recorded {recorded[name]}, {change:+.1%}"
              f"{'' if within else ': MORE THAN 5 %'}")
    return agreed


def main():
    arguments = [each for each in sys.argv[1:] if each != "--record"]
    program, compiler, build_type = arguments
    if shutil.which("valgrind") is None:
        print("skipped: valgrind is not installed")
        sys.exit(SKIPPED)
    here = surroundings(compiler, build_type)
    if "--record" in sys.argv:
        counted = {**here, "instructions": count(program)}
        with open(RECORD, "w", encoding="utf-8") as file:
            json.dump(counted, file, indent=2)
            file.write("\n")
        return
    with open(RECORD, encoding="utf-8") as file:
        recorded = json.load(file)
    for name, value in here.items():
        if value != recorded[name]:
            print(f"skipped: the {name} is {value}, counts are recorded for {recorded[name]}")
            sys.exit(SKIPPED)
    if not compare(count(program), recorded["instructions"]):
        sys.exit("If the change is meant, `./dev counts` records the counts anew.")


main()
