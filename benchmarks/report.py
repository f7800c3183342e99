# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""Fills the figures of a measurement into the template of the page on the library's cost."""

import argparse
import json
import math
import pathlib
import re
import statistics

import applications
from harness import OPERATIONS

TITLES = {
    "telvaro": "the library",
    "qtdbus": "QtDBus by hand",
    "generated": "qdbusxml2cpp",
    "sdbus": "sd-bus",
    "gdbus": "GDBus",
    "sdbuscpp": "sdbus-c++",
    "prepared": "messages alone",
    "telvaro-again": "noise",
}
OTHERS = ["generated", "sdbus", "gdbus", "sdbuscpp"]
PLAIN_CALLS = ["set", "screen-read", "screen-write", "overlay", "notify", "screenshot"]


class Results:
    """What was measured, as ratios."""

    def __init__(self, values):
        self.values = values

    def time(self, operation, client, reference="qtdbus"):
        """The median over the rounds of the ratio within each round; None where a client lacks the operation."""
        return self._ratio(self.values["times"][operation], client, reference)

    def noise(self, operation):
        """The noise of the library beside itself."""
        samples = self.values["times"][operation]
        return noise(samples["telvaro-again"], samples["telvaro"])

    def cold(self, client, reference="qtdbus"):
        return self._ratio(self.values["cold"], client, reference)

    def count(self, what, operation, client="telvaro", reference="qtdbus"):
        counts = self.values[what]
        if client not in counts or operation not in counts[client]:
            return None
        return counts[client][operation] / counts[reference][operation]

    def floor(self):
        """The time of one call with libdbus as a ratio to the library's plain operation, a written property."""
        return (statistics.median(self.values["floor"])
                / statistics.median(self.values["times"]["screen-write"]["telvaro"]))

    def slope(self, fewer, more, reference, client="telvaro"):
        """The cost of a further view between two numbers of views, as a ratio to that between another pair."""
        instructions = self.values["instructions"][client]

        def per_view(few, many):
            return (instructions[f"views-{many}"] - instructions[f"views-{few}"]) / (many - few)

        if f"views-{more}" not in instructions:
            return None
        return per_view(fewer, more) / per_view(*reference)

    @staticmethod
    def _ratio(samples, client, reference):
        return median_ratio(samples[client], samples[reference]) if {client, reference} <= samples.keys() else None


def median_ratio(samples, references):
    return statistics.median(own / other for own, other in zip(samples, references))


def noise(again, first):
    """The deviation from 1 of the ratio of two equals, or of its median's 95 % interval where that is wider."""
    ratios = [own / other for own, other in zip(again, first)]
    lower, _, upper = statistics.quantiles(ratios, n=4)
    return max(abs(statistics.median(ratios) - 1), 1.57 * (upper - lower) / math.sqrt(len(ratios)))


def ratio(value):
    return "" if value is None else f"{value:.2f}"


def fine_ratio(value):
    return "" if value is None else f"{value:.3f}"


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "|".join(["---"] + ["---:"] * (len(head) - 1)) + "|"]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


APPLICATION_TITLES = {
    "live": "live layer",
    "qtdbus": "QtDBus by hand",
    "sdbus": "sd-bus by hand",
    "sdbus-notified": "sd-bus, values of the signals",
}
APPLICATION_ROWS = [
    ("times", "start", "start, until the list is complete", None),
    ("times", "title", "a title, until shown", 0.80),
    ("times", "switch", "a switch, until list and current view are shown", 0.35),
    ("times", "switch held", "a switch: time that the event loop is held", 0.25),
    ("times", "step call", "a step: the call", 0.10),
    ("times", "step", "a step, until list and current view are shown", None),
    ("instructions", "title", "instructions of a title", None),
    ("instructions", "switch", "instructions of a switch", 0.40),
    ("instructions", "step", "instructions of a step", None),
]


