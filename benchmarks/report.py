# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""Writes the page on the library's cost, and its picture, from a file of results."""

import argparse
import json
import math
import os
import statistics

from harness import OPERATIONS

TITLES = {
    "telvaro": "the library",
    "qtdbus": "QtDBus by hand",
    "generated": "qdbusxml2cpp",
    "sdbus": "sd-bus",
    "gdbus": "GDBus",
    "libdbus": "libdbus",
    "sdbuscpp": "sdbus-c++",
    "prepared": "messages alone",
    "telvaro-again": "noise",
}
OTHERS = ["generated", "sdbus", "gdbus", "libdbus", "sdbuscpp"]
PLAIN_CALLS = ["set", "screen-read", "screen-write", "overlay", "notify", "screenshot"]


class Results:
    """What was measured, as ratios."""

    def __init__(self, values):
        self.values = values

    def time(self, operation, client, reference="qtdbus"):
        """The median over the rounds of the ratio within each round; None where a client has no such operation."""
        return self._ratio(self.values["times"][operation], client, reference)

    def noise(self, operation):
        """How far from 1 the ratio of two equals may be: that of the library to itself, or, where chance has made that
        small, how uncertain the median of these ratios is by their spread."""
        samples = self.values["times"][operation]
        ratios = [again / first for again, first in zip(samples["telvaro-again"], samples["telvaro"])]
        lower, _, upper = statistics.quantiles(ratios, n=4)
        return max(abs(statistics.median(ratios) - 1), 1.57 * (upper - lower) / math.sqrt(len(ratios)))

    def cold(self, client, reference="qtdbus"):
        return self._ratio(self.values["cold"], client, reference)

    def count(self, what, operation, client="telvaro", reference="qtdbus"):
        counts = self.values[what]
        if client not in counts or operation not in counts[client]:
            return None
        return counts[client][operation] / counts[reference][operation]

    def floor(self, name):
        """The floor's time as a ratio to the library's plain call, a written property."""
        return (statistics.median(self.values["floors"][name])
                / statistics.median(self.values["times"]["screen-write"]["telvaro"]))

    def slope(self, fewer, more, reference, client="telvaro"):
        """What a further view costs between two numbers of views, as a ratio to that in another pair."""
        instructions = self.values["instructions"][client]

        def per_view(few, many):
            return (instructions[f"views-{many}"] - instructions[f"views-{few}"]) / (many - few)

        if f"views-{more}" not in instructions:
            return None
        return per_view(fewer, more) / per_view(*reference)

    @staticmethod
    def _ratio(samples, client, reference):
        if client not in samples or reference not in samples:
            return None
        return statistics.median(own / other for own, other in zip(samples[client], samples[reference]))


def ratio(value):
    return "" if value is None else f"{value:.2f}"


def fine_ratio(value):
    return "" if value is None else f"{value:.3f}"


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "|".join(["---"] + ["---:"] * (len(head) - 1)) + "|"]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


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
    """A goal's figure, and whether it is reached: plainly, or only as far as the noise allows to tell."""
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


