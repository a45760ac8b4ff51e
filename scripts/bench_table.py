#!/usr/bin/env python3
# scripts/bench_table.py: the medians of Google Benchmark's JSON files as a Markdown page.
"""Usage: bench_table.py RESULT.json...

A benchmark's user counter "goal_ns" is its limit in nanoseconds: the table then says whether the
median met it. A counter "goal_bytes" is a limit for the counter "peak_bytes".
"""
import json
import os
import sys

OURS = ("ours", "orbcommon")
UNITS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def duration(nanoseconds):
    for unit in ("s", "ms", "us"):
        if nanoseconds >= UNITS[unit]:
            return f"{nanoseconds / UNITS[unit]:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def medians(path):
    with open(path, encoding="utf-8") as file:
        result = json.load(file)
    for run in result["benchmarks"]:
        if run.get("aggregate_name") == "median":
            yield run


def nanoseconds(run):
    return run["real_time"] * UNITS[run["time_unit"]]


def peer_ratio(run, runs):
    """Our time as a ratio to the peer's of the same operation; empty where there is none."""
    operation, _, who = run["run_name"].rpartition("/")
    if who not in OURS:
        return ""
    for other in runs:
        if other is not run and other["run_name"].rpartition("/")[0] == operation:
            return f"{nanoseconds(run) / nanoseconds(other):.2f} x"
    return ""


def row(run, runs):
    time = nanoseconds(run)
    goal, verdict = "", ""
    if "goal_ns" in run:
        goal = duration(run["goal_ns"])
        verdict = "met" if time <= run["goal_ns"] else "MISSED"
    if "goal_bytes" in run:
        goal = f"{run['goal_bytes'] / 2**20:.3g} MiB"
        verdict = "met" if run["peak_bytes"] <= run["goal_bytes"] else "MISSED"
    name = run["run_name"].replace("|", "\\|")
    measured = duration(time)
    if "peak_bytes" in run:
        measured += f", {run['peak_bytes'] / 2**20:.2f} MiB"
    return f"| {name} | {measured} | {peer_ratio(run, runs)} | {goal} | {verdict} |"


def main():
    print("# Benchmarks\n")
    print("Medians of nine interleaved repetitions, wall clock; `./dev bench` measures anew and "
          "writes this page.")
    for path in sys.argv[1:]:
        runs = sorted(medians(path), key=lambda run: run["run_name"])
        if not runs:
            continue
        print(f"\n## {os.path.basename(path).removesuffix('.json')}\n")
        print("| operation | median | to the peer | goal | |\n|---|---|---|---|---|")
        for run in runs:
            print(row(run, runs))


main()
