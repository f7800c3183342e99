# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""The compositors that are compared, each in a window of an X server of its own, and the clients in them."""

import contextlib
import os
import pathlib
import shutil
import subprocess
import tempfile
import time

import harness
import x11

NOBODY = 65534
DEADLINE = 60


def wait_until(condition, what):
    deadline = time.monotonic() + DEADLINE
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise TimeoutError(what)
        time.sleep(0.001)


class Client(harness.LineProcess):
    """A window that fills the output; see painting-client.cpp."""

    def __init__(self, desk):
        super().__init__([desk.programs / "benchmarks" / "painting-client"], desk.client_environment)

    def wait_until_shown(self):
        self.read()
        return self

    def count(self):
        return int(self.ask("count").split()[0])

    def size(self):
        return tuple(map(int, self.ask("count").split()[1:]))


class Desk:
    """A running compositor; a context manager."""

    TITLE = ""
    # What must be installed.
    PROGRAMS = []

    def __init__(self, programs, size):
        self.programs = pathlib.Path(programs)
        self.size = size
        self._resources = contextlib.ExitStack()

    @classmethod
    def missing(cls):
        """A program that is not installed, or None."""
        return next((program for program in cls.PROGRAMS if shutil.which(program) is None), None)

    def __enter__(self):
        with contextlib.ExitStack() as resources:
            self.directory = pathlib.Path(resources.enter_context(tempfile.TemporaryDirectory()))
            self.screen = resources.enter_context(x11.screen(self.size))
            self.environment = {**os.environ, "DISPLAY": self.screen.name, "XDG_RUNTIME_DIR": str(self.directory)}
            self.environment.pop("WAYLAND_DISPLAY", None)
            self._prepare(resources)
            start = time.monotonic_ns()
            self._process = self._run(resources, self._command())
            socket = wait_until(self._find_socket, f"{self.TITLE} opens no socket")
            self.client_environment = {**self.environment, "WAYLAND_DISPLAY": socket}
            with self.client():
                self.start = time.monotonic_ns() - start
            self.screen.fill_with_windows(self.size)
            self._fill_screen()
            self._resources = resources.pop_all()
        return self

    def __exit__(self, *_):
        self._resources.close()

    def _run(self, resources, command):
        process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, preexec_fn=harness.end_with_parent)

        def end():
            process.terminate()
            process.wait()

        resources.callback(end)
        return process

    def _prepare(self, resources):
        """What the compositor needs to run."""

    def _command(self):
        raise NotImplementedError

    def _fill_screen(self):
        """Gives the whole output to the application."""

    def _screenshot_command(self):
        """None where there is no such program."""

    def _find_socket(self):
        if self._process.poll() is not None:
            raise RuntimeError(f"{self.TITLE} has ended with status {self._process.returncode}")
        return next((path.name for path in self.directory.glob("wayland-*") if path.is_socket()), None)

    @contextlib.contextmanager
    def client(self):
        client = Client(self)
        try:
            yield client.wait_until_shown()
        finally:
            client.end()

    def take_screenshot(self):
        """The nanoseconds of the whole command; None where there is no such program."""
        command = self._screenshot_command()
        if command is None:
            return None
        start = time.monotonic_ns()
        subprocess.run(command, env=self.client_environment, check=True, stdout=subprocess.DEVNULL)
        return time.monotonic_ns() - start

    def processor_time(self):
        """The nanoseconds that the compositor has run, in all its threads."""
        tasks = pathlib.Path(f"/proc/{self._process.pid}/task").iterdir()
        return sum(int((task / "schedstat").read_text(encoding="ascii").split()[0]) for task in tasks)

    def memory(self):
        """The compositor's resident memory and the anonymous part of it, in bytes."""
        lines = pathlib.Path(f"/proc/{self._process.pid}/smaps_rollup").read_text(encoding="ascii").splitlines()[1:]
        values = {line.split(":")[0]: int(line.split()[1]) * 1024 for line in lines}
        return {"resident": values["Rss"], "anonymous": values["Anonymous"]}


class Telvaro(Desk):
    TITLE = "telvaro-compositor"

    def _prepare(self, resources):
        bus = harness.LineProcess(["dbus-daemon", "--nofork", "--print-address",
                                   f"--config-file={harness.BUS_CONFIGURATION}",
                                   f"--address=unix:dir={self.directory}"],
                                  self.environment, errors=subprocess.DEVNULL, is_endless=True)
        resources.callback(bus.end)
        address = bus.read()
        self.environment |= {"DBUS_SESSION_BUS_ADDRESS": address, "DBUS_SYSTEM_BUS_ADDRESS": address,
                             "QT_QPA_PLATFORM": "xcb"}

    def _command(self):
        return [self.programs / "bin" / "telvaro-compositor", "--size", "{}x{}".format(*self.size),
                "--screensaver-timeout", "0"]

    def _telvaroctl(self, *arguments):
        return [self.programs / "bin" / "telvaroctl", *arguments]

    def _fill_screen(self):
        subprocess.run(self._telvaroctl("fullscreen", "on"), env=self.environment, check=True,
                       stdout=subprocess.DEVNULL)

    def _screenshot_command(self):
        return self._telvaroctl("screenshot", "--timeout", str(DEADLINE), str(self.directory))


class Cage(Desk):
    TITLE = "cage"
    # It starts Xwayland, even if no client needs it.
    PROGRAMS = ["cage", "setpriv", "Xwayland"]

    def _prepare(self, resources):
        self.environment |= {"WLR_BACKENDS": "x11", "WLR_RENDERER": "pixman"}
        if os.geteuid() == 0:
            os.chown(self.directory, NOBODY, NOBODY)

    def _command(self):
        # It ends with the program that it starts, and does not run as root.
        user = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups"] if os.geteuid() == 0 else []
        return [*user, "cage", "--", "sleep", "infinity"]

    def _screenshot_command(self):
        return shutil.which("grim") and ["grim", str(self.directory / "screenshot.png")]


class Weston(Desk):
    TITLE = "weston"
    PROGRAMS = ["weston"]

    def _command(self):
        return ["weston", "--backend=x11-backend.so", "--use-pixman", "--shell=kiosk-shell.so", "--no-config",
                "--idle-time=0", "--width={}".format(self.size[0]), "--height={}".format(self.size[1])]


DESKS = {"telvaro": Telvaro, "cage": Cage, "weston": Weston}
