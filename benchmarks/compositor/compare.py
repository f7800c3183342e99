# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""Measures the reference compositor beside other small ones, into a file of results; writes none where it has to skip
everything."""

import argparse
import contextlib
import json
import os
import pathlib
import random
import shutil
import statistics
import time

import harness
import x11
from desks import DESKS, wait_until

SIZES = [(1280, 800), (1920, 1080)]
CROWDS = [1, 10, 50]
# Until the last frame is painted, or a compositor has tidied up after its clients.
SETTLING_SECONDS = 2


def wait_until_full(desk, client):
    wait_until(lambda: client.size() == desk.size, f"{desk.TITLE}: a window does not fill the screen")


def measure_frames(desk, client, damage, seconds):
    """Frames per second, and the compositor's processor time for each in milliseconds."""
    client.write(damage)
    time.sleep(0.5)
    frames, processor, start = client.count(), desk.processor_time(), time.monotonic()
    time.sleep(seconds)
    frames, processor = client.count() - frames, desk.processor_time() - processor
    duration = time.monotonic() - start
    client.write("still")
    return {f"{damage} frames": frames / duration, f"{damage} CPU": processor / 1e6 / max(frames, 1)}


def measure_click(desk, count):
    """Milliseconds from a click to the changed pixel on X."""
    x, y = desk.size[0] // 2, desk.size[1] // 2
    desk.screen.move_pointer(x, y)
    samples = []
    # The first one lets the pointer arrive.
    for _ in range(1 + count):
        samples.append(desk.screen.click_until_changed(x, y) / 1e6)
        time.sleep(random.uniform(0.03, 0.06))
    return statistics.median(samples[1:])


def measure_desk(desk, options):
    figures = {"start": desk.start / 1e6}
    with desk.client() as client:
        wait_until_full(desk, client)
        for damage in ("full", "small"):
            figures |= measure_frames(desk, client, damage, options.seconds)
        time.sleep(0.2)
        figures["click"] = measure_click(desk, options.clicks)
        screenshots = [desk.take_screenshot() for _ in range(3)]
        figures["screenshot"] = None if None in screenshots else statistics.median(screenshots) / 1e6
    return figures


def measure_memory(desk):
    """The memory in bytes by number of clients, in the order in which they came and went."""
    figures = {"idle": desk.memory()}
    with contextlib.ExitStack() as clients:
        count = 0
        for crowd in CROWDS:
            for _ in range(crowd - count):
                wait_until_full(desk, clients.enter_context(desk.client()))
            count = crowd
            time.sleep(SETTLING_SECONDS)
            figures[str(crowd)] = desk.memory()
    time.sleep(SETTLING_SECONDS)
    figures["gone"] = desk.memory()
    return figures


def installed_desks():
    """The names of the desks that can be measured; says which cannot."""
    names = []
    for name, desk in DESKS.items():
        missing = desk.missing()
        if missing is None:
            names.append(name)
        else:
            print(f"Skipped: {missing} is not installed.")
    return names


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--programs", required=True, help="the directory of the build")
    parser.add_argument("--output", required=True, type=pathlib.Path, help="the file of results")
    parser.add_argument("--quick", action="store_true", help="fewer and shorter rounds")
    options = parser.parse_args()
    options.rounds, options.seconds, options.clicks = (2, 2, 10) if options.quick else (5, 4, 30)

    if shutil.which("Xvfb") is None or not x11.IS_USABLE:
        print("Skipped: Xvfb or the libraries X11 and Xtst are not installed.")
        return
    names = installed_desks()
    if names == ["telvaro"]:
        print("Skipped: there is no compositor to compare with.")
        return

    results = {"rounds": options.rounds, "machine": harness.describe_machine(), "sizes": {}, "memory": {}}
    order = random.Random(1)
    for size in SIZES:
        rounds = {name: [] for name in names}
        for name in (name for _ in range(options.rounds) for name in order.sample(names, len(names))):
            with DESKS[name](options.programs, size) as desk:
                rounds[name].append(measure_desk(desk, options))
        results["sizes"]["{}x{}".format(*size)] = rounds
    for name in names:
        with DESKS[name](options.programs, SIZES[-1]) as desk:
            results["memory"][name] = measure_memory(desk)
    results["machine"]["load at the end"] = os.getloadavg()[0]
    options.output.write_text(json.dumps(results, indent=1), encoding="utf-8")


if __name__ == "__main__":
    main()