PAGE = """# What the library costs

An application can do without this library: it can write the D-Bus calls itself, or use another binding. This page says
what either would cost beside the library. All figures are ratios; below 1 is cheaper than QtDBus written by hand.

![Time of every operation beside QtDBus written by hand](images/performance.svg)

`scripts/bench` measures all of it anew on your machine and writes this page; `scripts/bench --quick` takes less time
and leaves out the counts for other bindings. This run: {rounds} rounds on {processors} processors ({processor}),
with a load of {load_before:.1f} before and {load_after:.1f} after{load_note}.

## What is compared

Seven small applications do the same {operation_count} things: one on the library; one that talks to QtDBus itself, with
`QDBusInterface` and `QDBusMessage`, in the way of Qt's own examples; one on the proxies that `qdbusxml2cpp` generates;
and one each on sd-bus, GDBus, libdbus and sdbus-c++. They talk to the same fast service, one thread on libdbus, over a
private `dbus-daemon`. Before anything is timed, a monitor of the bus sees to it that every application sends exactly
the same messages for each operation, the question whether the service is there included, and a checksum over every
field that all of them read the same; for the library and QtDBus by hand that holds for the start too.

The applications take turns within each round, so that whatever else the machine does falls on all of them alike; a
figure is the median over the rounds of the ratio within a round. One more instance of the application on the library
takes part: how far it is from the first one, or could be by the spread of their ratios, is the noise, and no difference
smaller than that means anything.

## Goals

{goals}

What is not reached lies in QtDBus, and the tables show it: how many of the instructions remain for an application that
does nothing but send its messages, how QtDBus by hand stands beside sd-bus, and what a further view costs it.

## Time

To QtDBus by hand:

{times}

A first construction, with the connection to the bus and the introspection of every object, takes {cold} of what it
takes by hand (noise ± {cold_noise}).

## Instructions

Counted by callgrind in the whole process, Qt's thread included, without its start; they hardly depend on what else the
machine does. Two runs differ by tenths of a percent, since Qt's thread does not wake equally often.

{instructions}

The last column is what no application on QtDBus can go below: one that sends messages which were made before, and does
not look at the answers. Most of an operation is executed in Qt's own thread and inside `QDBusConnection::call()`,
whatever the caller does. What lies between that column and 1 is all that a library can save, and the arguments that it
builds, the way of calling that the service's description asks for and the decoding have to come out of it too.
{slopes}
## Allocations

{allocations}

## The floor

Most of a call is spent where no binding can save anything. In units of one written screen property through the library,
which is two messages there and back:

{floors}

The last one is QtDBus's: it hands every message to a thread of its own and waits for it, twice in that operation.

## Memory and loading

{memory}

{loading}

## What was done, and what was left alone

Each figure is the part of the instructions of the operation that it saves, or of the decoding. They were measured one by
one when it was decided, for version 1.0.0 and Qt 5.15.8, and are not measured anew by `scripts/bench`.

- The question whether the service is there goes through the bus daemon's proxy with the way of the call given, not
  through its helper, which compares the names of all the daemon's methods first: 1 % of every operation but the reads
  of the views.
- A property's value is taken out of the answer directly, not by way of `QDBusReply`, which copies it: 1 % of a read.
- Views are read where they stand in the list: 0.1 % of the instructions of decoding, but 2 % of its time, since the
  counters of shared strings are dear. Their attributes are read without a detour through a second variant: 0.8 %.
- The arguments that read the views and the current view are kept: 0.7 % of a read; it is one line each.
- A record's type is registered without a name, which spares Qt the search for it: 0.2 µs of a construction.
- `getViews()` compares the signature of the answer before it reads it, since QtDBus ends the process on another one.
  That costs an allocation or two and 1 % of a read of one view; the expected signature is compared first.
- Left alone: a message for that question that is made only once. It would save 1 % more of an operation, but Qt writes
  into a message that it sends, so that each thread would need its own; and storage for each thread makes the library
  need the dynamic linker's own library, or leaves functions behind that a thread calls after the library has gone.
- Left alone: the lists of arguments of the other operations, a hint where in the map an attribute goes, objects for
  keys that are used again. Each buys less than 1 % and costs the reader's attention.
- Left alone: the search for the method among those of the proxy (the call mode `AutoDetect`), the introspection at
  construction, the second read of the views when stepping. They are part of what the operations promise.
"""


def loading_text(results):
    loading = results.values["loading"]
    part = 100 * loading["instructions"] / loading["instructions of a Qt program"]
    return (f"The stripped library has {loading['stripped'] / 1024:.0f} KiB, {loading['relocations']} relocations and "
            f"{loading['initialisers']} static initialisers. Loading it adds {part:.1f} % to the instructions of "
            "starting a program on Qt.")


def slope_text(results):
    rows = [(f"from {few:,} to {many:,}", few, many) for few, many in ((100, 1000), (1000, 10000))
            if results.slope(few, many, (10, 100)) is not None]
    if not rows:
        return ""
    slopes = [[where, *(fine_ratio(results.slope(few, many, (10, 100), client)) for client in ("telvaro", "qtdbus"))]
              for where, few, many in rows]
    return ("\nThe cost grows with the number of views. The instructions of a further view, beside one from 10 to 100:\n\n"
            + table(["", TITLES["telvaro"], TITLES["qtdbus"]], slopes) + "\n")


