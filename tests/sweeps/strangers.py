"""strangers.py PROGRAM: two programs of ours and a stranger at work on one destination and working
folder. The stranger destroys nothing but puts aside what it takes away: what is neither in the
destination nor aside in the end was destroyed by us."""

import contextlib
import ctypes
import itertools
import os
import sys
import threading
import time

from place import IS_FULL, Place, chance, contents, hold_to

AT_FDCWD, RENAME_EXCHANGE = -100, 2
libc = ctypes.CDLL(None)
place, strangers, notes, jobs = Place(), {}, {}, []
aside = place.folder / "aside"


def identity(path):
    with contextlib.suppress(FileNotFoundError):
        status = path.lstat()
        return status.st_ino, status.st_mtime_ns


def meddle():
    for count in itertools.takewhile(lambda _: time.monotonic() < end, itertools.count()):
        there = list(place.destination.glob("Demo*")) or [place.archive("zip")]
        target = chance.choice(
            [place.archive("zip"), place.archive("tar.gz"), chance.choice(there)])
        what = chance.choice(("put", "put", "take", "note"))
        if what == "put":  # a file of its own, in place of what is there if anything is
            file = aside / str(count)
            file.write_text("the stranger's")
            strangers[identity(file)] = target
            if libc.renameat2(AT_FDCWD, bytes(file), AT_FDCWD, bytes(target), RENAME_EXCHANGE) != 0:
                with contextlib.suppress(FileExistsError):  # meanwhile; so it stays aside
                    os.link(file, target)
                    file.unlink()
        elif what == "take" and target.exists():
            target.replace(aside / str(count))
        elif what == "note":  # in the working folder, called much like what jobs have there
            note = place.working / chance.choice(
                ("Demo", "org.parcelo.Parcelo-note", "org.parcelo.Parcelo-1-abcdef/note"))
            note.parent.mkdir(exist_ok=True)
            note.write_text(str(count))
            notes[note] = str(count)
        time.sleep(chance.choice((0.001, 0.001, 0.2)))  # into a job's moments, and peace


def work(letter):
    """Makes archives, each of a file that no other has."""
    while time.monotonic() < end:
        label = f"{letter}{len(jobs)}"
        (place.items / label).write_text(label)
        kind = chance.choice(("zip", "mac-zip", "tar.gz"))
        path = place.archive(kind)
        stood = {identity(path)}
        run = place.start(kind, [label, "lines"])
        # It may replace what stood there when it looked, which it has once its folder is there.
        mine = f".org.parcelo.Parcelo-{run.pid}-*"
        while run.poll() is None and not list(place.destination.glob(mine)):
            stood.add(identity(path))
        stood.add(identity(path))
        status, made, err = place.end(run)
        hold_to(status == 0 or err, label, status, "without a word")
        jobs.append((label, status, stood if made == path else set(), err))


def check():
    standing = {identity(file): file
                for folder in (place.destination, aside) for file in folder.iterdir()}
    kept = []  # the archives that are left, by the file that only they have
    for file in (standing[who] for who in standing if who not in strangers):
        found = {name.rsplit("/", 1)[-1]: data for name, data in contents(file).items() if data}
        hold_to(found.pop("lines", "") == lines and len(found) == 1, file, "holds", *found)
        kept += [label for label, data in found.items() if data == label.encode()]
    gone = [label for label, status, *_ in jobs if status == 0 and label not in kept]
    replaced = set().union(*(stood for _, status, stood, _ in jobs if status == 0))
    places = replaced - {None, *standing, *strangers}
    hold_to(len(gone) <= len(places), len(gone), "archives are gone of", len(places), gone)
    for who, target in strangers.items():
        hold_to(who in standing or who in replaced, "the stranger's", target, "is gone")
    for note, text in notes.items():
        hold_to(note.exists() and note.read_text() == text, note, "is gone")
    print(f"{len(kept)} archives are left, {len(gone)} were replaced; of {len(strangers)} files "
          f"of the stranger; failed: {[err for _, status, _, err in jobs if status != 0]}")


threading.excepthook = lambda failure: (sys.excepthook(*failure[:3]), os._exit(1))
aside.mkdir()
lines = b"".join(b"%d\n" % (n * n % 7919) for n in range(500_000))
(place.items / "lines").write_bytes(lines)
end = time.monotonic() + (60 if IS_FULL else 3)
threads = [threading.Thread(target=work, args=(letter,)) for letter in "ab"]
threads.append(threading.Thread(target=meddle))
for thread in threads:
    thread.start()
for thread in threads:
    thread.join()
check()
place.finish()
