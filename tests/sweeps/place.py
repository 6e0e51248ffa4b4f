"""A folder for a sweep: what is to be archived, a destination, a working folder; and runs in it."""

import gzip
import io
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tarfile
import tempfile
import time
import zipfile

PROGRAM = sys.argv[1]
IS_FULL = os.environ.get("PARCELO_ALL_TESTS") == "1"
SEED = int(os.environ.get("PARCELO_SEED", time.time_ns() % 1_000_000))
chance = random.Random(SEED)


def contents(archive):
    """What Python's readers find in it, by name, or why they cannot read it."""
    try:
        if zipfile.is_zipfile(archive):
            with zipfile.ZipFile(archive) as file:
                members = [(member.filename, file.read(member)) for member in file.infolist()]
        else:
            data = gzip.decompress(archive.read_bytes())
            assert data.endswith(bytes(1024)), "a tar without its end"
            with tarfile.open(fileobj=io.BytesIO(data)) as file:
                members = [(member.name, file.extractfile(member).read() if member.isreg() else b"")
                           for member in file]
        assert len(dict(members)) == len(members), "a name comes twice"
        return {name.rstrip("/"): data for name, data in members}
    except Exception as failure:
        return {"unreadable": repr(failure)}


class Place:
    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="parcelo-sweep-"))
        self.destination, self.items = self.folder / "out", self.folder / "in"
        for folder in (self.destination, self.items):
            folder.mkdir()
        # Now in the destination's file system, now in another one.
        self.working = pathlib.Path(tempfile.mkdtemp(prefix="parcelo-sweep-", dir=chance.choice(
            [folder for folder in (self.folder, "/dev/shm") if os.access(folder, os.W_OK)])))
        self.count = self.faults = 0

    def archive(self, kind):
        return self.destination / ("Demo.tar.gz" if kind == "tar.gz" else "Demo.zip")

    def start(self, kind, items, name="Demo", prefix=()):
        return subprocess.Popen(
            [*prefix, PROGRAM, "--to", self.destination, "--name", name, "--type", kind, *items],
            cwd=self.items, env={"TMPDIR": str(self.working), "PARCELO_THREADS": "2"}, text=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def end(self, run):
        """Its status, None when it hangs, the path that it printed, and its complaints."""
        self.count += 1
        try:
            out, err = run.communicate(timeout=30)
        except subprocess.TimeoutExpired:
            run.kill()
            return None, None, run.communicate()[1]
        return run.returncode, pathlib.Path(out.rstrip("\n")) if out else None, err

    def hidden(self):
        """What a job keeps to itself: beside archive and items, and all in the working folder."""
        return [*self.destination.glob(".*"), *self.items.glob(".*"), *self.working.iterdir()]

    def hold_to(self, truth, *what):
        if not truth:
            self.faults += 1
            print("WRONG:", *what)

    def expect_no_rest(self, kind, *what):
        """No tool outlives its program, and the next job there removes what a killed one left."""
        for _ in range(100):
            if tools := self.tools():
                time.sleep(0.01)
        if self.hidden():
            self.end(self.start(kind, ["one"], "Next"))
        self.hold_to(not tools and not self.hidden(), kind, *what, "left", tools, self.hidden())
        for tool in tools:
            os.kill(tool, signal.SIGKILL)
        for rest in self.hidden():
            shutil.rmtree(rest, ignore_errors=True)

    def tools(self):
        def is_ours(process):
            try:
                return f"TMPDIR={self.working}".encode() in (process / "environ").read_bytes()
            except OSError:
                return False  # it has gone, or is somebody else's
        return [int(process.name) for process in pathlib.Path("/proc").glob("[1-9]*")
                if is_ours(process)]

    def finish(self):
        print(f"{self.count} runs, {self.faults} faults; PARCELO_SEED={SEED}, "
              f"{self.folder}, {self.working}")
        if not self.faults:
            shutil.rmtree(self.working)
            shutil.rmtree(self.folder, ignore_errors=True)
        sys.exit(self.faults > 0)
