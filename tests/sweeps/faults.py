"""faults.py PROGRAM TYPE signals|calls: while an archive is made, with and without one that stands
there already, the program is struck by a signal at any moment; or a system call of its or of a tool
fails, or is its last. An older archive stands until there is a whole one."""

import collections
import contextlib
import os
import random
import re
import signal
import subprocess
import sys
import time

from place import IS_FULL, Place, chance, contents

CALLS = """access chdir clone3 close copy_file_range dup2 execve fchmod fdatasync fcntl fgetxattr
    flistxattr flock fstat fsync ftruncate getcwd getdents64 link lseek mkdir mkdirat newfstatat openat
    pipe2 poll ppoll pread64 pwrite64 read readlink renameat renameat2 symlink unlinkat utimensat wait4
    waitid write""".split()
FAULTS = ["signal=KILL"] + [
    f"error={name}" for name in ("ENOSPC", "EIO", "EINTR", "EDQUOT", "EACCES")]
kind, place = sys.argv[2], Place()
archive = place.archive(kind)
whole = {}  # the archive's contents when all is well


def state():
    status = os.stat(archive, follow_symlinks=False) if os.path.lexists(archive) else None
    return status and (status.st_ino, status.st_mtime_ns, status.st_mode, archive.read_bytes())


def begin(replacing, items=("tree", "one"), prefix=()):
    for file in place.destination.glob("[!.]*"):
        file.unlink()
    if replacing:
        archive.write_bytes(b"an older archive")
    return state(), place.start(kind, items, prefix=prefix)


def judge(old, result, canSpeak, *what):
    status, path, err = result
    what = kind, *what, *result
    isOld = state() == old
    if status == 0:
        place.hold_to(contents(path) == whole and (isOld or path == archive), *what)
    elif status is not None and status < 0:
        place.hold_to(isOld or contents(archive) == whole, *what)
    else:
        place.hold_to(status in (1, 127, 130), *what)
        found = whole if isOld else contents(archive)
        lost = [name for name, data in whole.items()
                if found.get(name) != data and not is_named(name, err)]
        place.hold_to((err and not lost) or not canSpeak, *what, "lacks", lost, "has", list(found))
    place.expect_no_rest(*what)


def is_named(member, err):
    """Whether a warning is of that member, or of a folder that it is in."""
    names = re.findall(r"warning: (?:Demo/?)?(.*?):|/in/(\S+)' is left out", err)
    path = re.sub(r"^(__MACOSX/)?(Demo/)?", "", member).replace("._", "")
    return any(f"{path}/".startswith(f"{name}/" if name else "") for name in map("".join, names))


def send(number, replacing, moment, items=("tree", "one")):
    old, run = begin(replacing, items)
    time.sleep(moment)
    run.send_signal(number)
    result = place.end(run)
    what = f"{number.name} after {moment:.4f} s of {items}"
    place.hold_to(result[0] in (0, 130, -number), what, *result)
    place.hold_to(number == signal.SIGKILL or not place.hidden(), what, *result, place.hidden())
    judge(old, result, True, what)


def strike(call, number, fault, log=place.folder / "log"):
    old, run = begin(True, prefix=(
        "strace", "-f", "-qq", "-o", log, "-e", f"trace={call},write,execve",
        "-e", f"inject={call}:{fault}:when={number}"))
    result = place.end(run)
    trace = log.read_text(errors="replace")
    if "/usr/bin/zip" not in trace:  # ours could not be looked at: what the system's does is its own
        judge(old, result, not re.search(r"write\(2.*INJECTED", trace), call, number, fault)


(place.items / "tree/sub").mkdir(parents=True)
(place.items / "tree/noise").write_bytes(random.Random(1).randbytes(300_000))
(place.items / "tree/sub/text").write_text("".join(map(str, range(100_000))))
(place.items / "one").write_text("one")
with contextlib.suppress(OSError):
    os.setxattr(place.items / "one", "user.note", b"kept in a mac-zip")
with open(place.items / "endless", "wb") as file:
    file.truncate(200 << 30)  # a tool is at it until it is told to end
began = time.monotonic()
place.end(begin(False)[1])
longest = 1.2 * (time.monotonic() - began)
whole = contents(archive)
for name in ("tree/noise", "tree/sub/text", "one"):
    assert whole[("" if kind == "zip" else "Demo/") + name] == (place.items / name).read_bytes()
if sys.argv[3] == "signals":
    for number in (signal.SIGKILL, signal.SIGTERM, signal.SIGINT):
        send(number, True, 0.3, ["endless"])
        for replacing in (False, True):
            for _ in range(200 if IS_FULL else 3):
                send(number, replacing, chance.uniform(0, longest))
elif subprocess.run(["strace", "-qq", "true"], stderr=subprocess.DEVNULL).returncode:
    sys.exit(77)  # no tracing here
else:
    trace = place.folder / "trace"
    place.end(begin(True, prefix=("strace", "-f", "-qq", "-o", trace))[1])
    made = collections.Counter(re.findall(r"^(\d+) +(\w+)\(", trace.read_text(), re.MULTILINE))
    cases = [(call, number, fault) for call in CALLS for fault in FAULTS for number in range(
        1, 1 + max((count for (_, name), count in made.items() if name == call), default=0))]
    for case in cases if IS_FULL else chance.sample(cases, 15):
        strike(*case)
place.finish()
