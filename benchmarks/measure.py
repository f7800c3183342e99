# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""Measures the library's cost beside other bindings that send the same messages, into a file of results."""

import argparse
import concurrent.futures
import contextlib
import glob
import json
import os
import re
import subprocess
import sys
import tempfile

import applications
import harness
from harness import OPERATIONS

CLIENTS = ["telvaro", "qtdbus", "generated", "sdbus", "gdbus", "sdbuscpp"]
CLIENTS_WITH_HANDLES = ["telvaro", "qtdbus"]
# Sends the messages and reads nothing: the lower bound of QtDBus.
PREPARED = "prepared"
PREPARED_COMMANDS = ["views", "set", "screen-read", "screen-write", "overlay", "notify", "screenshot"]
# The library against itself: the noise of a ratio.
AGAIN = "telvaro-again"

NO_REPLY_EXPECTED = 1


def operations_of(client, most_views):
    return [operation for operation in OPERATIONS
            if operation.views <= most_views
            and (operation.command != "construct" or client in CLIENTS_WITH_HANDLES)
            and (operation.command in PREPARED_COMMANDS or client != PREPARED)]


def describe_call(message):
    """All that the receiver of a call can read."""
    fields = [message.get(field) for field in ("destination", "path", "interface", "member", "payload")]
    return json.dumps([*fields, message["flags"] & NO_REPLY_EXPECTED])


def record_calls(new_bus, name):
    """Every call of one client and the digest of what it has read, by operation; its first calls under "start"."""
    records = {}
    with new_bus() as bus, bus.monitor() as messages:
        def calls():
            return [describe_call(message) for message in messages() if message["type"] == "method_call"]

        calls()
        with bus.client(name) as client:
            # Sorted, since each binding begins in its own order.
            records["start"] = (sorted(calls()), None)
            for operation in operations_of(name, 100):
                bus.set_views(operation.views)
                client.prepare(operation)
                calls()
                sample = client.run(operation.command, 1)
                records[operation.name] = (calls(), sample.digest)
    return records


def check_equal(new_bus):
    """Ends the measurement where two clients differ in what they send or read."""
    expected = record_calls(new_bus, "qtdbus")
    for name in [*CLIENTS, PREPARED]:
        records = expected if name == "qtdbus" else record_calls(new_bus, name)
        for operation, record in records.items():
            if operation == "start" and name not in CLIENTS_WITH_HANDLES:
                continue
            if name == PREPARED:
                record = (record[0], expected[operation][1])
            if record != expected[operation]:
                sys.exit(f"{operation}: {name} and qtdbus differ:\n{record}\n{expected[operation]}")


def measure_times(new_bus, rounds):
    """Nanoseconds per repetition, a list with one for each round; the clients take turns within each."""
    runners = [*CLIENTS, AGAIN]
    times = {operation.name: {} for operation in OPERATIONS}
    floor_calls = 40
    floors = []
    with new_bus() as bus, contextlib.ExitStack() as resources:
        clients = {name: resources.enter_context(bus.client("telvaro" if name == AGAIN else name))
                   for name in runners}
        floor = resources.enter_context(bus.running([bus.program("floor")]))
        floor.read()
        for turn in range(rounds):
            floors.append(int(floor.ask(str(floor_calls))) / floor_calls)
            for operation in OPERATIONS:
                bus.set_views(operation.views)
                # The first changes with each turn, and is never the last of the turn before.
                for step in range(len(runners)):
                    name = runners[(turn * 3 + step) % len(runners)]
                    if operation.command == "construct" and name not in [*CLIENTS_WITH_HANDLES, AGAIN]:
                        continue
                    client = clients[name]
                    client.prepare(operation)
                    # Warms up the client and the processes on the way to it.
                    client.run(operation.command, 1)
                    sample = client.run(operation.command, operation.count)
                    times[operation.name].setdefault(name, []).append(sample.nanoseconds / operation.count)
    return times, floors


def measure_cold_start(new_bus, rounds):
    """Nanoseconds until a process has its handles: connection, introspection, subscriptions."""
    times = {name: [] for name in (*CLIENTS_WITH_HANDLES, AGAIN)}
    with new_bus() as bus:
        for _ in range(rounds):
            for name, samples in times.items():
                with bus.client("telvaro" if name == AGAIN else name) as client:
                    samples.append(client.start)
    return times


def measure_memory(new_bus):
    """The peak memory, in kilobytes, of a process that has read 10,000 views."""
    peaks = {}
    with new_bus() as bus:
        bus.set_views(10000)
        for name in CLIENTS:
            with bus.client(name) as client:
                client.run("views", 3)
                with open(f"/proc/{client.pid}/status", encoding="utf-8") as file:
                    peaks[name] = int(re.search(r"VmHWM:\s+(\d+)", file.read()).group(1))
    return peaks


