#!/usr/bin/env python3
# scripts/bench_table.py: the medians of Google Benchmark's JSON files as a Markdown page.
"""Usage: bench_table.py RESULT.json...

A row named OPERATION/ours stands beside the rows OPERATION/PEER of the same file. These counters
of our row are goals, and the table says whether the medians met them:

  goal_ratio, goal_ratio_PEER   largest ratio of our time to the peer's; the plain one holds for
                                every peer that has none of its own
  stretch_ratio[_PEER]          a ratio to hope for, beside the goal
  goal_ns                       limit of our time in nanoseconds
  goal_worst_ns                 limit of the counter "worst_ns"
  goal_bytes                    limit of the counter "peak_bytes"

A benchmark that runs in several threads gives its counters with Counter::kAvgThreads.
"""
import json
import os
import re
import sys

OURS = ("ours", "orbcommon")
UNITS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
MEASURED_HOW = re.compile(
    r"/(real_time|manual_time|process_time|(iterations|repeats|min_time|min_warmup_time):[^/]*)$")
THREADS = re.compile(r"/threads:(\d+)$")


def duration(nanoseconds):
    for unit in ("s", "ms", "us"):
        if nanoseconds >= UNITS[unit]:
            return f"{nanoseconds / UNITS[unit]:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def mebibytes(count):
    return f"{count / 2**20:.3g} MiB"


class Run:
    """One benchmark's median: its operation, who ran it, its time and its counters."""

    def __init__(self, result):
        name, suffix = result["run_name"], ""
        threads = THREADS.search(name)
        if threads:
            name = name[:threads.start()]
            suffix = f", {threads[1]} threads" if threads[1] != "1" else ", 1 thread"
        while MEASURED_HOW.search(name):
            name = MEASURED_HOW.sub("", name)
        self.name = name + suffix
        operation, _, self.who = name.rpartition("/")
        self.operation = operation + suffix
        self.time = result["real_time"] * UNITS[result["time_unit"]]
        self.counters = result


def medians(path):
    with open(path, encoding="utf-8") as file:
        result = json.load(file)
    return [Run(run) for run in result["benchmarks"] if run.get("aggregate_name") == "median"]


def verdict(value, limit):
    return "met" if value <= limit else "MISSED"


def absolute_goals(run):
    """(ours, goal, verdict) for each goal of the run that is not a ratio."""
    counters = run.counters
    for goal, value, text in (("goal_ns", run.time, duration),
                              ("goal_worst_ns", counters.get("worst_ns"), duration),
                              ("goal_bytes", counters.get("peak_bytes"), mebibytes)):
        if goal in counters:
            ours = duration(run.time)
            if value is not run.time:
                ours += f", {'worst' if 'worst' in goal else 'peak'} {text(value)}"
            yield ours, text(counters[goal]), verdict(value, counters[goal])


def ratio_goal(counters, kind, peer):
    return counters.get(f"{kind}_ratio_{peer}", counters.get(f"{kind}_ratio"))


def ratio_row(ours, peer):
    ratio = ours.time / peer.time
    goal = ratio_goal(ours.counters, "goal", peer.who)
    stretch = ratio_goal(ours.counters, "stretch", peer.who)
    words, result = [], []
    if goal is not None:
        words.append(f"{goal:g} x")
        result.append(verdict(ratio, goal))
    if stretch is not None:
        words.append(f"stretch {stretch:g} x")
        result.append(f"stretch {verdict(ratio, stretch).lower()}")
    return (ours.operation, duration(ours.time), f"{peer.who} {duration(peer.time)}",
            f"{ratio:.2f} x" if ratio >= 0.1 else f"{ratio:.3f} x", ", ".join(words),
            ", ".join(result))


def operation_rows(ours, peers):
    """The lines of one operation: its absolute goals, then every peer, then peers left out."""
    absolute = list(absolute_goals(ours))
    for text, goal, result in absolute:
        yield (ours.operation, text, "", "", goal, result)
    for peer in peers:
        yield ratio_row(ours, peer)
    left_out = sorted(each.removeprefix("goal_ratio_") for each in ours.counters
                      if each.startswith("goal_ratio_"))
    if not peers and "goal_ratio" in ours.counters:
        left_out.append("")
    for who in left_out:
        if who not in {peer.who for peer in peers}:
            goal = f"{ratio_goal(ours.counters, 'goal', who):g} x"
            yield (ours.operation, duration(ours.time), who, "", goal, "not measured")
    if not peers and not absolute and not left_out:
        yield (ours.operation, duration(ours.time), "", "", "", "")


def alone_rows(run):
    """The lines of a benchmark that is one of no operation of ours."""
    absolute = list(absolute_goals(run))
    for text, goal, result in absolute:
        yield (run.name, text, "", "", goal, result)
    if not absolute:
        yield (run.name, duration(run.time), "", "", "", "")


def rows(runs):
    ours = {run.operation: run for run in runs if run.who in OURS}
    for run in sorted(runs, key=lambda each: each.name):
        if run.operation not in ours:
            yield from alone_rows(run)
        elif run is ours[run.operation]:
            peers = [each for each in runs if each.operation == run.operation and each is not run]
            yield from operation_rows(run, sorted(peers, key=lambda each: each.who.lower()))


def main():
    families = {path: medians(path) for path in sys.argv[1:]}
    repetitions = {run.counters["repetitions"] for runs in families.values() for run in runs}
    count = "-".join(str(each) for each in sorted(repetitions))
    print("# Benchmarks\n")
    print(f"Medians of {count} interleaved repetitions, wall clock; `./dev bench` measures anew and "
          "writes this page. A ratio is our time to the peer's.")
    for path, runs in families.items():
        if not runs:
            continue
        print(f"\n## {os.path.basename(path).removesuffix('.json')}\n")
        print("| operation | ours | peer | ratio | goal | |\n|---|---|---|---|---|---|")
        for row in rows(runs):
            print("| " + " | ".join(cell.replace("|", "\\|") for cell in row) + " |")


main()