def write_page(results, path):
    values = results.values
    machine = values["machine"]
    busy = machine["load"] > machine["processors"]
    floors = {"socket": "a byte over a socket to another thread and back",
              "libdbus": "one message through the daemon to the service and back, with libdbus",
              "thread-hop": "a call in another of Qt's threads, waited for"}
    memory = values["memory"]
    text = PAGE.format(
        rounds=values["rounds"],
        processors=machine["processors"],
        processor=machine["processor"],
        load_before=machine["load"],
        load_after=machine["load at the end"],
        load_note=": the machine was busy with other work, and the times are to be read with that in mind"
        if busy else "",
        operation_count=len(OPERATIONS) - 1,
        goals=goal_table(results),
        times=time_table(results),
        cold=ratio(results.cold("telvaro")),
        cold_noise=ratio(abs(results.cold("telvaro-again", "telvaro") - 1)),
        instructions=count_table(results, "instructions"),
        slopes=slope_text(results),
        allocations=count_table(results, "allocations"),
        floors=table(["", ""], [[title, ratio(results.floor(name))] for name, title in floors.items()]),
        memory="The most memory that a process held that has read 10,000 views, to QtDBus by hand: "
        + ", ".join(f"{TITLES[name]} {memory[name] / memory['qtdbus']:.2f}" for name in memory if name != "qtdbus")
        + ".",
        loading=loading_text(results))
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


COLOURS = {"telvaro": "#0b6e4f", "generated": "#7a5195", "sdbus": "#c1440e", "gdbus": "#d4a017",
           "libdbus": "#2f6db3", "sdbuscpp": "#6b6b6b"}


def write_picture(results, path):
    """A row for each operation, a dot for each client, on a logarithmic scale; a bar around 1 as wide as the noise."""
    left, top, row_height, width = 270, 78, 26, 560
    low, high = 0.1, 4.0
    height = top + row_height * len(OPERATIONS) + 46

    def x(value):
        return left + width * math.log(min(max(value, low), high) / low) / math.log(high / low)

    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {left + width + 30} {height}" '
        'font-family="DejaVu Sans, Helvetica, Arial, sans-serif" font-size="13">',
        "<!-- SPDX-License-Identifier: MIT -->",
        "<!-- SPDX-FileCopyrightText: The Telvaro authors -->",
        '<rect width="100%" height="100%" fill="#ffffff"/>',
        '<text x="16" y="26" font-size="16" font-weight="bold" fill="#222">'
        "Time beside QtDBus written by hand (1.0); left is faster</text>",
    ]
    for index, (client, colour) in enumerate(COLOURS.items()):
        at = 22 + index * 135
        parts.append(f'<circle cx="{at}" cy="50" r="5.5" fill="{colour}"/>'
                     f'<text x="{at + 11}" y="54.5" fill="#222">{TITLES[client]}</text>')
    bottom = top + row_height * len(OPERATIONS)
    for tick in (0.1, 0.2, 0.5, 1.0, 2.0, 4.0):
        colour = "#444" if tick == 1.0 else "#ddd"
        parts.append(f'<line x1="{x(tick):.1f}" y1="{top}" x2="{x(tick):.1f}" y2="{bottom}" stroke="{colour}"/>'
                     f'<text x="{x(tick):.1f}" y="{bottom + 20}" text-anchor="middle" fill="#444">{tick:g}</text>')
    for index, operation in enumerate(OPERATIONS):
        middle = top + row_height * (index + 0.5)
        noise = results.noise(operation.name)
        parts.append(f'<text x="{left - 14}" y="{middle + 4.5:.1f}" text-anchor="end" fill="#222">'
                     f'{operation.title}</text>')
        parts.append(f'<rect x="{x(1 - noise):.1f}" y="{middle - 9:.1f}" '
                     f'width="{max(1.0, x(1 + noise) - x(1 - noise)):.1f}" height="18" fill="#cccccc"/>')
        # The library's last, over the others.
        for client in reversed(COLOURS):
            value = results.time(operation.name, client)
            if value is not None:
                parts.append(f'<circle cx="{x(value):.1f}" cy="{middle:.1f}" r="5.5" fill="{COLOURS[client]}" '
                             'fill-opacity="0.85"/>')
    parts.append(f'<text x="{left}" y="{height - 8}" font-size="11" fill="#666">'
                 "Grey: the noise, one instance of the library's client beside another. Logarithmic.</text>")
    parts.append("</svg>\n")
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(parts))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--results", required=True, help="the file of results")
    parser.add_argument("--docs", required=True, help="the folder that gets performance.md and images/")
    arguments = parser.parse_args()
    os.makedirs(os.path.join(arguments.docs, "images"), exist_ok=True)
    with open(arguments.results, encoding="utf-8") as file:
        results = Results(json.load(file))
    write_page(results, os.path.join(arguments.docs, "performance.md"))
    write_picture(results, os.path.join(arguments.docs, "images", "performance.svg"))


if __name__ == "__main__":
    main()
