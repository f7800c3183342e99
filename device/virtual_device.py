# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""The virtual device as a process of this machine: QEMU, steered by its monitor and by the agent in the device."""

import base64
import itertools
import json
import os
import shlex
import socket
import subprocess
import tempfile
import time

RUNTIME_DIRECTORY = "/run/user/1000"
# Under which an application of the device's user finds the bus and the compositor.
SESSION = {
    "DBUS_SESSION_BUS_ADDRESS": "unix:path=%s/bus" % RUNTIME_DIRECTORY,
    "QT_QPA_PLATFORM": "wayland",
    "WAYLAND_DISPLAY": "wayland-1",
    "XDG_RUNTIME_DIR": RUNTIME_DIRECTORY,
}
# Of the tablet and the touch panel, over the whole screen.
LARGEST_POSITION = 32767


class DeviceError(Exception):
    """The device did not start, or did not do what was asked of it in time."""


class Monitor:
    """QEMU's monitor, by the protocol QMP."""

    def __init__(self, path):
        self.connection = socket.socket(socket.AF_UNIX)
        self.connection.connect(path)
        self.lines = self.connection.makefile("r")
        self.lines.readline()
        self.execute("qmp_capabilities")

    def execute(self, command, **arguments):
        """Returns the command's result; the events that arrive meanwhile are dropped."""
        request = {"execute": command, "arguments": arguments}
        self.connection.sendall(json.dumps(request).encode() + b"\n")
        for line in self.lines:
            reply = json.loads(line)
            if "error" in reply:
                raise DeviceError("%s: %s" % (command, reply["error"]["desc"]))
            if "return" in reply:
                return reply["return"]
        raise DeviceError("QEMU has ended")


