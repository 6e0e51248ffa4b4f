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

from place import IS_FULL, Place, chance, contents, hold_to

CALLS = """access chdir clone3 close copy_file_range dup2 execve fchmod fdatasync fcntl fgetxattr
    flistxattr flock fstat fsync ftruncate getcwd getdents64 link lseek mkdir mkdirat newfstatat openat
    pipe2 poll ppoll pread64 pwrite64 read readlink renameat renameat2 symlink unlinkat utimensat wait4
    waitid write""".split()
FAULTS = "signal=KILL error=ENOSPC error=EIO error=EINTR error=EDQUOT error=EACCES".split()
kind, place = sys.argv[2], Place()
archive = place.archive(kind)
whole = {}  # the archive's contents when all is well


def state():
    if os.path.lexists(archive):
        status = archive.lstat()
        return status.st_ino, status.st_mtime_ns, status.st_mode, archive.read_bytes()


def begin(replacing=True, items=("tree", "one"), prefix=()):
    for file in place.destination.glob("[!.]*"):
        file.unlink()
    if replacing:
        archive.write_bytes(b"an older archive")
    return state(), place.start(kind, items, prefix=prefix)


def judge(old, result, canSpeak, *what):
    status, path, err = result
    isOld = state() == old
    found = whole if isOld else contents(archive)
    # A warning is of a member or of a folder that it is in.
    told = map("".join, re.findall(r"warning: (?:Demo/?)?(.*?):|/in/(\S+)' is left out", err))
    folders = tuple(f"{name}/" if name else "" for name in told)
    lost = [name for name, data in whole.items() if found.get(name) != data and not
            f"{re.sub('^(__MACOSX/)?(Demo/)?', '', name)}/".replace("._", "").startswith(folders)]
    if status == 0:
        isRight = contents(path) == whole and (isOld or path == archive)
    elif status < 0:
        isRight = found == whole
    else:
        isRight = status in (1, 127, 130) and (not canSpeak or err and not lost)
    hold_to(isRight, kind, *what, *result, "lacks", lost)
    place.expect_no_rest(kind, *what, *result)


(place.items / "tree/sub").mkdir(parents=True)
noise = random.Random(1).randbytes(300_000)
(place.items / "tree/noise").write_bytes(noise)
(place.items / "tree/sub/text").write_text("".join(map(str, range(100_000))))
with contextlib.suppress(OSError):
    os.setxattr(place.items / "one", "user.note", b"kept in a mac-zip")
(place.items / "endless").touch()  # a tool is at it until it is told to end
os.truncate(place.items / "endless", 200 << 30)
began = time.monotonic()
place.end(begin(False)[1])
longest = 1.2 * (time.monotonic() - began)
whole = contents(archive)
assert whole["tree/noise" if kind == "zip" else "Demo/tree/noise"] == noise and len(whole) > 3
if sys.argv[3] == "signals":
    cases = [(True, 0.3, ["endless"])] + [
        (replacing, chance.uniform(0, longest), ["tree", "one"])
        for replacing in (False, True) for _ in range(200 if IS_FULL else 3)]
    for number in (signal.SIGKILL, signal.SIGTERM, signal.SIGINT):
        for replacing, moment, items in cases:
            old, run = begin(replacing, items)
            time.sleep(moment)
            run.send_signal(number)
            result = place.end(run)
            rest = number != signal.SIGKILL and place.hidden()
            hold_to(result[0] in (0, 130, -number) and not rest, number, moment, *result, rest)
            judge(old, result, True, number, moment, items)
elif subprocess.run(["strace", "-qq", "true"], stderr=subprocess.DEVNULL).returncode:
    sys.exit(77)  # no tracing here
else:
    log = place.folder / "log"
    tracing = ["strace", "-f", "-qq", "-o", log]
    place.end(begin(prefix=tracing)[1])
    made = collections.Counter(re.findall(r"^(\d+) +(\w+)\(", log.read_text(), re.MULTILINE))
    cases = sorted({(call, number, fault) for (_, call), count in made.items() if call in CALLS
                    for number in range(1, count + 1) for fault in FAULTS})
    for call, number, fault in cases if IS_FULL else chance.sample(cases, 15):
        old, run = begin(prefix=[*tracing, "-e", f"trace={call},write,execve",
                                 "-e", f"inject={call}:{fault}:when={number}"])
        result = place.end(run)
        trace = log.read_text(errors="replace")
        if "/usr/bin/zip" not in trace:  # ours could not be looked at: the system's has its own way
            canSpeak = not re.search(r"write\(2.*INJECTED", trace)
            judge(old, result, canSpeak, call, number, fault)
place.finish()
