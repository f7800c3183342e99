# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""The processes of a measurement: a private bus, the service on it, and clients steered by commands."""

import collections
import contextlib
import ctypes
import glob
import itertools
import json
import os
import pathlib
import platform
import re
import selectors
import signal
import statistics
import subprocess
import tempfile
import time

BUS_CONFIGURATION = pathlib.Path(__file__).resolve().parents[1] / "session" / "bus.conf"

Sample = collections.namedtuple("Sample", "nanoseconds allocations digest")


class Operation(collections.namedtuple("Operation", "name command views count title")):
    """A measured operation: its name, the client's command, the number of views of the service meanwhile, the
    repetitions in one sample, and its title on the page."""

    def prerequisites(self):
        """The commands to be carried out before, such as reading the view that is set."""
        return {"set": ["current"], "decode": ["fetch"]}.get(self.command, [])


OPERATIONS = [
    Operation("views-1", "views", 1, 60, "read 1 view"),
    Operation("views-10", "views", 10, 50, "read 10 views"),
    Operation("views-100", "views", 100, 20, "read 100 views"),
    Operation("views-1000", "views", 1000, 3, "read 1,000 views"),
    Operation("views-10000", "views", 10000, 1, "read 10,000 views"),
    Operation("current", "current", 10, 20, "read the current view (of 10)"),
    Operation("set", "set", 10, 30, "set the current view"),
    Operation("step", "step", 10, 12, "step to the next view (of 10)"),
    Operation("screen-read", "screen-read", 10, 30, "read a screen property"),
    Operation("screen-write", "screen-write", 10, 30, "write a screen property"),
    Operation("overlay", "overlay", 10, 30, "show the overlay"),
    Operation("notify", "notify", 10, 30, "notify"),
    Operation("screenshot", "screenshot", 10, 30, "take a screenshot"),
    Operation("change", "change", 10, 15, "a change, until it is signalled"),
    Operation("decode", "decode", 100, 20, "decode 100 views"),
    Operation("construct", "construct", 10, 30, "construct a connector, warm"),
]


def end_with_parent():
    ctypes.CDLL(None).prctl(1, signal.SIGKILL)  # PR_SET_PDEATHSIG


class LineProcess:
    """A program that reads commands and writes replies, a line each and within a deadline."""

    DEADLINE = 120

    def __init__(self, command, environment, errors=None, is_endless=False):
        self._name = os.path.basename(command[0])
        self._is_endless = is_endless
        self._process = subprocess.Popen(command, env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         stderr=errors, preexec_fn=end_with_parent)
        self._selector = selectors.DefaultSelector()
        self._selector.register(self._process.stdout, selectors.EVENT_READ)
        self._buffer = b""

    @property
    def pid(self):
        return self._process.pid

    def write(self, line):
        self._process.stdin.write(line.encode() + b"\n")
        self._process.stdin.flush()

    def read(self):
        deadline = time.monotonic() + self.DEADLINE
        while b"\n" not in self._buffer:
            if not self._selector.select(max(0, deadline - time.monotonic())):
                raise TimeoutError(f"{self._name} does not answer")
            data = os.read(self._process.stdout.fileno(), 65536)
            if not data:
                raise RuntimeError(f"{self._name} has ended with status {self._process.wait()}")
            self._buffer += data
        line, _, self._buffer = self._buffer.partition(b"\n")
        return line.decode()

    def ask(self, line):
        self.write(line)
        return self.read()

    def end(self):
        """Closes the input, with which most programs end; terminates an endless one."""
        with contextlib.suppress(BrokenPipeError):
            self._process.stdin.close()
        try:
            self._process.wait(timeout=0 if self._is_endless else self.DEADLINE)
        except subprocess.TimeoutExpired:
            self._process.terminate()
            self._process.wait()
        self._selector.close()
        self._process.stdout.close()


