"""A folder for a sweep: what is to be archived, a destination, a working folder; and runs in it."""

import glob
import gzip
import io
import os
import pathlib
import random
import re
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


def hold_to(truth, *what):
    if not truth:
        print("WRONG:", *what, f"; PARCELO_SEED={SEED}", flush=True)
        os._exit(1)  # of any thread, and everything stays to be looked at


class Place:
    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="parcelo-sweep-"))
        self.destination, self.items = self.folder / "out", self.folder / "in"
        self.destination.mkdir()
        self.items.mkdir()
        (self.items / "one").write_text("one")
        # Now in the destination's file system, now in another one.
        self.working = pathlib.Path(tempfile.mkdtemp(prefix="parcelo-sweep-", dir=chance.choice(
            [folder for folder in (self.folder, "/dev/shm") if os.access(folder, os.W_OK)])))
        self.count = 0

    def archive(self, kind):
        return self.destination / ("Demo.tar.gz" if kind == "tar.gz" else "Demo.zip")

    def start(self, kind, items, name="Demo", prefix=()):
        return subprocess.Popen(
            [*prefix, PROGRAM, "--to", self.destination, "--name", name, "--type", kind, *items],
            cwd=self.items, env={"TMPDIR": str(self.working), "PARCELO_THREADS": "2"}, text=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def end(self, run):
        """Its status, the path that it printed, and its complaints."""
        self.count += 1
        try:
            out, err = run.communicate(timeout=30)
        except subprocess.TimeoutExpired:
            run.kill()
            hold_to(False, "hangs", *run.args, run.communicate()[1])
        return run.returncode, pathlib.Path(out.rstrip("\n")), err

    def hidden(self):
        """What a job keeps to itself: beside archive and items, and all in the working folder."""
        return [*self.destination.glob(".*"), *self.items.glob(".*"), *self.working.iterdir()]

    def expect_no_rest(self, *what):
        """No tool outlives its program, and the next job there removes what a killed one left."""
        end = time.monotonic() + 1
        while (tools := self.tools()) and time.monotonic() < end:
            time.sleep(0.01)
        for tool in tools:
            os.kill(int(tool), signal.SIGKILL)
        if self.hidden():
            self.end(self.start(what[0], ["one"], "Next"))
        hold_to(not tools and not self.hidden(), *what, "left", tools, self.hidden())

    def tools(self):
        environments = glob.glob("/proc/[1-9]*/environ")
        return re.findall(r"\d+", subprocess.run(
            ["grep", "-lsF", f"TMPDIR={self.working}", *environments],
            stdout=subprocess.PIPE, text=True).stdout)

    def finish(self):
        print(f"{self.count} runs; PARCELO_SEED={SEED}")
        shutil.rmtree(self.working)
        shutil.rmtree(self.folder, ignore_errors=True)