def application_ratios(results, what, figure, views):
    """The figure to the connectors by application, and its noise."""
    if what == "times":
        samples = results.values["applications"]["times"][views][figure]
        return ({name: median_ratio(samples[name], samples["connectors"]) for name in APPLICATION_TITLES},
                noise(samples[applications.AGAIN], samples["connectors"]))
    counts = results.values["applications"]["instructions"][views]
    return {name: counts[name][figure] / counts["connectors"][figure] for name in APPLICATION_TITLES}, None


def application_table(results):
    rows = []
    for what, figure, title, limit in APPLICATION_ROWS:
        for views in results.values["applications"][what]:
            ratios, deviation = application_ratios(results, what, figure, views)
            goal = "" if limit is None else f"{limit:.2f} " + judge(ratios["live"], limit, deviation or 0)[1]
            rows.append([title, f"{int(views):,}", f"**{ratio(ratios['live'])}**", goal,
                         *(ratio(ratios[name]) for name in APPLICATION_TITLES if name != "live"),
                         "" if deviation is None else "± " + ratio(deviation)])
    live, *others = APPLICATION_TITLES.values()
    return table(["To the blocking connectors", "views", live, "at most", *others, "noise"], rows)


def application_messages(results):
    messages = results.values["applications"]["messages"]
    titles = {"connectors": "blocking connectors", **APPLICATION_TITLES}
    changes = ["start", *applications.CHANGES]
    return table(["Messages besides the signals", *changes],
                 [[titles[name], *(str(messages[name][change]) for change in changes)] for name in titles])


def live_to_sdbus(results):
    """The range of the live layer's time for a switch to that of sd-bus by hand."""
    ratios = [median_ratio(figures["switch"]["live"], figures["switch"]["sdbus"])
              for figures in results.values["applications"]["times"].values()]
    return f"{min(ratios):.2f} to {max(ratios):.2f}"


def time_table(results):
    clients = ["telvaro", *OTHERS]
    return table(["Operation", *(TITLES[client] for client in clients), "noise"],
                 [[operation.title, *(ratio(results.time(operation.name, client)) for client in clients),
                   "± " + ratio(results.noise(operation.name))] for operation in OPERATIONS])


def count_table(results, what):
    clients = [client for client in ["telvaro", *OTHERS, "prepared"] if client in results.values[what]]
    return table(["Operation", *(TITLES[client] for client in clients)],
                 [[operation.title,
                   *(fine_ratio(results.count(what, operation.name, client)) for client in clients)]
                  for operation in OPERATIONS if operation.name in results.values[what]["qtdbus"]])


def judge(worst, limit, tolerance=0.0):
    """A goal's figure, and whether it is reached, possibly only within the noise."""
    if worst is None:
        return "not measured", ""
    if worst <= limit:
        return fine_ratio(worst), "reached"
    if worst <= limit + tolerance:
        return fine_ratio(worst), "within the noise"
    return fine_ratio(worst), "**not reached**"