class Bus:
    """A private bus daemon with the benchmark's service on it; a context manager."""

    def __init__(self, programs, interfaces):
        self._programs = programs
        self._interfaces = interfaces
        self._resources = contextlib.ExitStack()

    def __enter__(self):
        with contextlib.ExitStack() as resources:
            directory = resources.enter_context(tempfile.TemporaryDirectory())
            self.directory = directory
            self.environment = dict(os.environ)
            # The daemon logs every monitor. Where it fails, no address comes.
            daemon = LineProcess(["dbus-daemon", "--nofork", "--print-address", f"--config-file={BUS_CONFIGURATION}",
                                  f"--address=unix:dir={directory}"],
                                 self.environment, errors=subprocess.DEVNULL, is_endless=True)
            resources.callback(daemon.end)
            self.address = daemon.read()
            # Serves as either bus, since the library is built for one of them.
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.address
            self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = self.address
            self._service = resources.enter_context(
                self.running([self.program("benchmark-service"), self._interfaces]))
            self._service.read()
            self._resources = resources.pop_all()
        return self

    def __exit__(self, *_):
        self._resources.close()

    def program(self, name):
        return os.path.join(self._programs, name)

    def set_views(self, count):
        self._service.ask(f"views {count}")

    def broadcast(self):
        """Makes the service signal the changes that a client writes."""
        self._service.ask("broadcast")

    def change(self, what):
        """Changes a title or switches to the next view, and returns the time at which the signals were sent."""
        return int(self._service.ask(what))

    @contextlib.contextmanager
    def monitor(self):
        """A function that returns all messages on the bus since its last call, as busctl describes them."""
        command = ["busctl", "monitor", "--json=short", f"--address={self.address}"]
        with self.running(command, is_endless=True, errors=subprocess.STDOUT) as process:
            process.read()

            def messages():
                self._service.ask("mark")
                messages = map(json.loads, iter(process.read, None))
                return list(itertools.takewhile(lambda message: message.get("member") != "Mark", messages))

            yield messages

    @contextlib.contextmanager
    def running(self, command, is_endless=False, errors=None, **environment):
        """The program while it runs."""
        process = LineProcess(command, {**self.environment, **environment}, errors, is_endless)
        try:
            yield process
        finally:
            process.end()

    @contextlib.contextmanager
    def client(self, name, prefix=(), **environment):
        """A ready client, which has the nanoseconds of its construction as `start`."""
        command = [*prefix, self.program(name + "-client")]
        with self.running(command, **environment) as process:
            yield Client(process)


class Application:
    """A running application that shows the list of views. Its figures are nanoseconds."""

    def __init__(self, process, bus):
        self._process = process
        self._bus = bus
        self.start, _ = self._read()

    def _read(self):
        return [int(figure) for figure in self._process.read().split()]

    def change(self, what):
        """Changes a title or the current view at the service: the time until it is shown, and the event loop's hold."""
        self._process.ask("await-" + what)
        sent = self._bus.change(what)
        shown, held = self._read()
        return shown - sent, held

    def step(self):
        """Steps to the next view: the time of the call, and the time until the view is shown."""
        self._process.write("step")
        called, duration, shown, _ = self._read()
        return duration, shown - called


class Client:
    def __init__(self, process):
        self._process = process
        self.start = int(process.read())

    @property
    def pid(self):
        return self._process.pid

    def run(self, command, count):
        nanoseconds, allocations, digest = self._process.ask(f"{command} {count}").split()
        return Sample(int(nanoseconds), int(allocations), digest)

    def prepare(self, operation):
        for command in operation.prerequisites():
            self.run(command, 1)


CALLGRIND = ["valgrind", "--quiet", "--tool=callgrind", "--instr-atstart=no"]


def count_instructions(bus, name, operations):
    """The instructions per repetition of each operation in the client's whole process, by its name: the median of
    several samples. Their noise is how often Qt's thread wakes."""
    instructions = {}
    with tempfile.TemporaryDirectory(dir=bus.directory) as directory:
        output = os.path.join(directory, "dump")
        prefix = [*CALLGRIND, f"--callgrind-out-file={output}"]
        # Resolves the names of all functions before the first call.
        with bus.client(name, prefix, LD_BIND_NOW="1") as client:
            # Decoding first: it is all allocations, whose cost depends on what was freed before.
            for operation in sorted(operations, key=lambda operation: operation.command != "decode"):
                bus.set_views(operation.views)
                client.prepare(operation)
                count, samples = _counted_repetitions(operation.views)
                totals = []
                # The first sample warms up.
                for _ in range(1 + samples):
                    client.run(operation.command, count)
                    totals.append(last_dump(output))
                instructions[operation.name] = statistics.median(totals[1:]) / count
    return instructions


def _counted_repetitions(views):
    """The repetitions of an operation on `views` views in a sample, and the number of samples."""
    if views < 100:
        return 20, 7
    if views < 1000:
        return 5, 5
    return 1, 3 if views < 10000 else 1


def last_dump(output):
    """The instructions of the newest dump, which is removed with those before it."""
    dumps = glob.glob(output + ".*")
    last = max(dumps, key=lambda path: int(path.rsplit(".", 1)[1]))
    with open(last, encoding="utf-8") as file:
        totals = re.search(r"^(?:totals|summary): (\d+)", file.read(), re.MULTILINE)
    for dump in dumps:
        os.remove(dump)
    return int(totals.group(1))


def count_allocations(bus, name, operations):
    """The allocations per repetition of each operation in the client's whole process, by its name."""
    few, many = 10, 110
    allocations = {}
    with bus.client(name, LD_PRELOAD=bus.program("liballocation-counter.so")) as client:
        for operation in operations:
            bus.set_views(operation.views)
            client.prepare(operation)
            client.run(operation.command, few)
            samples = [client.run(operation.command, count).allocations for count in (few, many)]
            allocations[operation.name] = (samples[1] - samples[0]) / (many - few)
    return allocations


def describe_machine():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        model = re.search(r"model name\s*: (.*)", file.read())
    return {
        "processor": model.group(1) if model else platform.machine(),
        "processors": os.cpu_count(),
        "load": os.getloadavg()[0],
    }
