# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""Measures applications that show the list of views and the current one: on the live layer, on the connectors, and
written by hand."""

import contextlib
import os
import random
import statistics
import tempfile

import harness

# The programs of the applications and their arguments.
APPLICATIONS = {
    "connectors": ["connectors-application"],
    "live": ["live-application"],
    "qtdbus": ["qtdbus-application"],
    "sdbus": ["sdbus-application"],
    "sdbus-notified": ["sdbus-application", "notified"],
}
# The connectors against themselves: the noise of a ratio.
AGAIN = "connectors-again"
CHANGES = ["title", "switch", "step"]
FIGURES = ["start", "title", "title held", "switch", "switch held", "step call", "step"]


@contextlib.contextmanager
def running(bus, name, views, prefix=(), **environment):
    """An application that shows its first list. Without GLib's event loop, which wakes up on its own."""
    program, *options = APPLICATIONS["connectors" if name == AGAIN else name]
    with bus.running([*prefix, bus.program(program), str(views), *options], QT_NO_GLIB="1", **environment) as process:
        yield harness.Application(process, bus)


@contextlib.contextmanager
def _bus_with(new_bus, views):
    with new_bus() as bus:
        bus.set_views(views)
        bus.broadcast()
        yield bus


def _carry_out(application, change):
    return application.step() if change == "step" else application.change(change)


def measure_times(new_bus, rounds, changes_by_views):
    """Nanoseconds by number of views, figure and application, each a list with the median of each round. Within a round
    the applications take turns in random order."""
    order = random.Random(1)
    names = [*APPLICATIONS, AGAIN]
    times = {views: {figure: {name: [] for name in names} for figure in FIGURES} for views in changes_by_views}
    for views, changes in changes_by_views.items():
        with _bus_with(new_bus, views) as bus:
            for name in (name for _ in range(rounds) for name in order.sample(names, len(names))):
                with running(bus, name, views) as application:
                    # The first one warms up the application and the processes on the way to it.
                    samples = [sum((_carry_out(application, change) for change in CHANGES), ())
                               for _ in range(1 + changes)][1:]
                for figure, median in zip(FIGURES, [application.start, *map(statistics.median, zip(*samples))]):
                    times[views][figure][name].append(median)
    return times


def count_messages(new_bus, names=APPLICATIONS, views=10):
    """The messages besides signals by application and change: every call and every reply is one."""
    def count(messages):
        return sum(message["type"] != "signal" for message in messages)

    counts = {}
    for name in names:
        with _bus_with(new_bus, views) as bus, bus.monitor() as messages:
            messages()
            with running(bus, name, views) as application:
                counts[name] = {"start": count(messages())}
                for change in CHANGES:
                    _carry_out(application, change)
                    counts[name][change] = count(messages())
    return counts


def count_instructions(new_bus, name, views, changes):
    """The instructions of the whole process by change, each the median of several."""
    counts = {}
    with _bus_with(new_bus, views) as bus, tempfile.TemporaryDirectory(dir=bus.directory) as directory:
        output = os.path.join(directory, "dump")
        prefix = [*harness.CALLGRIND, f"--callgrind-out-file={output}"]
        # Resolves the names of all functions before the first call.
        with running(bus, name, views, prefix, LD_BIND_NOW="1") as application:
            for change in CHANGES:
                totals = []
                for _ in range(1 + changes):
                    _carry_out(application, change)
                    totals.append(harness.last_dump(output))
                # The first one warms up.
                counts[change] = statistics.median(totals[1:])
    return counts
