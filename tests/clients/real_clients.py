# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""Runs clients of real toolkits in a session: each one once, then all of them at random for some time."""

import argparse
import collections
import contextlib
import os
import pathlib
import random
import shutil
import signal
import struct
import subprocess
import sys
import time
import zlib

# A browser's window has the title only after it has drawn the page.
Client = collections.namedtuple("Client", "package app_id command title", defaults=[None, ""])

PAGE = """<!DOCTYPE html><title>Page</title><body style="background: linear-gradient(tan, teal)">
<p><input autofocus> <select><option>one<option>two</select> <button onclick="alert('clicked')">Alert</button></p>
<canvas width="300" height="200" style="touch-action: none"></canvas><div style="height: 3000px">Scroll</div>
<script>
let frames = 0;
const pen = document.querySelector("canvas").getContext("2d");
(function draw(time) {
    pen.fillStyle = `hsl(${time / 10} 80% 50%)`;
    pen.fillRect(time / 5 % 300, time / 7 % 200, 40, 40);
    frames += 1;
    if (frames === 30) document.title = "Drawn";
    requestAnimationFrame(draw);
})(0);
</script>"""

SCENE = """import QtQuick 2.15
import QtQuick.Window 2.15
Window {
    visible: true; width: 500; height: 400; title: "Scene"
    ListView {
        anchors.fill: parent; model: 200
        delegate: Rectangle {
            width: 500; height: 30; color: Qt.hsla(index % 20 / 20, 0.6, 0.6, 1)
            TextInput { anchors.fill: parent; text: "line " + index; focus: index === 0 }
        }
    }
    MultiPointTouchArea {
        width: 200; height: 200; anchors.right: parent.right
        onPressed: spinner.color = "red"
        onReleased: spinner.color = "green"
    }
    Rectangle {
        id: spinner
        width: 120; height: 120; anchors.right: parent.right; color: "blue"
        RotationAnimation on rotation { from: 0; to: 360; duration: 3000; loops: Animation.Infinite }
        DragHandler {}
    }
}"""

QT_EXAMPLES = "/usr/lib/*/qt5/examples/widgets"

# A terminal runs no shell: what is typed at random must not be executed.
CLIENTS = {
    "gtk3-demo": Client("gtk-3-examples", "gtk3-demo"),
    "gtk3-widget-factory": Client("gtk-3-examples", "gtk3-widget-factory"),
    "gtk4-demo": Client("gtk-4-examples", "org.gtk.Demo4"),
    "gtk4-widget-factory": Client("gtk-4-examples", "org.gtk.WidgetFactory4"),
    "foot": Client("foot", "foot", "foot sh -c 'ls --color=always /usr/bin; exec cat'"),
    "mpv": Client("mpv", "mpv",
                  "mpv --no-config --no-audio --vo=wlshm --osd-level=3 av://lavfi:testsrc=size=640x360:rate=25"),
    "imv": Client("imv", "imv", "imv-wayland picture.png"),
    "firefox": Client("firefox-esr", "firefox-esr",
                      "MOZ_ENABLE_WAYLAND=1 firefox-esr --no-remote --profile $PROFILE page.html", "Drawn"),
    "chromium": Client("chromium", "chromium",
                       "chromium --ozone-platform=wayland --no-sandbox --no-first-run --user-data-dir=$PROFILE"
                       " page.html", "Drawn"),
    "qml": Client("qmlscene", "org.qt-project.qmlscene", "qmlscene scene.qml"),
    "qml-software": Client("qmlscene", "org.qt-project.qmlscene", "QT_QUICK_BACKEND=software qmlscene scene.qml"),
    "qt-textedit": Client("qtbase5-examples", "textedit", QT_EXAMPLES + "/richtext/textedit/textedit"),
    "qt-fridgemagnets": Client("qtbase5-examples", "fridgemagnets",
                               QT_EXAMPLES + "/draganddrop/fridgemagnets/fridgemagnets"),
    "qt-standarddialogs": Client("qtbase5-examples", "standarddialogs",
                                 QT_EXAMPLES + "/dialogs/standarddialogs/standarddialogs"),
    "weston-terminal": Client("weston", "org.freedesktop.weston.wayland-terminal", "weston-terminal --shell=/bin/cat"),
    "weston-presentation-shm": Client("weston", "weston-presenta"),
    "weston-simple-touch": Client("weston", "simple-touch"),
}
CLIENTS.update({"weston-" + name: Client("weston", "org.freedesktop.weston." + app_id) for name, app_id in {
    "clickdot": "wayland-clickdot",
    "cliptest": "cliptest",
    "dnd": "wayland-drag-and-drop-demo",
    "eventdemo": "eventdemo",
    "flower": "flower",
    "fullscreen": "fullscreen",
    "resizor": "wayland-resizor",
    "scaler": "scaler-test-box",
    "simple-damage": "simple-damage",
    "simple-egl": "simple-egl",
    "simple-shm": "simple-shm",
    "smoke": "smoke",
    "stacking": "stacking-test",
    "subsurfaces": "wayland-sub-surface-demo",
    "transformed": "transformed",
}.items()})