def count_everything(new_bus, quick):
    """Instructions and allocations per operation, by client."""
    names = ["telvaro", "qtdbus"] if quick else [*CLIENTS, PREPARED]
    most_views = 100 if quick else 1000

    def count(name):
        operations = operations_of(name, most_views)
        with new_bus() as bus:
            instructions = harness.count_instructions(bus, name, operations)
            if name in CLIENTS_WITH_HANDLES and not quick:
                largest = [operation for operation in OPERATIONS if operation.views == 10000]
                instructions.update(harness.count_instructions(bus, name, largest))
            return instructions, harness.count_allocations(bus, name, operations)

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        counts = dict(zip(names, workers.map(count, names)))
    with new_bus() as bus:
        names_operation = harness.Operation("names", "names", 0, 1, "all names and the device test")
        free = harness.count_allocations(bus, "telvaro", [names_operation])["names"]
    return ({name: instructions for name, (instructions, _) in counts.items()},
            {name: allocations for name, (_, allocations) in counts.items()},
            free)


def measure_applications(new_bus, quick):
    """Times, messages and instructions of the applications that show the list of views."""
    # Many short turns, since the machine may be busy for a while.
    changes_by_views = {10: 7, 100: 7} if quick else {10: 7, 100: 7, 1000: 3}
    counted_by_views = {10: 8} if quick else {10: 15, 100: 7, 1000: 2}
    counted = [(name, views) for views in counted_by_views for name in applications.APPLICATIONS]

    def count(name_and_views):
        name, views = name_and_views
        return applications.count_instructions(new_bus, name, views, counted_by_views[views])

    times = applications.measure_times(new_bus, 8 if quick else 30, changes_by_views)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        counts = dict(zip(counted, workers.map(count, counted)))
    return {
        "times": times,
        "messages": applications.count_messages(new_bus),
        "instructions": {views: {name: counts[name, views] for name in applications.APPLICATIONS}
                         for views in counted_by_views},
    }


def measure_loading(new_bus, library):
    """The dynamic linker's work for the library."""
    def run(*command):
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout

    sections = {fields[0]: int(fields[1]) for fields in map(str.split, run("size", "-A", library).splitlines())
                if len(fields) == 3 and fields[1].isdigit()}
    pointer = 8 if "ELF64" in run("readelf", "-h", library) else 4
    with tempfile.TemporaryDirectory() as directory:
        stripped = os.path.join(directory, "stripped")
        run("strip", "-o", stripped, library)
        stripped_size = os.path.getsize(stripped)

    def count_start(bus, **environment):
        with tempfile.TemporaryDirectory() as directory:
            output = os.path.join(directory, "out")
            command = ["valgrind", "--quiet", "--tool=callgrind", f"--callgrind-out-file={output}"]
            subprocess.run([*command, bus.program("floor")], env={**bus.environment, **environment},
                           stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
            totals = 0
            for path in glob.glob(output + "*"):
                with open(path, encoding="utf-8") as file:
                    totals += int(re.search(r"^(?:totals|summary): (\d+)", file.read(), re.MULTILINE).group(1))
            return totals

    with new_bus() as bus:
        without = count_start(bus)
        with_library = count_start(bus, LD_PRELOAD=library)
    return {
        "relocations": len(re.findall(r"R_\w+", run("readelf", "-rW", library))),
        "initialisers": sections.get(".init_array", 0) // pointer,
        "stripped": stripped_size,
        "instructions": with_library - without,
        "instructions of a Qt program": without,
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--programs", required=True, help="folder with the benchmarks' programs")
    parser.add_argument("--interfaces", required=True, help="folder with the interfaces' descriptions")
    parser.add_argument("--library", help="the library's file")
    parser.add_argument("--output", help="the file of results")
    parser.add_argument("--check", action="store_true", help="measure nothing; only check that all clients send and read the same")
    parser.add_argument("--quick", action="store_true", help="fewer rounds, and no counts for other bindings")
    arguments = parser.parse_args()

    if not arguments.check and not (arguments.library and arguments.output):
        parser.error("--library and --output are needed")

    def new_bus():
        return harness.Bus(arguments.programs, arguments.interfaces)

    if arguments.check:
        check_equal(new_bus)
        return

    def report(what):
        print(what, file=sys.stderr, flush=True)

    results = {"machine": harness.describe_machine(), "quick": arguments.quick}
    report("All clients send and read the same ...")
    check_equal(new_bus)
    rounds = 7 if arguments.quick else 25
    results["rounds"] = rounds
    report("Applications ...")
    results["applications"] = measure_applications(new_bus, arguments.quick)
    report("Time ...")
    results["times"], results["floor"] = measure_times(new_bus, rounds)
    results["cold"] = measure_cold_start(new_bus, rounds)
    report("Memory and loading ...")
    results["memory"] = measure_memory(new_bus)
    results["loading"] = measure_loading(new_bus, os.path.realpath(arguments.library))
    report("Instructions and allocations ...")
    results["instructions"], results["allocations"], results["allocations of names"] = count_everything(
        new_bus, arguments.quick)
    results["machine"]["load at the end"] = os.getloadavg()[0]
    with open(arguments.output, "w", encoding="utf-8") as file:
        json.dump(results, file, indent=1)


if __name__ == "__main__":
    main()
