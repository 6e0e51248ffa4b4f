"""strangers.py PROGRAM: two programs of ours and a stranger at work on one destination and working
folder. The stranger destroys nothing but puts aside what it takes away: what is neither in the
destination nor aside in the end was destroyed by us."""

import contextlib
import ctypes
import os
import random
import sys
import threading
import time

from place import IS_FULL, Place, chance, contents

AT_FDCWD, RENAME_EXCHANGE = -100, 2
libc = ctypes.CDLL(None)


def identity(path):
    try:
        status = os.stat(path, follow_symlinks=False)
        return status.st_ino, status.st_mtime_ns
    except FileNotFoundError:
        return None


class Stranger(threading.Thread):
    def __init__(self, place, end):
        super().__init__()
        self.place, self.end, self.chance = place, end, random.Random(chance.random())
        self.aside = place.folder / "aside"
        self.aside.mkdir()
        self.made, self.notes, self.count = {}, {}, 0

    def run(self):
        while time.monotonic() < self.end:
            self.count += 1
            names = [file.name for file in self.place.destination.glob("Demo*")]
            target = self.place.destination / self.chance.choice(
                ["Demo.zip", "Demo.tar.gz", *self.chance.sample(names, min(1, len(names)))])
            self.chance.choice((self.put, self.put, self.take, self.note))(target)
            time.sleep(self.chance.choice((0.001, 0.001, 0.2)))  # into a job's moments, and peace

    def put(self, target):
        """A file of its own, in place of what is there if anything is."""
        file = self.aside / str(self.count)
        file.write_text("the stranger's")
        self.made[identity(file)] = target
        if libc.renameat2(AT_FDCWD, bytes(file), AT_FDCWD, bytes(target), RENAME_EXCHANGE) != 0:
            with contextlib.suppress(FileExistsError):  # meanwhile; so it stays aside
                os.link(file, target)
                file.unlink()

    def take(self, target):
        if target.exists():
            target.replace(self.aside / str(self.count))

    def note(self, _):
        """A file in the working folder that is its own, though a job's own are called much alike."""
        note = self.place.working / self.chance.choice(
            ("Demo", "org.parcelo.Parcelo-note", "org.parcelo.Parcelo-1-abcdef/note"))
        note.parent.mkdir(exist_ok=True)
        note.write_text(str(self.count))
        self.notes[note] = str(self.count)


class Worker(threading.Thread):
    """Makes archives, each of a file that no other has."""

    def __init__(self, place, letter, end):
        super().__init__()
        self.place, self.letter, self.end = place, letter, end
        self.chance, self.jobs = random.Random(chance.random()), []

    def run(self):
        while time.monotonic() < self.end:
            label = f"{self.letter}{len(self.jobs)}"
            (self.place.items / label).write_text(label)
            kind = self.chance.choice(("zip", "mac-zip", "tar.gz"))
            path = self.place.archive(kind)
            stood = {identity(path)}
            run = self.place.start(kind, [label, "lines"])
            # It may replace what stood there when it looked, which it has once its folder is there.
            mine = f".org.parcelo.Parcelo-{run.pid}-*"
            while run.poll() is None and not list(self.place.destination.glob(mine)):
                stood.add(identity(path))
            stood.add(identity(path))
            status, made, err = self.place.end(run)
            self.place.hold_to(status == 0 or err, label, status, "without a word")
            self.jobs.append((label, status, stood if made == path else set(), err))


def check(place, stranger, workers):
    lines = (place.items / "lines").read_bytes()
    standing = {identity(file): file
                for folder in (place.destination, stranger.aside) for file in folder.iterdir()}
    kept = []  # the archives that are left, by the file that only they have
    for file in (standing[who] for who in standing if who not in stranger.made):
        found = {name.rsplit("/", 1)[-1]: data for name, data in contents(file).items() if data}
        place.hold_to(found.pop("lines", "") == lines and len(found) == 1, file, "holds", *found)
        kept += [label for label, data in found.items() if data == label.encode()]
    jobs = [job for worker in workers for job in worker.jobs]
    replaced = set().union(*(stood for _, status, stood, _ in jobs if status == 0))
    gone = [label for label, status, *_ in jobs if status == 0 and label not in kept]
    places = replaced - {None, *standing, *stranger.made}
    place.hold_to(len(gone) <= len(places), len(gone), "archives are gone of", len(places), gone)
    for who, target in stranger.made.items():
        place.hold_to(who in standing or who in replaced, "the stranger's", target, "is gone")
    for note, text in stranger.notes.items():
        place.hold_to(note.exists() and note.read_text() == text, note, "is gone")
    print(f"{len(kept)} archives are left, {len(gone)} were replaced, by the stranger there were "
          f"{len(stranger.made)} files; failed: {[job[3] for job in jobs if job[1] != 0]}")


threading.excepthook = lambda failure: (sys.excepthook(*failure[:3]), os._exit(1))
place = Place()
(place.items / "one").write_text("one")
(place.items / "lines").write_bytes(b"".join(b"%d\n" % (n * n % 7919) for n in range(500_000)))
end = time.monotonic() + (60 if IS_FULL else 3)
stranger, *workers = threads = (
    Stranger(place, end), Worker(place, "a", end), Worker(place, "b", end))
for thread in threads:
    thread.start()
for thread in threads:
    thread.join()
check(place, stranger, workers)
place.finish()