def goal_table(results):
    def worst_of(measure, operations):
        return max((value, name) for name in operations if (value := measure(name)) is not None)

    names = [operation.name for operation in OPERATIONS]
    calls = [name for name in names if name not in ("decode", "construct")]
    counted = [name for name in calls if name in results.values["instructions"]["qtdbus"]]
    title = {operation.name: operation.title for operation in OPERATIONS}

    def row(goal, value, limit, tolerance=0.0, where=None):
        figure, verdict = judge(value, limit, tolerance)
        return [goal, f"{limit:.2f}", figure + (f" ({title[where]})" if where else ""), verdict]

    slowest, slowest_name = worst_of(lambda name: results.time(name, "telvaro"), calls)
    dearest, dearest_name = worst_of(lambda name: results.count("instructions", name), counted)
    slopes = [slope for pair in ((100, 1000), (1000, 10000))
              if (slope := results.slope(*pair, (10, 100))) is not None]
    rows = [
        row("time of every operation, to QtDBus by hand", slowest, 1.0, results.noise(slowest_name), slowest_name),
        row("instructions of every operation, to QtDBus by hand", dearest, 0.97, where=dearest_name),
        row("time of decoding a view, to QtDBus by hand", results.time("decode", "telvaro"), 0.97,
            results.noise("decode")),
        row("instructions of decoding a view, to QtDBus by hand", results.count("instructions", "decode"), 0.97),
        row("time of a warm construction, to QtDBus by hand", results.time("construct", "telvaro"), 1.0,
            results.noise("construct")),
    ]
    for other, limit in (("sdbus", 2.0), ("gdbus", 0.85)):
        worst, name = worst_of(lambda name, other=other: results.time(name, "telvaro", other), PLAIN_CALLS)
        rows.append(row(f"time of a plain call, to {TITLES[other]}", worst, limit, results.noise(name), name))
    free = results.values["allocations of names"]
    rows.append(["allocations of all names and the device test, after the first call", "0", f"{free:g}",
                 "reached" if free == 0 else "**not reached**"])
    if slopes:
        deviation = max(abs(slope - 1) for slope in slopes)
        rows.append(["instructions of a further view, from 100 to the most views, beside those below: deviation",
                     "0.03", f"{deviation:.3f}", "reached" if deviation <= 0.03 else "**not reached**"])
    return table(["Goal", "at most", "worst", ""], rows)


def loading_text(results):
    loading = results.values["loading"]
    part = 100 * loading["instructions"] / loading["instructions of a Qt program"]
    return (f"The stripped library has {loading['stripped'] / 1024:.0f} KiB, {loading['relocations']} relocations and "
            f"{loading['initialisers']} static initialisers. Loading it adds {part:.1f} % to the instructions of "
            "starting a program on Qt.")


def slope_table(results):
    rows = [[f"from {few:,} to {many:,}",
             *(fine_ratio(results.slope(few, many, (10, 100), client)) for client in ("telvaro", "qtdbus"))]
            for few, many in ((100, 1000), (1000, 10000))]
    return table(["", TITLES["telvaro"], TITLES["qtdbus"]], rows)


def figures(results):
    """The text for each placeholder of the template."""
    values = results.values
    machine = values["machine"]
    memory = values["memory"]
    return {
        "rounds": values["rounds"],
        "processors": machine["processors"],
        "processor": machine["processor"],
        "load_before": f"{machine['load']:.1f}",
        "load_after": f"{machine['load at the end']:.1f}",
        "operation_count": len(OPERATIONS) - 1,
        "applications": application_table(results),
        "application_messages": application_messages(results),
        "live_to_sdbus": live_to_sdbus(results),
        "application_rounds": len(results.values["applications"]["times"]["10"]["start"]["connectors"]),
        "goals": goal_table(results),
        "times": time_table(results),
        "cold": ratio(results.cold("telvaro")),
        "cold_noise": ratio(abs(results.cold("telvaro-again", "telvaro") - 1)),
        "instructions": count_table(results, "instructions"),
        "slopes": slope_table(results),
        "allocations": count_table(results, "allocations"),
        "floor": ratio(results.floor()),
        "memory": ", ".join(f"{TITLES[name]} {memory[name] / memory['qtdbus']:.2f}"
                            for name in memory if name != "qtdbus"),
        "loading": loading_text(results),
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--results", required=True, type=pathlib.Path, help="the file of results")
    parser.add_argument("--output", required=True, type=pathlib.Path, help="the page to write")
    arguments = parser.parse_args()
    texts = figures(Results(json.loads(arguments.results.read_text(encoding="utf-8"))))
    template = pathlib.Path(__file__).with_name("performance.md.in").read_text(encoding="utf-8")
    arguments.output.write_text(re.sub(r"@(\w+)@", lambda field: str(texts[field[1]]), template), encoding="utf-8")


if __name__ == "__main__":
    main()
