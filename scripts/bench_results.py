# scripts/bench_results.py: Google Benchmark's JSON files as operations with their peers and goals.
"""A program is run several times over; FAMILY.PASS.json is what one pass measured. Ratios and orders
are taken within each pass, whose runs see the machine in one mood, and their median over the passes
counts, as it does for times.

A row named OPERATION/ours stands beside the rows OPERATION/PEER of the same file. These counters
of our row are goals:

  goal_ratio, goal_ratio_PEER   largest ratio of our time to the peer's; the plain one holds for
                                every peer that has none of its own
  stretch_ratio[_PEER]          a ratio to hope for, beside the goal
  goal_ns                       limit of our time in nanoseconds
  goal_worst_ns                 limit of the counter "worst_ns"
  goal_bytes                    limit of the counter "peak_bytes"

Rows with the counter "size" whose names differ only in the part that begins with a digit are one
series; "goal_order" is the largest power of the size with which its time may grow. Where the peer
"plain" does the same to the same memory, its order is enough too.

A benchmark that runs in several threads gives its counters with Counter::kAvgThreads.
"""
import json
import math
import os
import re
import statistics

OURS = "ours"
PLAIN = "plain"  # the walk over the same memory or entries, without the library
ORDER_TOLERANCE = 0.15  # for a logarithm
PLAIN_TOLERANCE = 0.1  # what is beyond the caches costs more for each byte, and not of our doing
UNITS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
MEASURED_HOW = re.compile(
    r"/(real_time|manual_time|process_time|(iterations|repeats|min_time|min_warmup_time):[^/]*)$")
THREADS = re.compile(r"/threads:(\d+)$")


class Run:
    """One benchmark: its operation, who ran it, its times by pass and its counters."""

    def __init__(self, run_name, results):
        """`results` are the medians of the passes."""
        name, suffix = run_name, ""
        threads = THREADS.search(name)
        if threads:
            name = name[:threads.start()]
            suffix = f", {threads[1]} threads" if threads[1] != "1" else ", 1 thread"
        while MEASURED_HOW.search(name):
            name = MEASURED_HOW.sub("", name)
        self.name = name + suffix
        operation, _, self.who = name.rpartition("/")
        self.operation = operation + suffix
        self.times = [result["real_time"] * UNITS[result["time_unit"]] for result in results]
        self.time = statistics.median(self.times)
        self.counters = {key: statistics.median(result[key] for result in results)
                         for key, value in results[0].items() if isinstance(value, (int, float))}

    def ratio(self, peer):
        """Our time to that of `peer`, a run."""
        return statistics.median(ours / theirs for ours, theirs in zip(self.times, peer.times))

    def goal_ratio(self, peer, kind="goal"):
        """The largest ratio to `peer` that is asked for, None without one."""
        return self.counters.get(f"{kind}_ratio_{peer}", self.counters.get(f"{kind}_ratio"))

    def limits(self):
        """(goal, our value, its limit) for each goal that is not a ratio."""
        for goal, value in (("goal_ns", self.time),
                            ("goal_worst_ns", self.counters.get("worst_ns")),
                            ("goal_bytes", self.counters.get("peak_bytes"))):
            if goal in self.counters:
                yield goal, value, self.counters[goal]

    def has_goal(self):
        return any(name.startswith(("goal_ratio", "stretch_ratio", "goal_ns", "goal_worst_ns",
                                    "goal_bytes")) for name in self.counters)

    def series(self):
        """The operation without its size; None outside a series."""
        if "size" not in self.counters:
            return None
        return "/".join(part for part in self.operation.split("/") if not part[:1].isdigit())

    def size_name(self):
        return next(part for part in self.operation.split("/") if part[:1].isdigit())


class Operation:
    """Our run of an operation, or a run without one of ours, and the peers' runs."""

    def __init__(self, ours, peers):
        self.ours = ours
        self.name = ours.operation if ours.who == OURS else ours.name
        self.peers = sorted(peers, key=lambda each: each.who.lower())


class Series:
    """The runs of one operation over sizes, by who ran them."""

    def __init__(self, name, runs):
        self.name = name
        self.runs = {}
        for run in sorted(runs, key=lambda each: each.counters["size"]):
            self.runs.setdefault(run.who, []).append(run)

    def order(self, who):
        """The exponent of the power of the size that fits the upper half of the sizes best."""
        passes = len(self.runs[who][0].times)
        return statistics.median(self.order_of_pass(who, number) for number in range(passes))

    def order_of_pass(self, who, number):
        points = [(math.log(run.counters["size"]), math.log(run.times[number]))
                  for run in self.runs[who]]
        middle = (points[0][0] + points[-1][0]) / 2
        upper = [point for point in points if point[0] >= middle - 1e-9]
        if len(upper) < 2:
            upper = points
        x_mean = sum(x for x, _ in upper) / len(upper)
        y_mean = sum(y for _, y in upper) / len(upper)
        return (sum((x - x_mean) * (y - y_mean) for x, y in upper) /
                sum((x - x_mean) ** 2 for x, _ in upper))

    def goal(self):
        return self.runs[OURS][0].counters["goal_order"]

    def is_met(self):
        limit = self.goal() + ORDER_TOLERANCE
        if len(self.runs.get(PLAIN, [])) > 1:
            limit = max(limit, self.order(PLAIN) + PLAIN_TOLERANCE)
        return self.order(OURS) <= limit


class Family:
    """What one program measured; what failed in one of its passes is not measured."""

    def __init__(self, name, paths):
        self.name = name
        self.passes = len(paths)
        self.loads = []
        self.failed = set()
        medians = {}
        for path in paths:
            with open(path, encoding="utf-8") as file:
                result = json.load(file)
            self.context = result["context"]
            self.loads += self.context["load_avg"][:1]
            for run in result["benchmarks"]:
                if run.get("error_occurred"):
                    self.failed.add(run["run_name"])
                elif run.get("aggregate_name") == "median":
                    medians.setdefault(run["run_name"], []).append(run)
        self.runs = [Run(name, results) for name, results in medians.items()
                     if name not in self.failed]

    def operations(self):
        """By name. A run that is only there for its series is left out."""
        ours = {run.operation: run for run in self.runs if run.who == OURS}
        for run in sorted(self.runs, key=lambda each: each.name):
            if run.operation not in ours:
                if run.series() is None:
                    yield Operation(run, [])
            elif run is ours[run.operation] and (run.series() is None or run.has_goal()):
                yield Operation(run, [each for each in self.runs
                                      if each.operation == run.operation and each is not run])

    def all_series(self):
        """By name; those of us alone that have at least two sizes."""
        by_name = {}
        for run in self.runs:
            if run.series() is not None:
                by_name.setdefault(run.series(), []).append(run)
        made = [Series(name, runs) for name, runs in sorted(by_name.items())]
        return [each for each in made if len(each.runs.get(OURS, [])) > 1]


def families(paths):
    """The families of FAMILY.PASS.json files, in their order; those that measured nothing left out."""
    passes = {}
    for path in paths:
        passes.setdefault(os.path.basename(path).split(".")[0], []).append(path)
    return [each for each in (Family(*item) for item in passes.items()) if each.runs]