class VirtualDevice:
    """One run of the device. Whatever is written to its disk is lost with it."""

    def __init__(self, parts, size=(1024, 600), memory=512, files=None, display=("-display", "none"), console=None):
        """parts: the folder with the kernel, the initrd and the disk. files: an image of a file system, which the
        device mounts as /media/host. console: QEMU's character device for the serial line; a file of its own if none
        is given."""
        self.size = size
        self.directory = tempfile.TemporaryDirectory(prefix="virtual-device-")
        self.numbers = itertools.count(1)
        self.received = b""
        self.started = time.monotonic()
        self.console_log = self._path("console.log")
        self.process = subprocess.Popen(
            self._arguments(parts, memory, files, display, console or "file,path=" + self.console_log),
            stdin=subprocess.DEVNULL if console is None else None)
        try:
            self.monitor = self._connected("monitor", Monitor)
            self.agent = self._connected("agent", self._connect)
        except BaseException:
            self.stop()
            raise

    def _path(self, name):
        return os.path.join(self.directory.name, name)

    def _arguments(self, parts, memory, files, display, console):
        width, height = self.size
        kernel = os.path.join(parts, "kernel")
        arguments = [
            "qemu-system-arm", "-machine", "virt,highmem=off", "-cpu", "cortex-a15", "-smp", "2", "-m", str(memory),
            "-nodefaults", "-no-user-config", "-accel", "tcg,thread=multi,tb-size=128",
            # The kernel's drivers for the screen and for input do not know the older form of the transport.
            "-global", "virtio-mmio.force-legacy=false",
            "-kernel", os.path.join(kernel, "vmlinuz"), "-initrd", os.path.join(kernel, "initrd.img"),
            "-append", "console=ttyAMA0 quiet panic=-1 vt.global_cursor_default=0 video=%dx%d" % (width, height),
            "-drive", "if=none,id=disk,format=raw,snapshot=on,file=" + os.path.join(parts, "disk.img"),
            "-device", "virtio-gpu-device,xres=%d,yres=%d" % (width, height),
            "-device", "virtio-keyboard-device", "-device", "virtio-tablet-device", "-device", "virtio-rng-device",
            "-device", "virtio-serial-device",
            "-chardev", "socket,id=agent,server=on,wait=off,path=" + self._path("agent"),
            "-device", "virtconsole,chardev=agent",
            "-chardev", "%s,id=console" % console if "," not in console else console.replace(",", ",id=console,", 1),
            "-serial", "chardev:console",
            "-qmp", "unix:%s,server=on,wait=off" % self._path("monitor"), *display,
        ]
        # The devices of this machine are numbered from the last one on: the disk is to be the first.
        if files is not None:
            arguments += ["-drive", "if=none,id=files,format=raw,readonly=on,file=" + files,
                          "-device", "virtio-blk-device,drive=files"]
        return arguments + ["-device", "virtio-blk-device,drive=disk"]

    @staticmethod
    def _connect(path):
        connection = socket.socket(socket.AF_UNIX)
        connection.connect(path)
        return connection

    def _connected(self, name, connect):
        deadline = time.monotonic() + 20
        while True:
            try:
                return connect(self._path(name))
            except (ConnectionRefusedError, FileNotFoundError):
                if self.process.poll() is not None:
                    raise DeviceError("QEMU has ended with status %d" % self.process.returncode) from None
                if time.monotonic() > deadline:
                    raise
                time.sleep(0.05)

    def wait_for_agent(self, timeout=180):
        """Waits until the init system in the device has started the agent; commands can be run from then on."""
        deadline = time.monotonic() + timeout
        while self._line(deadline, "the agent") != b"ready":
            pass

    def run(self, command, timeout=180, environment=None, user=None):
        """Runs a command of bash as root, or as another user in its session. Returns its exit status and its output,
        both channels together."""
        for name, value in (environment or {}).items():
            command = "export %s=%s; %s" % (name, shlex.quote(value), command)
        if user is not None:
            command = "cd ~%s && runuser -u %s -- bash -c %s" % (user, user, shlex.quote(command))
        number = next(self.numbers)
        self.agent.sendall(b"%d %s\n" % (number, base64.b64encode(command.encode())))
        deadline = None if timeout is None else time.monotonic() + timeout
        while True:
            replied, status, *output = self._line(deadline, command).split()
            if replied == b"%d" % number:
                return int(status), base64.b64decode(b"".join(output)).decode(errors="replace")

    def _line(self, deadline, command):
        while b"\n" not in self.received:
            left = None if deadline is None else deadline - time.monotonic()
            if left is not None and left <= 0:
                raise DeviceError("no reply in time to: " + command)
            self.agent.settimeout(left)
            try:
                data = self.agent.recv(65536)
            except socket.timeout:
                continue
            if not data:
                raise DeviceError("the device has ended")
            self.received += data
        line, self.received = self.received.split(b"\n", 1)
        return line.strip()

    def expect(self, command, **arguments):
        """Runs a command that must succeed and returns its output."""
        status, output = self.run(command, **arguments)
        if status != 0:
            raise DeviceError("%s\nended with status %d: %s" % (command, status, output))
        return output

    def wait_until(self, command, timeout=180, **arguments):
        """Waits in the device until the command succeeds."""
        self.expect("until { %s; } > /dev/null 2>&1; do sleep 0.1; done" % command, timeout=timeout, **arguments)

    def run_in_session(self, command, **arguments):
        """Runs a command as the device's user, who owns the compositor's session."""
        return self.run(command, environment=SESSION, user="device", **arguments)

    def in_session(self, command, **arguments):
        """The same for a command that must succeed; returns its output."""
        return self.expect(command, environment=SESSION, user="device", **arguments)

    def start(self, name, command):
        """Starts an application of the device's user, as a unit of the init system with that name."""
        settings = " ".join("-E %s=%s" % (key, shlex.quote(value)) for key, value in SESSION.items())
        self.expect("systemd-run --quiet --collect --uid=device --unit=%s %s %s" % (name, settings, command))

    def screen(self):
        """What the virtual screen shows: a file in the format PPM."""
        path = self._path("screen.ppm")
        self.monitor.execute("screendump", filename=path)
        with open(path, "rb") as file:
            return file.read()

    def tap(self, x, y):
        """Taps on a pixel of the screen."""
        self._pointer(x, y, True)
        self._pointer(x, y, False)

    def _pointer(self, x, y, down):
        width, height = self.size
        self.monitor.execute("input-send-event", events=[
            {"type": "abs", "data": {"axis": "x", "value": position(x, width)}},
            {"type": "abs", "data": {"axis": "y", "value": position(y, height)}},
            {"type": "btn", "data": {"button": "left", "down": down}},
        ])

    def touch(self, *lines):
        """Sends lines to the touch panel; see device/touch-panel.cpp."""
        self.expect("printf '%%s\\n' %s > /run/touch-panel" % " ".join(shlex.quote(line) for line in lines))

    def type_keys(self, *names):
        """Presses keys together, by QEMU's names, and releases them."""
        self.monitor.execute("send-key", keys=[{"type": "qcode", "data": name} for name in names])

    def wait(self):
        """Waits until the device has been switched off from within, and returns QEMU's exit status."""
        return self.process.wait()

    def stop(self):
        """Ends the device at once, and removes what it has left."""
        if self.process.poll() is None:
            try:
                self.monitor.execute("quit")
            except (AttributeError, DeviceError, OSError):
                self.process.terminate()
            try:
                self.process.wait(10)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        self.directory.cleanup()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()


def position(pixel, size):
    """The middle of a pixel in the units of the tablet and the touch panel."""
    return int((pixel + 0.5) * (LARGEST_POSITION + 1) / size)
