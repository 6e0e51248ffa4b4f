"""A display with a window manager, a bus, and a home, for what is led from outside by what screen readers see."""

import os
import subprocess
import time

import gi
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # finds its bus when it is first asked


def _attempt(find):
    try:
        return find()
    except GLib.Error:  # of a program that just starts or ends, or an item that went
        return None


def wait(what, find, seconds=20):
    deadline = time.monotonic() + seconds
    while not (found := _attempt(find)):
        if time.monotonic() > deadline:
            raise TimeoutError(f"waited in vain for {what}")
        while GLib.MainContext.default().iteration(False):  # events arrive
            pass
        time.sleep(0.05)
    return found


def output(*command):
    return subprocess.run(command, capture_output=True, text=True).stdout


def items(item=None):
    """All of all programs, or from this one on, with what cannot be asked left out: it starts or ends."""
    try:
        if item:
            yield item
        else:
            item = Atspi.get_desktop(0)
        for index in range(item.get_child_count()):
            if child := item.get_child_at_index(index):
                yield from items(child)
    except GLib.Error:
        return


class Session:
    def __init__(self, folder, **environment):
        self._processes = []
        self._home = folder / "home"
        self._home.mkdir(exist_ok=True)
        (folder / "run").mkdir(mode=0o700)
        for name in [name for name in os.environ if name.startswith(("XDG_", "DBUS_", "QT_", "GTK_"))]:
            del os.environ[name]
        os.environ.update(HOME=str(self._home), XDG_RUNTIME_DIR=str(folder / "run"), LC_ALL="C.UTF-8",
                          GSETTINGS_BACKEND="memory", **environment)
        os.environ["DISPLAY"] = ":" + self._first_line(
            "Xvfb", "-displayfd", "1", "-screen", "0", "1100x1000x24", "-noreset", "-nolisten", "tcp")
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = self._first_line(
            "dbus-daemon", "--session", "--nofork", "--print-address=1")
        self.start("openbox")
        wait("openbox", lambda: "window id" in output("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"))

    def start(self, *command, messages="messages"):
        with open(self._home / messages, "ab") as file:
            self._processes.append(subprocess.Popen(command, stdout=subprocess.PIPE, stderr=file))
        return self._processes[-1]

    def _first_line(self, *command):
        return self.start(*command).stdout.readline().decode().strip()

    def messages(self, name="messages"):
        return (self._home / name).read_text(errors="replace")

    def end(self):
        for process in reversed(self._processes):
            process.terminate()
            process.communicate()
