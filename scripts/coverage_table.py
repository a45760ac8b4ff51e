#!/usr/bin/env python3
# scripts/coverage_table.py: the lines and branches that were run, file by file.
"""Usage: coverage_table.py EXPORT LEAST_LINES LEAST_BRANCHES [FILE...]

EXPORT is what `llvm-cov export` writes. Every condition of the sources, each operand of && and ||
for itself, is two branches: it held, and it did not; every label of a switch likewise. One whose
value the compiler knows is none. A template's branch was run when any of its instances ran it.
Exits with 1 below LEAST_LINES or LEAST_BRANCHES, in per cent of all. With FILEs it writes their
lines and branches that were not run instead.
"""
import json
import os
import sys
from itertools import groupby

TESTS = ("tests/", "tools/", "examples/", "benchmarks/", "fuzz/")


def line_counts(segments):
    """How often each line that holds code was run, by the rules of llvm-cov's own listing."""
    counts, around = {}, None
    by_line = {line: list(group) for line, group in groupby(segments, key=lambda each: each[0])}
    for line in range(segments[0][0], segments[-1][0] + 1):
        here = by_line.get(line, [])
        starts = [count for _, _, count, counted, entry, gap in here if counted and entry and not gap]
        skipped = bool(here) and here[0][4] and not here[0][3]
        if not skipped and (starts or (around and around[3])):
            counts[line] = max(starts + ([around[2]] if around else []))
        around = here[-1] if here else around
    return counts


def branch_counts(file):
    """By place: how often the condition there held, and how often it did not."""
    runs = {(line, column): count for line, column, count, *_ in file["segments"]}
    counts = {}
    for line, column, _, _, held, failed, *_ in file["branches"]:
        before = counts.get((line, column), (0, 0))
        counts[line, column] = (before[0] + held, before[1] + failed)
    # What was run and came out neither way is known to the compiler.
    return {place: ways for place, ways in counts.items() if any(ways) or not runs.get(place)}


class Counted:
    def __init__(self, file):
        self.name = os.path.relpath(file["filename"])
        self.lines = line_counts(file["segments"])
        self.branches = branch_counts(file)

    def totals(self):
        """Lines run, lines, branches run, branches."""
        ways = [way for each in self.branches.values() for way in each]
        return (sum(map(bool, self.lines.values())), len(self.lines),
                sum(map(bool, ways)), len(ways))

    def missed(self):
        for line, count in self.lines.items():
            if not count:
                yield line, 0, "not run"
        for (line, column), (held, failed) in self.branches.items():
            if not held and self.lines.get(line):
                yield line, column, "never held"
            if not failed and self.lines.get(line):
                yield line, column, "always held"


def share(run, whole):
    return 100 * run / whole if whole else 100


def row(name, lines, of_lines, branches, of_branches):
    return (f"{name:40} {lines:5} of {of_lines:5} {share(lines, of_lines):6.1f} %"
            f" {branches:6} of {of_branches:5} {share(branches, of_branches):6.1f} %")


def main():
    export, least_lines, least_branches, *wanted = sys.argv[1:]
    with open(export, encoding="utf-8") as text:
        files = map(Counted, json.load(text)["data"][0]["files"])
    files = sorted((file for file in files if not file.name.startswith(TESTS)),
                   key=lambda file: file.name)
    if wanted:
        for file in files:
            if file.name in wanted:
                for line, column, what in sorted(file.missed()):
                    print(f"{file.name}:{line}:{column}: {what}")
        return 0
    print(f"{'':40} {'lines':>14} {'branches':>23}")
    for file in files:
        print(row(file.name, *file.totals()))
    all_of_them = [sum(each) for each in zip(*(file.totals() for file in files))]
    print(row("all", *all_of_them))
    low = (share(*all_of_them[:2]) < float(least_lines) or
           share(*all_of_them[2:]) < float(least_branches))
    if low:
        print(f"coverage: below {least_lines} % of the lines or {least_branches} % of the branches",
              file=sys.stderr)
    return int(low)


sys.exit(main())
