# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""The virtual device as a process of this machine: QEMU, steered by its monitor and by the agent in the device."""

import base64
import io
import itertools
import json
import os
import shlex
import shutil
import socket
import subprocess
import tempfile
import time

# Of the tablet and the touch panel, over the whole screen.
LARGEST_POSITION = 32767


class DeviceError(Exception):
    """The device did not start, or did not do what was asked of it in time."""


class Monitor:
    """QEMU's monitor, by the protocol QMP."""

    def __init__(self, path):
        self.connection = socket.socket(socket.AF_UNIX)
        self.connection.settimeout(180)
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

    def wait_for_event(self, event):
        for line in self.lines:
            if json.loads(line).get("event") == event:
                return
        raise DeviceError("QEMU has ended")


class VirtualDevice:
    """One run of the device. Whatever is written to its disk is lost with it."""

    def __init__(self, parts, size=(1024, 600), memory=512, files=(), packages=(), display=("-display", "none"),
                 console=None):
        """parts: the folder with the kernel, the initrd and the disk. files, packages: what bring_files() brings.
        console: QEMU's character device for the serial line; a file of its own if none is given."""
        self.size = size
        self.directory = tempfile.TemporaryDirectory(prefix="virtual-device-")
        self.files = list(files)
        self.packages = list(packages)
        self.numbers = itertools.count(1)
        self.received = b""
        self.started = time.monotonic()
        self.console_log = self._path("console.log")
        self.process = subprocess.Popen(
            self._arguments(parts, memory, display, console),
            stdin=subprocess.DEVNULL if console is None else None)
        try:
            self.monitor = self._connected("monitor", Monitor)
            self.agent = self._connected("agent", self._connect)
        except BaseException:
            self.stop()
            raise

    def _path(self, name):
        return os.path.join(self.directory.name, name)

    def _arguments(self, parts, memory, display, console):
        width, height = self.size
        kernel = os.path.join(parts, "kernel")
        settings = ("console=ttyAMA0 quiet panic=-1 vt.global_cursor_default=0 video=%dx%d systemd.getty_auto=no"
                    % (width, height))
        if console is None:
            console = "file,path=" + self.console_log
        arguments = [
            "qemu-system-arm", "-machine", "virt,highmem=off", "-cpu", "cortex-a15", "-smp", "2", "-m", str(memory),
            "-nodefaults", "-no-user-config", "-accel", "tcg,thread=multi,tb-size=128",
            # The kernel's drivers for the screen and for input do not know the older form of the transport.
            "-global", "virtio-mmio.force-legacy=false",
            "-kernel", os.path.join(kernel, "vmlinuz"), "-initrd", os.path.join(kernel, "initrd.img"),
            "-append", settings,
            "-drive", "if=none,id=disk,format=raw,snapshot=on,file=" + os.path.join(parts, "disk.img"),
            "-device", "virtio-gpu-device,xres=%d,yres=%d" % (width, height),
            "-device", "virtio-keyboard-device", "-device", "virtio-tablet-device", "-device", "virtio-rng-device",
            "-device", "virtio-serial-device",
            "-chardev", "socket,id=agent,server=on,wait=off,path=" + self._path("agent"),
            "-device", "virtserialport,chardev=agent,name=agent",
            "-chardev", "%s,id=console" % console if "," not in console else console.replace(",", ",id=console,", 1),
            "-serial", "chardev:console",
            "-qmp", "unix:%s,server=on,wait=off" % self._path("monitor"), *display,
        ]
        # The devices of this machine are numbered from the last one on: the disk is to be the first.
        if self.files or self.packages:
            arguments += ["-drive", "if=none,id=files,format=raw,readonly=on,file=" + self._image(),
                          "-device", "virtio-blk-device,drive=files"]
        return arguments + ["-device", "virtio-blk-device,drive=disk"]

    def _image(self):
        """Makes a file system of the files and packages."""
        folder = self._path("files")
        os.mkdir(folder)
        subprocess.run(["cp", "-r", "--", *self.files, *self.packages, folder], check=True)
        size = int(subprocess.run(["du", "-sk", folder], check=True, stdout=subprocess.PIPE).stdout.split()[0])
        image = self._path("files.img")
        size = "%dk" % (size * 5 // 4 + 4096)
        subprocess.run(["mke2fs", "-q", "-t", "ext4", "-L", "host", "-d", folder, image, size], check=True,
                       stdout=subprocess.DEVNULL)
        shutil.rmtree(folder)
        return image

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

    def run(self, command, timeout=180, user=None, sink=None):
        """Runs a command of bash as root, or as another user. Returns its exit status and its output, both channels
        together. Writes the output to a binary file as it comes instead if there is a sink."""
        if user is not None:
            command = "cd ~%s && runuser -u %s -- bash -c %s" % (user, user, shlex.quote(command))
        if timeout is not None:
            # Ends the command in the device first: the agent runs one at a time.
            command = "timeout %d bash -c %s" % (timeout, shlex.quote(command))
        number = next(self.numbers)
        self.agent.sendall(b"%d %s\n" % (number, base64.b64encode(command.encode())))
        deadline = None if timeout is None else time.monotonic() + timeout + 30
        output = io.BytesIO()
        sink = sink or output
        while True:
            replied, kind, value = self._line(deadline, command).split()
            if replied != b"%d" % number:
                continue
            if kind == b"status":
                return int(value), output.getvalue().decode(errors="replace")
            sink.write(bytes.fromhex(value.decode()))
            sink.flush()

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
        self.expect("until { %s; } > /dev/null 2>&1; do sleep 0.5; done" % command, timeout=timeout, **arguments)

    def run_in_session(self, command, **arguments):
        """Runs a command as the device's user, who owns the compositor's session."""
        return self.run("in-session bash -c " + shlex.quote(command), **arguments)

    def in_session(self, command, **arguments):
        """The same for a command that must succeed; returns its output."""
        return self.expect("in-session bash -c " + shlex.quote(command), **arguments)

    def start(self, name, command):
        """Starts an application of the device's user, as a unit of the init system with that name in the slice
        applications. Both its channels go to the file /run/NAME.log."""
        self.expect("rm -f /run/%s.log && systemd-run --quiet --collect --unit=%s --slice=applications "
                    "-p StandardOutput=append:/run/%s.log -p StandardError=inherit in-session %s"
                    % (name, name, name, command))

    def bring_files(self):
        """Installs the packages, and puts the files into the home directory of the device's user."""
        self.expect("mkdir -p /media/host && mount -o ro LABEL=host /media/host")
        if self.packages:
            self.expect("cd /media/host && dpkg -i " + names_of(self.packages))
        if self.files:
            self.expect("cd /media/host && cp -r %s /home/device && cd /home/device && chown -R device: %s"
                        % ((names_of(self.files),) * 2))

    def read_file(self, path):
        return base64.b64decode(self.expect("base64 " + shlex.quote(path)))

    def save_screen(self, path):
        """Writes what the virtual screen shows into a file in the format PNG."""
        self.monitor.execute("screendump", filename=path, format="png")

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

    def restart(self):
        """Restarts the device from within; what was written to its disk is kept. It counts as powered on again."""
        self.agent.sendall(b"%d %s\n" % (next(self.numbers), base64.b64encode(b"systemctl reboot")))
        self.monitor.wait_for_event("RESET")
        self.started = time.monotonic()

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


def names_of(files):
    return " ".join(shlex.quote("./" + os.path.basename(file)) for file in files)


def position(pixel, size):
    """The middle of a pixel in the units of the tablet and the touch panel."""
    return int((pixel + 0.5) * (LARGEST_POSITION + 1) / size)
