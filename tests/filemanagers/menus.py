"""The program's commands in the menu of a real file manager, on a display and a bus of their own.

usage: menus.py INSTALL_SCRIPT MANAGER [PICTURE]

Selects files of any name, opens the menu by keyboard, takes our commands in it, and sees what a stand-in
for the program is called with. PICTURE is where a picture of the menu goes. Exit status: 0 all well; 77
without the file manager, or the bindings for what screen readers see.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import urllib.parse

sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
try:
    from desktop_session import Atspi, Session, items, output, wait
except (ImportError, ValueError):
    sys.exit(77)

NAMES = [b"plain.txt", b"-rf", b"it's \"50% $HOME `x` \\ &;#?.txt", b"%F %U %25 _x", b"new\nline",
         "gr\u00fc\u00df \u65e5\u672c \U0001f4e6".encode(), b"folder"]
NOT_UTF8 = b"caf\xe9.txt"

LABELS = {
    "en": ("Make archive…", "Make archive here"),
    "de": ("Archiv erstellen …", "Archiv hier erstellen"),
    "es": ("Crear archivo comprimido…", "Crear archivo comprimido aquí"),
    "fr": ("Créer une archive…", "Créer une archive ici"),
    "ja": ("アーカイブを作成…", "ここにアーカイブを作成"),
}

# By name: how to start it on a folder, and the language it is asked in. Thunar has our commands in a menu
# of its menu, and starts them for files and for folders apart. Dolphin shows its menu to no screen reader
# but is led by keys, and has no names that are no UTF-8. Nautilus listens to keys once a file is selected.
MANAGERS = {
    "thunar": {"start": "thunar {}", "language": "en", "submenu": "Send To", "calls": 2},
    "nautilus": {"start": "nautilus --select {}/plain.txt", "language": "es"},
    "nemo": {"start": "nemo {}", "language": "fr"},
    "caja": {"start": "caja --no-desktop --browser {}", "language": "ja"},
    "pcmanfm": {"start": "pcmanfm --no-desktop {}", "language": "de"},
    "dolphin": {"start": "dolphin {}", "language": "de", "keys": (("Up",) * 3, ("Up",) * 2),
                "names": NAMES},
}

STAND_IN = """#!/bin/sh
printf '%s\\0' "$@" > "$HOME/$$"
mv "$HOME/$$" "$HOME/calls"
"""


class Menus(Session):
    """Where the commands are installed."""

    def __init__(self, folder, install_script, language):
        self._calls = folder / "home" / "calls"
        self._calls.mkdir(parents=True)
        stand_in = folder / "parcelo"
        stand_in.write_text(STAND_IN)
        stand_in.chmod(0o755)
        subprocess.run(
            ["cmake", f"-DCMAKE_INSTALL_PREFIX={folder}/home/.local", "-DCMAKE_INSTALL_COMPONENT=window",
             "-P", install_script], check=True, stdout=subprocess.DEVNULL)
        for menu in folder.glob("home/.local/share/kio/servicemenus/*"):
            menu.chmod(0o755)  # or Dolphin does not trust what is in a home
        super().__init__(folder, LANGUAGE=language, PATH=f"{folder}:{os.environ['PATH']}",
                         GTK_MODULES="gail:atk-bridge", GVFS_DISABLE_FUSE="1")

    def calls(self):
        """The arguments of each call until now."""
        return [file.read_bytes().split(b"\0")[:-1] for file in self._calls.iterdir()]

    def forget_calls(self):
        for file in self._calls.iterdir():
            file.unlink()


def menu_item(label):
    """The one of this name that is on the screen; GTK 4 says of none that it is."""
    for item in items():
        if item.get_name() == label and item.get_role_name() in ("menu", "menu item"):
            is_gtk4 = item.get_application().get_toolkit_version().startswith("4.")
            if is_gtk4 or item.get_state_set().contains(Atspi.StateType.SHOWING):
                return item
    return None


def press(*keys):
    subprocess.run(["xdotool", "key", "--delay", "50", *keys], check=True)


def open_menu(manager, label):
    """Gives the command's item, True where keys lead to it, or nothing: the folder may still be read."""
    press("ctrl+a", "Menu")
    try:
        if "keys" in manager:
            return wait("a menu", lambda: output("xdotool", "search", "--onlyvisible", "--class", "."), 3)
        if "submenu" in manager:
            wait("the submenu", lambda: menu_item(manager["submenu"]), 3).do_action(0)
        return wait(label, lambda: menu_item(label), 3)
    except TimeoutError:
        press("Escape", "Escape")
        return None


def take(session, manager, which, expected, picture):
    label = LABELS[manager["language"]][which]
    item = wait(label, lambda: open_menu(manager, label))
    if "keys" in manager:
        press(*manager["keys"][which])
    if picture:
        subprocess.run(["import", "-window", "root", picture], check=True)
    press("Return") if "keys" in manager else item.do_action(0)
    options = [[b"--"], [b"--here", b"--"]][which]
    calls = wait("the calls", lambda: len(calls := session.calls()) == manager.get("calls", 1) and calls)
    session.forget_calls()
    names = [urllib.parse.unquote_to_bytes(name.removeprefix(b"file://")) if name.startswith(b"file:")
             else name for call in calls for name in call[len(options):]]
    if any(call[:len(options)] != options for call in calls) or sorted(names) != expected:
        raise SystemExit(f"{label}: called with {calls}")


def main(install_script, name, picture=None):
    manager = MANAGERS[name]
    if not shutil.which(name):
        return 77
    with tempfile.TemporaryDirectory() as folder:
        things = pathlib.Path(folder) / "Things"
        names = manager.get("names", [*NAMES, NOT_UTF8])
        (things / "folder").mkdir(parents=True)
        for file in names:
            if file != b"folder":
                (things / os.fsdecode(file)).write_text("x")
        session = Menus(pathlib.Path(folder), install_script, manager["language"])
        try:
            session.start(*manager["start"].format(things).split())
            wait("the window", lambda: output("xdotool", "search", "--onlyvisible", "--name", "^Things"))
            time.sleep(1)  # it gets the keyboard, and reads the folder
            for which in range(2):
                take(session, manager, which, sorted(bytes(things / os.fsdecode(n)) for n in names), picture)
        except BaseException:
            print(session.messages(), file=sys.stderr)
            raise
        finally:
            session.end()
    return 0


sys.exit(main(*sys.argv[1:]))
