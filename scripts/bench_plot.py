#!/usr/bin/env python3
# scripts/bench_plot.py: the plot of each family of benchmarks, an SVG file.
"""Usage: bench_plot.py FOLDER RESULT.json...

Writes FOLDER/FAMILY.svg: our times as ratios to the peers', or to a limit of their own, each with
its goal, and how times grow with sizes, both on logarithmic axes. The same results give the same
bytes.
"""
import os
import sys

import matplotlib

matplotlib.use("svg")
import matplotlib.pyplot as plot  # noqa: E402: after the choice of the backend

from bench_results import families, OURS  # noqa: E402

STYLE = {
    "svg.hashsalt": "orbcommon",  # the same names in every run
    "svg.fonttype": "none",  # text stays text: small, and searchable
    "font.family": "sans-serif",
    "font.size": 8,
    "axes.spines.top": False,
    "axes.spines.right": False,
}
MET, MISSED, FREE = "#2b7a4b", "#c0392b", "#7f8c8d"
MARKERS = "osD^vP*Xh<>p"


def ratios(family):
    """(label, ratio, goal or None) from the operation that is listed first."""
    for operation in family.operations():
        for _, value, limit in operation.ours.limits():
            yield f"{operation.name} : its limit", value / limit, 1
        for peer in operation.peers:
            yield (f"{operation.name} : {peer.who}", operation.ours.ratio(peer),
                   operation.ours.goal_ratio(peer.who))


def draw_ratios(axes, rows):
    for place, (_, ratio, goal) in enumerate(rows):
        colour = FREE if goal is None else MET if ratio <= goal else MISSED
        axes.plot([ratio], [place], "o", color=colour, markersize=4)
        if goal is not None:
            axes.plot([goal], [place], "|", color="black", markersize=7)
    axes.axvline(1, color="black", linewidth=0.6, linestyle=":")
    axes.set_xscale("log")
    axes.set_yticks(range(len(rows)), [label for label, _, _ in rows])
    axes.set_ylim(len(rows) - 0.5, -0.5)
    axes.grid(axis="x", linewidth=0.3)
    axes.set_xlabel("our time to the peer's or to its limit; a bar is the goal, red misses it")


def draw_growth(axes, all_series):
    for number, series in enumerate(all_series):
        runs = series.runs[OURS]
        axes.plot([run.counters["size"] for run in runs], [run.time for run in runs],
                  marker=MARKERS[number % len(MARKERS)], markersize=3, linewidth=0.8,
                  label=f"{series.name}: {series.order(OURS):.2f}")
    axes.set_xscale("log")
    axes.set_yscale("log")
    axes.grid(linewidth=0.3)
    axes.set_xlabel("size (entries, bytes, items, files, threads)")
    axes.set_ylabel("ns")
    axes.legend(fontsize=6, frameon=False, title="operation: fitted order", title_fontsize=6)


def draw(family, folder):
    rows, all_series = list(ratios(family)), family.all_series()
    heights = ([0.17 * len(rows) + 0.6] if rows else []) + ([3.2] if all_series else [])
    figure, axes = plot.subplots(len(heights), 1, figsize=(7, sum(heights)), squeeze=False,
                                 layout="constrained", gridspec_kw={"height_ratios": heights})
    if rows:
        draw_ratios(axes[0][0], rows)
    if all_series:
        draw_growth(axes[-1][0], all_series)
    figure.savefig(os.path.join(folder, family.name + ".svg"), metadata={"Date": None})
    plot.close(figure)


def main():
    plot.rcParams.update(STYLE)
    os.makedirs(sys.argv[1], exist_ok=True)
    for family in families(sys.argv[2:]):
        draw(family, sys.argv[1])


main()
