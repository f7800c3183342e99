# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""Runs checks on the virtual device, and prints a line for each in the format of TAP."""

import argparse
import io
import json
import os
import shlex
import shutil
import signal
import sys
import time

from PIL import Image

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../device"))
from virtual_device import DeviceError, VirtualDevice  # noqa: E402

SIZE = (1024, 600)
STATUS_BAR = 34
WORK_AREA = (SIZE[0], SIZE[1] - STATUS_BAR)
# The limit of a call is made for faster machines.
CONTROL = "TELVAROCTL_TIMEOUT=60 telvaroctl "
COMPOSITOR = "systemctl --user %s telvaro-compositor.service"


class CheckFailed(Exception):
    """A check has not found what it expects."""


def fail(message):
    raise CheckFailed(message)


def expect(condition, message):
    if not condition:
        fail(message)


def expect_equal(found, expected, what):
    expect(found == expected, "%s: expected %r, found %r" % (what, expected, found))


def wait_for(condition, what, timeout=180):
    """Repeats a function until its result is true, and returns that."""
    deadline = time.monotonic() + timeout
    while True:
        result = condition()
        if result:
            return result
        expect(time.monotonic() < deadline, "waited in vain for: " + what)
        time.sleep(0.5)


class Bench:
    """The device under test, with what is asked of it again and again."""

    def __init__(self, arguments, device):
        self.arguments = arguments
        self.device = device
        self.figures = {}

    def figure(self, name, value):
        """Remembers a reading of something that is printed and not judged."""
        self.figures.setdefault(name, []).append(value)

    def control(self, command):
        return self.device.in_session(CONTROL + command)

    def read(self, command):
        """Returns what telvaroctl prints as JSON. What Qt may print beside it goes to a file."""
        output = self.control(command + " --json 2>> /tmp/telvaroctl.log")
        try:
            return json.loads(output)
        except ValueError:
            return fail("telvaroctl %s does not print JSON: %s" % (command, output))

    def compositor(self, prop):
        return self.device.in_session(COMPOSITOR % ("show --value --property=" + prop)).strip()

    def wait_for_compositor(self):
        self.device.wait_until("in-session " + COMPOSITOR % "is-active" + " && [ -S /run/user/1000/wayland-1 ]")
        # A test that takes long must not find a black screen.
        self.control("screensaver off")

    def start(self, name, command):
        self.device.start(name, command)
        return name

    def open_window(self, name, program="event-window", application="org.example.events"):
        """Starts an application with one window, and returns its view."""
        self.start(name, "/home/device/%s %s %s" % (program, application, name))
        return self.wait_for_size(name, WORK_AREA)

    def need_window(self, name):
        """Has an application with a window, and makes it the current one."""
        view = self.view(name) or self.open_window(name)
        self.control("switch " + shlex.quote(view["uuid"]))

    def wait_for_size(self, title, size):
        """Waits until an application has drawn its window in a size, and returns its view."""
        def view():
            found = self.view(title)
            return found and (found["attributes"]["width"], found["attributes"]["height"]) == size and found

        return wait_for(view, "a view of %s with the size %dx%d" % (title, *size))

    def close(self, *names):
        """Ends applications, and waits until their views have left."""
        self.device.expect("systemctl stop %s 2> /dev/null || true" % " ".join(names))
        wait_for(lambda: not any(self.view(name) for name in names), "the views to leave")

    def tidy(self):
        """Makes the state with which every check begins."""
        self.device.run("systemctl stop applications.slice")
        for command in ("orientation 0", "fullscreen off", "overlay hide"):
            self.device.run_in_session(CONTROL + command)

    def view(self, title):
        for view in self.read("views"):
            if view["attributes"]["title"] == title:
                return view
        return None

    def current(self):
        return self.read("current")["attributes"].get("title")

    def log(self, name):
        return self.device.expect("cat /run/%s.log" % name)

    def wait_for_line(self, name, line):
        try:
            self.device.wait_until("grep -qxF -- %s /run/%s.log" % (shlex.quote(line), name))
        except DeviceError:
            raise CheckFailed("no line %r in:\n%s" % (line, self.log(name))) from None

    def screen(self):
        """The picture on the virtual screen."""
        path = os.path.join(self.arguments.results, "screen.png")
        self.device.save_screen(path)
        return Image.open(path).convert("RGB")

    def screenshot(self):
        """The picture that the compositor takes of itself."""
        path = self.control("screenshot /home/device").strip()
        picture = Image.open(io.BytesIO(self.device.read_file(path))).convert("RGB")
        self.device.expect("rm " + path)
        return picture

    def save_picture(self, name):
        folder = os.path.join(self.arguments.results, "pictures")
        os.makedirs(folder, exist_ok=True)
        self.device.save_screen(os.path.join(folder, name + ".png"))


def keep_what_is_known(bench, name, message):
    """Puts beside the reason of a failure what the device says of it."""
    folder = os.path.join(bench.arguments.results, "failed", name)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "reason.txt"), "w", encoding="utf-8") as file:
        file.write(message + "\n")
    shutil.copy(bench.device.console_log, folder)
    try:
        bench.device.save_screen(os.path.join(folder, "screen.png"))
        for file_name, command in (("journal.txt", "journalctl --boot --no-pager --lines=200"),
                                   ("applications.txt", "tail -n 100 /run/*.log /tmp/*.log"),
                                   ("processes.txt", "ps axf")):
            with open(os.path.join(folder, file_name), "w", encoding="utf-8") as file:
                file.write(bench.device.run(command)[1])
    except (DeviceError, OSError) as error:
        print("# no more is known: %s" % error)


def run_check(bench, number, name, function):
    started = time.monotonic()
    try:
        function(bench)
    except Exception as error:  # Whatever it is, the check has not passed.
        message = str(error) if isinstance(error, (CheckFailed, DeviceError)) else repr(error)
        print("not ok %d - %s" % (number, name))
        print("\n".join("# " + line for line in message.splitlines()), flush=True)
        keep_what_is_known(bench, name.replace(" ", "-"), message)
        return False
    print("ok %d - %s (%.0f s)" % (number, name, time.monotonic() - started), flush=True)
    return True


def parse_arguments(*others):
    parser = argparse.ArgumentParser()
    for option in ("--parts", "--results", *others):
        parser.add_argument(option, required=True)
    parser.add_argument("--file", action="append", default=[])
    return parser.parse_args()


def run_checks(arguments, checks):
    """Runs checks, pairs of a name and a function, of which the first boots the device. Returns the exit status."""
    # Ends the device as well.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    shutil.rmtree(arguments.results, ignore_errors=True)
    os.makedirs(arguments.results)
    print("1..%d" % len(checks), flush=True)
    failures = 0
    with VirtualDevice(arguments.parts, SIZE, files=arguments.file) as device:
        bench = Bench(arguments, device)
        for number, (name, function) in enumerate(checks, 1):
            if not run_check(bench, number, name, function):
                failures += 1
                # Without a device that has booted and listens, nothing else can be found out.
                if number == 1 or device.process.poll() is not None:
                    print("Bail out! The device does not run.")
                    break
                bench.tidy()
    for name, values in bench.figures.items():
        print("# %s: %s; %.1f apart" % (name, ", ".join("%.1f" % value for value in values), max(values) - min(values)))
    return 1 if failures else 0
