# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: The Telvaro authors
"""A virtual X screen, its pointer and its pixels."""

import contextlib
import ctypes
import ctypes.util
import os
import subprocess
import time

import harness

_ALL_PLANES = ctypes.c_ulong(-1)
_Z_PIXMAP = 2
_LEFT_BUTTON = 1
_CHANGE_DEADLINE = 10


def _library(name):
    path = ctypes.util.find_library(name)
    return None if path is None else ctypes.CDLL(path)


_x11 = _library("X11")
_xtst = _library("Xtst")
IS_USABLE = _x11 is not None and _xtst is not None
if IS_USABLE:
    for _function in (_x11.XOpenDisplay, _x11.XGetImage):
        _function.restype = ctypes.c_void_p
    for _function in (_x11.XDefaultRootWindow, _x11.XGetPixel):
        _function.restype = ctypes.c_ulong


class Screen:
    """The connection to an X server."""

    def __init__(self, name):
        self.name = name
        self._display = ctypes.c_void_p(_x11.XOpenDisplay(name.encode()))
        if not self._display:
            raise RuntimeError(f"cannot connect to the X server {name}")
        self._root = ctypes.c_ulong(_x11.XDefaultRootWindow(self._display))

    def close(self):
        _x11.XCloseDisplay(self._display)

    def fill_with_windows(self, size):
        """Gives every window the size of the screen, as a window manager would."""
        root, parent, count = ctypes.c_ulong(), ctypes.c_ulong(), ctypes.c_uint()
        windows = ctypes.POINTER(ctypes.c_ulong)()
        _x11.XQueryTree(self._display, self._root, ctypes.byref(root), ctypes.byref(parent), ctypes.byref(windows),
                        ctypes.byref(count))
        for index in range(count.value):
            _x11.XMoveResizeWindow(self._display, ctypes.c_ulong(windows[index]), 0, 0, *size)
        _x11.XSync(self._display, False)

    def move_pointer(self, x, y):
        _xtst.XTestFakeMotionEvent(self._display, -1, x, y, 0)
        _x11.XSync(self._display, False)

    def pixel(self, x, y):
        image = ctypes.c_void_p(_x11.XGetImage(self._display, self._root, x, y, 1, 1, _ALL_PLANES, _Z_PIXMAP))
        value = _x11.XGetPixel(image, 0, 0)
        _x11.XDestroyImage(image)
        return value

    def click_until_changed(self, x, y):
        """Clicks, and returns the nanoseconds until this pixel has another colour."""
        before = self.pixel(x, y)
        start = time.monotonic_ns()
        for is_pressed in (True, False):
            _xtst.XTestFakeButtonEvent(self._display, _LEFT_BUTTON, is_pressed, 0)
        _x11.XFlush(self._display)
        while self.pixel(x, y) == before:
            if time.monotonic_ns() - start > _CHANGE_DEADLINE * 1e9:
                raise TimeoutError("a click changes nothing")
        return time.monotonic_ns() - start


@contextlib.contextmanager
def screen(size):
    """A screen of an X server of its own."""
    reading, writing = os.pipe()
    with os.fdopen(reading, "rb") as reader:
        server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "{}x{}x24".format(*size), "-nolisten", "tcp", "-ac"],
            pass_fds=[writing], stderr=subprocess.DEVNULL, preexec_fn=harness.end_with_parent)
        os.close(writing)
        try:
            result = Screen(":" + reader.readline().decode().strip())
            try:
                yield result
            finally:
                result.close()
        finally:
            server.terminate()
            server.wait()
