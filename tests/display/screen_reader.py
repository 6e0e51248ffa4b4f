"""What a screen reader is told of the program, asked from outside, on a display and a bus of their own.

usage: screen_reader.py PROGRAM; exit status 0 when all is well
"""

import pathlib
import subprocess
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from desktop_session import Atspi, Session, items, wait

BOX, DESTINATION, ADVERT = "Drop Files Here", "Destination", "About the maker's products"
MAIN = [  # role, how the name begins, what is in the text
    ("push button", BOX, None), ("combo box", DESTINATION, "Same as source"), ("label", ADVERT, " - ")]
ABOUT = [
    ("label", "Parcelo ", None), ("label", "Turns files into", "Turns files"), ("label", "Copyright ", None),
    ("label", "Made with Qt ", None), ("push button", "Visit Website", None)]


def has(item, state):
    return item.get_state_set().contains(getattr(Atspi.StateType, state))


def find(name, role=None):
    return next((item for item in items() if item.get_name().startswith(name)
                 and (item.get_role_name() == role == "menu item" or has(item, "SHOWING"))
                 and role in (None, item.get_role_name())), None)


def compare(rows):
    for role, name, value in rows:
        found = wait(f"{role} {name}", lambda: find(name, role))
        if value is not None:
            text = Atspi.Text.get_text(found, 0, Atspi.Text.get_character_count(found))
            assert value in text, (name, text)


def xdotool(*words):
    subprocess.run(["xdotool", *words], check=True)


def check(program, folder, session):
    told = []
    listener = Atspi.EventListener.new(
        lambda event: told.append((event.source.get_name(), event.source.get_description())))
    listener.register("object:property-change:accessible-description")
    session.start(program, messages="said")
    compare(MAIN)
    for stop in (BOX, DESTINATION, ADVERT, BOX):
        wait(stop, lambda: stop in [item.get_name() for item in items() if has(item, "FOCUSED")])
        xdotool("key", "Tab")
    box = find(BOX)
    xdotool("key", "shift+Tab", "keydown", "space")
    wait("the press", lambda: has(box, "PRESSED"))
    xdotool("key", "Tab", "keyup", "space")
    find("About Parcelo", "menu item").do_action(0)
    compare(ABOUT)
    with open(folder / "large.txt", "wb") as large:
        large.truncate(1 << 29)
    session.start(program, folder / "large.txt")
    wait("the panel", lambda: find("OK", "push button")).do_action(0)
    bar = wait("the job", lambda: find("Progress"))
    wait("the shut box", lambda: not has(box, "ENABLED"))
    wait("the half", lambda: 50 <= Atspi.Value.get_current_value(bar) < 100)
    wait("its end", lambda: has(box, "ENABLED"))
    words = [word for name, word in told if name == "Making Archive" and word]
    assert words[-1] == "Completed" and 5 < len(words) < 13, words
    assert not (said := session.messages("said")), said


def main(program):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        settings = folder / "home/.config/parcelo/parcelo.conf"
        settings.parent.mkdir(parents=True)
        settings.write_text("[General]\nRevealWhenComplete=false\n")
        session = Session(folder, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        try:
            check(program, folder, session)
        finally:
            session.end()


main(*sys.argv[1:])