WIDTH, HEIGHT = 1024, 600
PATIENCE = 60  # Seconds; sanitizers and a busy machine are slow.


class Finding(Exception):
    """Something is wrong with the compositor."""


def wait_until(condition, seconds=PATIENCE):
    """The condition's value as soon as it is true, or its last one after that time."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value or time.monotonic() > end:
            return value
        time.sleep(0.1)


def pixels(path):
    """The pixels of a PNG file with 8 bits per channel, as bytes, a row each, with the number of bytes per pixel."""
    data = path.read_bytes()
    width, height, depth, colour = struct.unpack(">IIBB", data[16:26])
    if depth != 8 or colour not in (2, 6):
        raise ValueError(f"{path}: depth {depth}, colour type {colour}")
    compressed, position = b"", 8
    while position < len(data):
        length, kind = struct.unpack(">I4s", data[position:position + 8])
        if kind == b"IDAT":
            compressed += data[position + 8:position + 8 + length]
        position += length + 12
    raw = zlib.decompress(compressed)
    step = 3 if colour == 2 else 4
    stride = width * step
    rows, above = [], bytearray(stride)
    for y in range(height):
        kind, row = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        if kind:
            for i in range(stride):
                left, up, corner = (row[i - step], above[i], above[i - step]) if i >= step else (0, above[i], 0)
                if kind == 4:
                    estimate = left + up - corner
                    guess = min((left, up, corner), key=lambda value: abs(estimate - value))
                else:
                    guess = (left, up, (left + up) // 2)[kind - 1]
                row[i] = (row[i] + guess) & 255
        rows.append(bytes(row))
        above = row
    return rows, step


def content(path, empty):
    """How many pixels of a thousand differ from the empty desk below the status bar, and how many colours they have."""
    (rows, step), (empty_rows, _) = pixels(path), pixels(empty)
    colours, differing, total = set(), 0, 0
    for row, empty_row in zip(rows[40:], empty_rows[40:]):
        total += len(row) // step
        if row != empty_row:
            for i in range(0, len(row), step):
                if row[i:i + step] != empty_row[i:i + step]:
                    differing += 1
                    colours.add(row[i:i + step])
    return differing * 1000 // total, len(colours)


def grid(path):
    """The pixels of a PNG file without their opacity, as a list of rows."""
    rows, step = pixels(path)
    return [[row[i:i + 3] for i in range(0, len(row), step)] for row in rows]


class Desk:
    """A session without a display, its compositor, and what can be done in it."""

    def __init__(self, programs, directory, log):
        self.programs, self.directory, self.log = programs, directory, log
        self.running, self.started = {}, 0
        home = directory / "home"
        home.mkdir()
        environment = directory / "session.env"
        report = f"log_path={directory}/sanitizer"
        lsan = pathlib.Path(__file__).parent.parent / "sanitizers/lsan.supp"
        variables = dict(os.environ, HOME=str(home), TELVAROCTL_TIMEOUT=str(PATIENCE),
                         ASAN_OPTIONS=report, UBSAN_OPTIONS=report + ":print_stacktrace=1",
                         LSAN_OPTIONS=f"suppressions={lsan}:print_suppressions=0")
        self.output = open(directory / "session.log", "w")
        self.session = subprocess.Popen(
            [programs / "telvaro-session", "--headless", "--size", f"{WIDTH}x{HEIGHT}", "--env-file", environment],
            env=variables, stdin=subprocess.DEVNULL, stdout=self.output, stderr=subprocess.STDOUT)
        wait_until(lambda: environment.exists() or self.session.poll() is not None)
        if not environment.exists():
            raise Finding("the session does not start")
        listing = subprocess.run(["bash", "-c", f". {environment}; env -0"], env=variables, stdout=subprocess.PIPE,
                                 check=True, text=True).stdout
        self.environment = dict(line.split("=", 1) for line in listing.split("\0") if line)
        # Qt D-Bus sometimes still owns a message when telvaroctl exits, which is no leak of the compositor.
        self.environment["ASAN_OPTIONS"] += ":detect_leaks=0"
        # Nothing listens there: the browsers stay off the network.
        self.environment.update(http_proxy="http://localhost:9", https_proxy="http://localhost:9")
        self.compositor = self.find_compositor()
        self.pictures = directory / "pictures"
        self.pictures.mkdir()

    def find_compositor(self):
        parents = [self.session.pid]
        for parent in parents:
            children = [int(pid) for task in pathlib.Path(f"/proc/{parent}/task").iterdir()
                        for pid in (task / "children").read_text().split()]
            for child in children:
                if pathlib.Path(f"/proc/{child}/comm").read_text().startswith("telvaro-composi"):
                    return child
            parents += children
        raise Finding("the session has no compositor")

    def control(self, *arguments):
        """Runs a command of telvaroctl and returns its output, or None where it fails."""
        self.log(" ".join(arguments))
        try:
            done = subprocess.run([self.programs / "telvaroctl", *arguments], env=self.environment, text=True,
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=2 * PATIENCE)
        except subprocess.TimeoutExpired:
            raise Finding(f"no end of: telvaroctl {' '.join(arguments)}") from None
        if self.session.poll() is not None:
            raise Finding("the compositor has ended")
        if "does not answer" in done.stderr:
            raise Finding(done.stderr.strip())
        if done.returncode:
            self.log(f"  {done.returncode}: {done.stderr.strip()}")
        return None if done.returncode else done.stdout

    def descriptors(self):
        folder = f"/proc/{self.compositor}/fd"
        found = collections.Counter()
        for name in os.listdir(folder):
            with contextlib.suppress(FileNotFoundError):
                found[os.readlink(f"{folder}/{name}").split(":")[0]] += 1
        return found

    def picture(self, name):
        """Takes a screenshot into the pictures."""
        path = self.control("screenshot", str(self.directory))
        if path is None:
            raise Finding("no screenshot")
        return pathlib.Path(shutil.move(path.strip(), self.pictures / f"{name}.png"))

    def capture(self):
        """Takes a picture by grim and returns its path, or None where grim fails."""
        self.log("grim")
        path = self.pictures / "grim.png"
        try:
            done = subprocess.run(["grim", path], env=self.environment, stdin=subprocess.DEVNULL, stdout=self.output,
                                  stderr=subprocess.STDOUT, timeout=2 * PATIENCE)
        except subprocess.TimeoutExpired:
            raise Finding("no end of: grim") from None
        return None if done.returncode else path

    def start(self, name):
        self.log(f"start {name}")
        self.started += 1
        profile = self.directory / f"home/profile-{self.started}"
        profile.mkdir()
        client = subprocess.Popen(["sh", "-c", CLIENTS[name].command or name], cwd=self.directory,
                                  start_new_session=True, env=dict(self.environment, PROFILE=str(profile)),
                                  stdin=subprocess.DEVNULL, stdout=self.output, stderr=subprocess.STDOUT)
        self.running[client] = profile
        return client

    def send(self, client, number):
        """Sends a signal to all processes of a client; one that has ended takes none."""
        self.log(f"{number.name} {client.pid}")
        with contextlib.suppress(ProcessLookupError):
            os.killpg(client.pid, number)

    def kill(self, client):
        self.send(client, signal.SIGKILL)
        client.wait()
        shutil.rmtree(self.running.pop(client), ignore_errors=True)

    def no_views(self):
        return wait_until(lambda: self.control("views", "--format", "{{appId}}") == "")

    def end(self):
        """Terminates the compositor and what is left of the clients; yields what was wrong with its end."""
        if self.session.poll() is None:
            os.kill(self.compositor, signal.SIGTERM)
        try:
            self.session.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.session.kill()
            yield "the session does not end"
        for client in list(self.running):
            self.kill(client)
        self.output.close()
        endings = [line for line in (self.directory / "session.log").read_text(errors="replace").splitlines()
                   if "telvaro-compositor has ended with" in line]
        if len(endings) != 1 or not endings[0].endswith("exit status 0"):
            yield f"the compositor's end: {endings}"
        for report in sorted(self.directory.glob("sanitizer.*")):
            yield f"{report}: {next((line for line in report.open() if 'error' in line.lower()), '').strip()}"


def try_client(desk, name, empty):
    """Starts a client, looks at it, types, taps and closes it; returns what was wrong."""
    app_id = CLIENTS[name].app_id
    client = desk.start(name)
    try:
        if desk.control("wait", "--app", app_id, "--timeout", str(PATIENCE)) is None:
            return f"no view of {app_id}"
        differing = colours = 0

        def has_content():
            nonlocal differing, colours
            if CLIENTS[name].title not in (desk.control("views", "--format", "{{title}}") or ""):
                return False
            differing, colours = content(desk.picture(name), empty)
            return differing > 10 and colours > 3

        if not wait_until(has_content):
            return f"draws nothing: {differing} of 1000 pixels differ from an empty desk, in {colours} colours"
        for command in (["type", "hello"], ["tap", str(WIDTH // 2), str(HEIGHT // 2)], ["key", "Ctrl+Alt+W"]):
            if desk.control(*command) is None:
                return f"{command[0]} failed"
        # No failure: a client may ask first, or the tap has opened a menu, which is closed instead.
        if desk.control("wait", "--app", app_id, "--gone", "--timeout", "10") is None:
            desk.picture(name + "-open")
        return ""
    finally:
        desk.kill(client)
        if not desk.no_views():
            raise Finding(f"the views of {name} stay")


def try_grim(desk):
    """Compares the picture of grim with the screenshot, in every orientation; returns what was wrong."""
    def is_screenshot(turns):
        picture = desk.capture()
        expected = grid(desk.picture("grim-expected"))
        for _ in range(turns):
            expected = [list(column) for column in zip(*expected)][::-1]
        return picture is not None and grid(picture) == expected

    try:
        for turns in range(4):
            desk.control("orientation", str(90 * turns))
            # The clock may change between the pictures.
            if not wait_until(lambda: is_screenshot(turns), 5):
                return f"not the screenshot at {90 * turns} degrees"
        return ""
    finally:
        desk.control("orientation", "0")


class Soak:
    """Random actions; which, depends on the seed alone, and not on how far the clients are."""

    def __init__(self, desk, names, seed):
        self.desk, self.names, self.random = desk, names, random.Random(seed)
        self.clients = [None] * 6
        self.count = 0
        choices = {self.start: 5, self.kill: 1, self.stop: 1, self.resume: 3, self.tap: 5, self.click: 3, self.drag: 5,
                   self.scroll: 2, self.type: 4, self.key: 5, self.turn: 1, self.full_screen: 1, self.notify: 1,
                   self.screenshot: 1, self.capture: 1, self.overlay: 1}
        self.actions, self.weights = zip(*choices.items())

    def run(self, seconds):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.random.choices(self.actions, self.weights)[0]()
            self.count += 1

    def place(self):
        return self.random.randrange(len(self.clients))

    def position(self):
        # Within the screen upright and turned.
        return [str(self.random.randrange(HEIGHT)), str(self.random.randrange(HEIGHT))]

    def start(self):
        place, name = self.place(), self.random.choice(self.names)
        self.end_client(place)
        self.clients[place] = self.desk.start(name)

    def end_client(self, place):
        if self.clients[place]:
            self.desk.kill(self.clients[place])
            self.clients[place] = None

    def kill(self):
        self.end_client(self.place())

    def stop(self):
        client = self.clients[self.place()]
        if client:
            self.desk.send(client, signal.SIGSTOP)

    def resume(self):
        client = self.clients[self.place()]
        if client:
            self.desk.send(client, signal.SIGCONT)

    def tap(self):
        self.desk.control("tap", *self.position())

    def click(self):
        button = self.random.choice(["left", "left", "right", "middle"])
        self.desk.control("click", "--button", button, *self.position())

    def drag(self):
        options = self.random.choice([[], ["--pointer"]])
        self.desk.control("drag", *options, *self.position(), *self.position())

    def scroll(self):
        self.desk.control("scroll", *self.position(), self.random.choice(["up", "down", "left", "right"]))

    def type(self):
        self.desk.control("type", self.random.choice(["hello", "The quick brown fox", "a\tb\n", "42"]))

    def key(self):
        self.desk.control("key", self.random.choice(
            ["Alt+Tab", "Alt+Shift+Tab", "Ctrl+Alt+PgDown", "Ctrl+Alt+W", "Ctrl+Alt+K", "Ctrl+Alt+B", "Ctrl+Alt+R",
             "F1", "F10", "F11", "Esc", "Tab", "Return", "Down", "Ctrl+A", "Ctrl+C", "Ctrl+V", "Ctrl+O"]))

    def turn(self):
        self.desk.control("orientation", self.random.choice(["0", "90", "180", "270"]))

    def full_screen(self):
        self.desk.control("fullscreen", "toggle")

    def notify(self):
        self.desk.control("notify", "--expire", "3000", "--action", "a=Open", "Note", "Something has happened")

    def screenshot(self):
        self.desk.picture("soak")

    def capture(self):
        # grim may fail: a key may still be rotating the screen.
        self.desk.capture()

    def overlay(self):
        self.desk.control("overlay", *self.random.choice([["show", "Wait"], ["hide"]]))

    def leave(self):
        """Ends all clients, and puts the desk back."""
        for place in range(len(self.clients)):
            self.end_client(place)
        settings = ["screen", "--orientation", "landscape", "--fullscreen", "off"]
        for command in (["overlay", "hide"], settings, ["status"]):
            if self.desk.control(*command) is None:
                raise Finding(f"{command[0]} failed")
        if not self.desk.no_views():
            raise Finding("views stay after all clients have ended")


def run(arguments, log):
    """Both parts, in one session; returns what was wrong."""
    directory = arguments.directory
    (directory / "page.html").write_text(PAGE)
    (directory / "scene.qml").write_text(SCENE)
    problems = []
    desk = Desk(arguments.programs, directory, log)
    try:
        empty = desk.picture("empty")
        shutil.copy(empty, directory / "picture.png")
        problem = try_grim(desk)
        print(f"grim: {problem or 'ok'}", flush=True)
        if problem:
            problems.append(f"grim: {problem}")
        names = [name for name, client in CLIENTS.items() if client.package in arguments.packages]
        for name in names:
            problem = try_client(desk, name, empty)
            print(f"{name}: {problem or 'ok'}", flush=True)
            if problem:
                problems.append(f"{name}: {problem}")

        soak = Soak(desk, names, arguments.seed)
        soak.notify()  # The first look for an icon opens the caches of the themes, for good.
        idle = desk.descriptors()
        start = time.monotonic()
        try:
            soak.run(arguments.minutes * 60)
        finally:
            print(f"{soak.count} actions in {(time.monotonic() - start) / 60:.1f} minutes, seed {arguments.seed},"
                  f" {desk.started - len(names)} clients", flush=True)
        soak.leave()
        if not wait_until(lambda: not desk.descriptors() - idle):
            problems.append(f"descriptors beyond the {sum(idle.values())} before: {dict(desk.descriptors() - idle)}")
    except Finding as finding:
        problems.append(str(finding))
    finally:
        problems += desk.end()
    return problems


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", type=pathlib.Path, required=True)
    parser.add_argument("--directory", type=pathlib.Path, required=True)
    parser.add_argument("--minutes", type=float, required=True)
    parser.add_argument("--seed", type=int, required=True)
    parser.add_argument("packages", nargs="+")
    arguments = parser.parse_args()
    start = time.monotonic()
    with open(arguments.directory / "actions.log", "w") as file:
        def log(line):
            print(f"{time.monotonic() - start:.2f} {line}", file=file, flush=True)

        try:
            problems = run(arguments, log)
        except Finding as finding:
            problems = [str(finding)]
    for problem in problems:
        print(f"FAILED: {problem}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
