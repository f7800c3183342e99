# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""Compares the instructions and allocations of every operation, as ratios to QtDBus written by hand, with the ratios
that are checked in. Fails if one is more than 2 % higher."""

import argparse
import concurrent.futures
import json
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "benchmarks"))
import harness  # noqa: E402

ROOM = 1.02
# More views would only take more of callgrind's time.
OPERATIONS = [operation for operation in harness.OPERATIONS if operation.views <= 100]
NAMES = harness.Operation("names", "names", 0, 1, "all names and the device test")


def count(arguments, client):
    with harness.Bus(arguments.programs, arguments.interfaces) as bus:
        counts = {
            "instructions": harness.count_instructions(bus, client, OPERATIONS),
            "allocations": harness.count_allocations(bus, client, OPERATIONS),
        }
        if client == "telvaro":
            counts["names"] = harness.count_allocations(bus, client, [NAMES])["names"]
        return counts


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--programs", required=True, help="folder with the benchmarks' programs")
    parser.add_argument("--interfaces", required=True, help="folder with the interfaces' descriptions")
    parser.add_argument("--ratios", required=True, type=pathlib.Path, help="the file with the ratios")
    parser.add_argument("--update", action="store_true", help="write the measured ratios into the file")
    arguments = parser.parse_args()

    with concurrent.futures.ThreadPoolExecutor(2) as workers:
        library, by_hand = workers.map(lambda client: count(arguments, client), ["telvaro", "qtdbus"])
    ratios = {what: {operation.name: round(library[what][operation.name] / by_hand[what][operation.name], 3)
                     for operation in OPERATIONS}
              for what in ("instructions", "allocations")}
    if arguments.update:
        arguments.ratios.write_text(json.dumps(ratios, indent=2) + "\n", encoding="utf-8")
        return

    expected = json.loads(arguments.ratios.read_text(encoding="utf-8"))
    failures = [
        f"{operation.title}: {what} are {ratios[what][operation.name]:.3f} of those by hand "
        f"({library[what][operation.name]:.0f} to {by_hand[what][operation.name]:.0f}), "
        f"expected {expected[what][operation.name]:.3f}"
        for what in ratios for operation in OPERATIONS
        if ratios[what][operation.name] > expected[what][operation.name] * ROOM]
    if library["names"] != 0:
        failures.append(f"{NAMES.title}: {library['names']:g} allocations, expected none")
    if failures:
        sys.exit("\n".join(failures))


if __name__ == "__main__":
    main()
