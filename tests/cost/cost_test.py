# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""Compares the instructions and allocations of every operation of the connectors, as ratios to QtDBus written by hand,
and those of changes on the live layer, as ratios to the connectors, with the ratios that are checked in. Fails if one is
higher by more than its noise, or if an application sends another number of messages."""

import argparse
import concurrent.futures
import json
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "benchmarks"))
import applications  # noqa: E402
import harness  # noqa: E402

# A switch on the connectors varies by 2 % itself.
ROOM = {"instructions": 1.02, "allocations": 1.02, "live instructions": 1.05}
# More views would only take more of callgrind's time.
OPERATIONS = [operation for operation in harness.OPERATIONS if operation.views <= 100]
APPLICATION_VIEWS = [10, 100]
NAMES = harness.Operation("names", "names", 0, 1, "all names and the device test")


def new_bus(arguments):
    return harness.Bus(arguments.programs, arguments.interfaces)


def count(arguments, client):
    with new_bus(arguments) as bus:
        counts = {
            "instructions": harness.count_instructions(bus, client, OPERATIONS),
            "allocations": harness.count_allocations(bus, client, OPERATIONS),
        }
        if client == "telvaro":
            counts["names"] = harness.count_allocations(bus, client, [NAMES])["names"]
        return counts


def count_application(arguments, name):
    return {views: applications.count_instructions(lambda: new_bus(arguments), name, views, changes=7)
            for views in APPLICATION_VIEWS}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--programs", required=True, help="folder with the benchmarks' programs")
    parser.add_argument("--interfaces", required=True, help="folder with the interfaces' descriptions")
    parser.add_argument("--ratios", required=True, type=pathlib.Path, help="the file with the ratios")
    parser.add_argument("--update", action="store_true", help="write the measured ratios into the file")
    arguments = parser.parse_args()

    with concurrent.futures.ThreadPoolExecutor(2) as workers:
        library, by_hand = workers.map(lambda client: count(arguments, client), ["telvaro", "qtdbus"])
        live, connectors = workers.map(lambda name: count_application(arguments, name), ["live", "connectors"])
    ratios = {what: {operation.name: round(library[what][operation.name] / by_hand[what][operation.name], 3)
                     for operation in OPERATIONS}
              for what in ("instructions", "allocations")}
    ratios["live instructions"] = {f"{change}, {views} views": round(live[views][change] / connectors[views][change], 3)
                                   for views in APPLICATION_VIEWS for change in applications.CHANGES}
    messages = applications.count_messages(lambda: new_bus(arguments))
    if arguments.update:
        arguments.ratios.write_text(json.dumps({**ratios, "messages": messages}, indent=2) + "\n", encoding="utf-8")
        return

    expected = json.loads(arguments.ratios.read_text(encoding="utf-8"))
    failures = [
        f"{what} of {name}: {ratios[what][name]:.3f}, expected {expected[what][name]:.3f}"
        for what in ratios for name in ratios[what] if ratios[what][name] > expected[what][name] * ROOM[what]]
    failures += [f"messages of {name}: {messages[name]}, expected {expected['messages'][name]}"
                 for name in messages if messages[name] != expected["messages"][name]]
    if library["names"] != 0:
        failures.append(f"{NAMES.title}: {library['names']:g} allocations, expected none")
    if failures:
        sys.exit("\n".join(failures))


if __name__ == "__main__":
    main()
