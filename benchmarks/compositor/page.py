# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""Fills the figures of a comparison into the template of the page on the compositor's cost."""

import argparse
import json
import pathlib
import re
import statistics

from report import median_ratio, table

OWN = "telvaro"
TITLES = {"telvaro": "ours", "cage": "cage", "weston": "weston"}
# By figure: title, whether more is better, and the goal for the ratio to the better peer.
FIGURES = {
    "full frames": ("full damage: frames per second", True, 0.99),
    "full CPU": ("full damage: CPU per frame, ms", False, 1.2),
    "small frames": ("small damage: frames per second", True, 0.99),
    "small CPU": ("small damage: CPU per frame, ms", False, 1.3),
    "click": ("click to changed pixel, ms", False, 1.0),
    "screenshot": ("screenshot, ms", False, None),
    "start": ("start until a client's first frame, ms", False, None),
}
MOST_KEPT = 8
MEMORY_TITLES = {
    "idle": "idle",
    "1": "1 client",
    "10": "10 clients",
    "50": "50 clients",
    "gone": "after they have gone",
}
MEBIBYTE = 1024 * 1024


def number(value):
    return f"{value:.2f}" if value < 10 else f"{value:.1f}" if value < 100 else f"{value:.0f}"


def goal_text(is_reached, goal):
    return f"{goal}: {'reached' if is_reached else '**not reached**'}"


def size_table(rounds):
    names = list(rounds)

    def row(figure):
        title, more_is_better, goal = FIGURES[figure]
        samples = {name: [one[figure] for one in rounds[name]] for name in names}
        medians = {name: statistics.median(values) for name, values in samples.items() if None not in values}
        cells = [number(medians[name]) if name in medians else "" for name in names]
        peers = [name for name in medians if name != OWN]
        if not peers:
            return [title, *cells, "", ""]
        better = (max if more_is_better else min)(peers, key=medians.get)
        ratio = median_ratio(samples[OWN], samples[better])
        if goal is None:
            return [title, *cells, f"{ratio:.2f}", ""]
        is_reached = ratio >= goal if more_is_better else ratio <= goal
        return [title, *cells, f"{ratio:.2f}",
                goal_text(is_reached, f"{'at least' if more_is_better else 'at most'} {goal}")]

    return table(["", *(TITLES[name] for name in names), "ratio to the better", "goal"], list(map(row, FIGURES)))


def memory_table(memory):
    rows = [[title, *(" / ".join(f"{figures[when][kind] / MEBIBYTE:.1f}" for kind in ("anonymous", "resident"))
                      for figures in memory.values())] for when, title in MEMORY_TITLES.items()]
    return table(["MiB, anonymous / resident", *(TITLES[name] for name in memory)], rows)


def figures(results):
    """The text for each placeholder of the template."""
    machine = results["machine"]
    kept = (results["memory"][OWN]["gone"]["anonymous"] - results["memory"][OWN]["idle"]["anonymous"]) / MEBIBYTE
    return {
        "rounds": results["rounds"],
        "processors": machine["processors"],
        "processor": machine["processor"],
        "load_before": f"{machine['load']:.1f}",
        "load_after": f"{machine['load at the end']:.1f}",
        "sizes": "\n\n".join(f"### {size}\n\n{size_table(rounds)}" for size, rounds in results["sizes"].items()),
        "memory": memory_table(results["memory"]),
        "kept": f"{kept:.1f}",
        "kept_goal": goal_text(kept <= MOST_KEPT, f"at most {MOST_KEPT} MiB"),
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--results", required=True, type=pathlib.Path, help="the file of results")
    parser.add_argument("--output", required=True, type=pathlib.Path, help="the page to write")
    arguments = parser.parse_args()
    texts = figures(json.loads(arguments.results.read_text(encoding="utf-8")))
    template = pathlib.Path(__file__).with_name("compositor-performance.md.in").read_text(encoding="utf-8")
    arguments.output.write_text(re.sub(r"@(\w+)@", lambda field: str(texts[field[1]]), template), encoding="utf-8")


if __name__ == "__main__":
    main()
