#!/usr/bin/env python3
# scripts/bench_table.py: the medians of Google Benchmark's JSON files as a Markdown page.
"""Usage: bench_table.py [--notes FILE] [--plots FOLDER] RESULT.json...

--notes appends a file, --plots names the folder of FAMILY.svg as seen from the page. How rows and
their goals are named stands in bench_results.py.
"""
import argparse

from bench_results import families, ORDER_TOLERANCE, OURS, PLAIN, PLAIN_TOLERANCE, UNITS


def duration(nanoseconds):
    for unit in ("s", "ms", "us"):
        if nanoseconds >= UNITS[unit]:
            return f"{nanoseconds / UNITS[unit]:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def mebibytes(count):
    return f"{count / 2**20:.3g} MiB"


def verdict(value, limit):
    return "met" if value <= limit else "MISSED"


def absolute_goals(run):
    """(ours, goal, verdict) for each goal of the run that is not a ratio."""
    for goal, value, limit in run.limits():
        text = mebibytes if goal == "goal_bytes" else duration
        ours = duration(run.time)
        if goal != "goal_ns":
            ours += f", {'worst' if 'worst' in goal else 'peak'} {text(value)}"
        yield ours, text(limit), verdict(value, limit)


def ratio_row(ours, peer):
    ratio = ours.ratio(peer)
    goal = ours.goal_ratio(peer.who)
    stretch = ours.goal_ratio(peer.who, "stretch")
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


def operation_rows(operation):
    """The lines of one operation: its absolute goals, then every peer, then peers left out."""
    ours, peers, name = operation.ours, operation.peers, operation.name
    absolute = list(absolute_goals(ours))
    for text, goal, result in absolute:
        yield (name, text, "", "", goal, result)
    for peer in peers:
        yield ratio_row(ours, peer)
    left_out = sorted(each.removeprefix("goal_ratio_") for each in ours.counters
                      if each.startswith("goal_ratio_"))
    if not peers and "goal_ratio" in ours.counters:
        left_out.append("")
    for who in left_out:
        if who not in {peer.who for peer in peers}:
            yield (name, duration(ours.time), who, "", f"{ours.goal_ratio(who):g} x",
                   "not measured")
    if not peers and not absolute and not left_out:
        yield (name, duration(ours.time), "", "", "", "")


def growth_rows(family):
    for series in family.all_series():
        ours = series.runs[OURS]
        peers = ", ".join(f"{who} {series.order(who):.2f}" for who in sorted(series.runs)
                          if who != OURS and len(series.runs[who]) > 1)
        yield (series.name,
               ", ".join(f"{run.size_name()} {duration(run.time)}" for run in ours),
               f"{series.order(OURS):.2f}", peers, f"{series.goal():g}",
               "met" if series.is_met() else "MISSED")


def print_rows(heads, rows):
    print("| " + " | ".join(heads) + " |\n" + "|---" * len(heads) + "|")
    for row in rows:
        print("| " + " | ".join(cell.replace("|", "\\|") for cell in row) + " |")


def print_summary(tables):
    """`tables` are pairs of a family's name and its rows, whose last cells are verdicts."""
    verdicts = [(family, row) for family, rows in tables for row in rows
                if row[-1].startswith(("met", "MISSED"))]
    missed = [(family, row) for family, row in verdicts if row[-1].startswith("MISSED")]
    unmeasured = [(family, row) for family, rows in tables for row in rows
                  if row[-1] == "not measured"]
    print(f"\nOf {len(verdicts)} goals {len(verdicts) - len(missed)} are met.")
    for text, rows in (("Missed", missed), ("Without its peer here", unmeasured)):
        for family, row in rows:
            print(f"- {text}: {family}, {row[0]} {row[2]}".rstrip())


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--notes")
    parser.add_argument("--plots")
    parser.add_argument("results", nargs="+")
    arguments = parser.parse_args()
    measured = families(arguments.results)
    count = " or ".join(str(each) for each in sorted(
        {round(family.passes * run.counters["repetitions"]) for family in measured
         for run in family.runs}))
    context = measured[0].context
    print("# Benchmarks\n")
    print(f"Medians of {count} interleaved repetitions, wall clock, on {context['num_cpus']} "
          f"processors of {context['mhz_per_cpu'] / 1000:.1f} GHz, a second thread parked beside "
          "each measurement; `./dev bench` measures anew and writes this page. Repetitions come in "
          "passes over a whole family; a ratio is our time to the peer's in one pass, the median of "
          "all passes.")
    tables = [(family.name, [row for each in family.operations() for row in operation_rows(each)])
              for family in measured]
    growth = [(family.name, list(growth_rows(family))) for family in measured]
    loads = [load for family in measured for load in family.loads]
    if loads and max(loads) > context["num_cpus"] + 1:
        print(f"\nThe machine was busy with other work (load average up to {max(loads):.1f}): small "
              "differences mean nothing here.")
    print_summary(tables + growth)
    for family, (name, rows), (_, grown) in zip(measured, tables, growth):
        print(f"\n## {name}\n")
        if arguments.plots:
            print(f"![{name}: ratios to the peers, and growth]({arguments.plots}/{name}.svg)\n")
        print_rows(("operation", "ours", "peer", "ratio", "goal", "met or missed"), rows)
        if grown:
            print("\nHow its cost grows: the order is the power of the size that fits the upper "
                  "half of the sizes best. It may be above its goal by "
                  f"{ORDER_TOLERANCE:g}, for logarithms, or by {PLAIN_TOLERANCE:g} above the order "
                  f"of the peer `{PLAIN}`, which walks over the same memory or entries without the "
                  "library and shows what caches do.\n")
            print_rows(("operation", "ours by size", "order", "peers' orders", "goal",
                        "met or missed"), grown)
        for failed in sorted(family.failed):
            print(f"\nNot measured: {failed}")
    if arguments.notes:
        with open(arguments.notes, encoding="utf-8") as file:
            print("\n" + file.read(), end="")


main()
