#!/usr/bin/env python3
"""Times the bundled tools and the program against other archivers, all in one run.

    bench/archivers.py [--quick] [--runs N] [--work FOLDER]

The data is composed once, from files that every Debian machine has, and lies in the page cache when
it is timed. The programs take turns, so that a busy moment of the machine does not fall on one alone.
Every figure is the median of the runs. Only our tar and the program flush their archive to the disk.
"""

import argparse
import json
import multiprocessing
import os
import random
import shutil
import statistics
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/release"
TOOLS = BUILD / "libexec/parcelo/Contents/Resources"
SOURCES = ["/usr/include", "/usr/share/doc", "/usr/share/man", "/usr/lib/python3", "/usr/share",
           "/usr/lib", "/usr/bin"]
MEGABYTE = 10**6


# ---- the data -----------------------------------------------------------------------------------

def regular_files():
    """Regular files below SOURCES in a fixed order, each once."""
    seen = set()
    for source in SOURCES:
        for folder, folders, names in os.walk(source):
            folders.sort()
            for name in sorted(names):
                path = os.path.join(folder, name)
                if path not in seen and os.path.isfile(path) and not os.path.islink(path):
                    seen.add(path)
                    yield path, os.path.getsize(path)


def compose_tree(folder, file_count, size):
    """Many small files, then as many larger ones as the size takes, in their own folders."""
    small = [f for f in regular_files() if 0 < f[1] <= 100_000]
    large = [f for f in regular_files() if 100_000 < f[1] <= 3 * MEGABYTE]
    budget = size // 2
    copies = total = count = 0
    while count < file_count * 97 // 100:
        for path, length in small:
            if count < file_count * 97 // 100 and total + length < budget + copies * size:
                total += length
                count += 1
                copy(path, folder / f"copy{copies}" / path[1:])
        copies += 1
    for path, length in large:
        if total + length <= size:
            total += length
            copy(path, folder / "larger" / path[1:])


def copy(source, target):
    target.parent.mkdir(parents=True, exist_ok=True)
    shutil.copyfile(source, target)


def compose(data, quick):
    """Makes the data sets, with a line and the size in bytes of each in notes.json."""
    if (data / "notes.json").exists():
        return
    shutil.rmtree(data, ignore_errors=True)
    data.mkdir(parents=True)
    part = 10 if quick else 1
    compose_tree(data / "tree", 17_000 // part, 290 * MEGABYTE // part)

    files = sorted(p for p in (data / "tree").rglob("*") if p.is_file())
    with open(data / "large", "wb") as large:
        while large.tell() < 250 * MEGABYTE // part:
            for file in files:
                large.write(file.read_bytes())
        large.truncate(250 * MEGABYTE // part)
    generator = random.Random(1)
    with open(data / "noise", "wb") as noise:
        for _ in range(300 // part):
            noise.write(generator.randbytes(MEGABYTE))
    (data / "items").mkdir()
    with open(data / "large", "rb") as large:
        for number in range(1000 // part):
            (data / "items" / f"item{number}").write_bytes(large.read(100_000))

    total = sum(f.stat().st_size for f in files)
    notes = {"tree": [f"{len(files)} files, {total / MEGABYTE:.0f} MB", total],
             "large": [f"one file of {250 // part} MB", 250 * MEGABYTE // part],
             "noise": [f"{300 // part} MB of random bytes", 300 * MEGABYTE // part],
             "items": [f"{1000 // part} files of 100 KB, one run for each",
                       100 * MEGABYTE // part]}
    (data / "notes.json").write_text(json.dumps(notes))


# ---- the programs -------------------------------------------------------------------------------

def zip_commands(name, out):
    return {"our zip": [TOOLS / "zip", "-6", "-y", "-r", out, f"./{name}"],
            "parcelo": program_command("zip", out, [name]),
            "zip": ["zip", "-6", "-y", "-r", out, f"./{name}"],
            "7z": ["7z", "a", "-tzip", out, f"./{name}"],
            "bsdtar": ["bsdtar", "--format", "zip", "-cf", out, name]}


def tar_commands(name, out):
    return {"our tar": [TOOLS / "tar", "-zhcf", out, f"./{name}"],
            "parcelo": program_command("tar.gz", out, [name]),
            "tar -z": ["tar", "-zhcf", out, name],
            "bsdtar": ["bsdtar", "-zhcf", out, name],
            "tar, pigz": ["sh", "-c", 'tar -hcf - "$1" | pigz -6 > "$0"', out, name]}


def program_command(kind, out, names):
    return [BUILD / "bin/parcelo", "--quiet", "--to", out.parent, "--name", out.name.split(".")[0],
            "--type", kind, "--level", "6", *names]


def run(command, folder):
    """Runs a command to its end; returns the seconds and the peak memory of its largest process."""
    start = time.perf_counter()
    child = subprocess.Popen([str(word) for word in command], cwd=folder,
                             stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    message = child.stderr.read()
    _, status, usage = os.wait4(child.pid, 0)
    child.returncode = os.waitstatus_to_exitcode(status)
    seconds = time.perf_counter() - start
    if child.returncode != 0:
        sys.exit(f"{command[0]} ended with {child.returncode}: {message.decode()}")
    return seconds, usage.ru_maxrss * 1024


def limit_of(data, work):
    """The seconds that deflating alone takes at level 6 on all cores, in pieces of 1 MiB."""
    files = [data, *sorted(data.rglob("*"))]
    listing = work / "list"
    listing.write_bytes(b"\0".join(os.fsencode(p) for p in files if p.is_file()))
    return float(subprocess.check_output([BUILD / "bench/deflate_limit", "6",
                                          str(os.cpu_count()), listing]))


def measure(tasks, out, runs):
    """{program: [(command, folder), ...]} -> {program: (seconds, archive size, peak memory)}"""
    seconds = {program: [] for program in tasks}
    sizes, peaks = {}, dict.fromkeys(tasks, 0)
    for _ in range(runs):
        for program, commands in tasks.items():
            shutil.rmtree(out.parent, ignore_errors=True)
            out.parent.mkdir()
            results = [run(command, folder) for command, folder in commands]
            seconds[program].append(sum(result[0] for result in results))
            peaks[program] = max(peaks[program], *(result[1] for result in results))
            sizes[program] = out.stat().st_size
    return {p: (statistics.median(seconds[p]), sizes[p], peaks[p]) for p in tasks}


def report(title, results, limit, original):
    ours = next(iter(results.values()))[0]
    print(f"\n### {title}\n")
    print(f"deflate alone: {limit:.2f} s, ours takes {ours / limit:.2f} times that\n")
    print("| program | seconds | times ours | archive MB | of the data | peak MB |")
    print("|---|---:|---:|---:|---:|---:|")
    for program, (seconds, size, peak) in results.items():
        print(f"| {program} | {seconds:.2f} | {seconds / ours:.2f} | {size / MEGABYTE:.1f} "
              f"| {100 * size / original:.1f} % | {peak / MEGABYTE:.0f} |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--quick", action="store_true", help="a tenth of the data")
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--work", type=Path, default=ROOT / "build/bench")
    options = parser.parse_args()

    subprocess.check_call(["cmake", "--build", BUILD, "--target", "deflate_limit", "parcelo"],
                          stdout=subprocess.DEVNULL)
    work = options.work.resolve() / ("quick" if options.quick else "full")
    data = work / "data"
    # In a process of its own: a child's peak memory is never less than its parent's at its start.
    composer = multiprocessing.Process(target=compose, args=(data, options.quick))
    composer.start()
    composer.join()
    notes = json.loads((data / "notes.json").read_text())
    subprocess.check_call(["sh", "-c", "find . -type f -exec cat {} + > /dev/null"], cwd=data)
    print(f"{os.cpu_count()} cores, medians of {options.runs} runs, level 6, data in the page cache")

    for name in ["tree", "large", "noise"]:
        line, size = notes[name]
        limit = limit_of(data / name, work)
        for kind, commands in [("zip", zip_commands), ("tar.gz", tar_commands)]:
            out = work / "out" / f"archive.{kind}"
            tasks = {p: [(c, data)] for p, c in commands(name, out).items()}
            report(f"{kind} of {line}", measure(tasks, out, options.runs), limit, size)

    items = sorted(p.name for p in (data / "items").iterdir())
    out = work / "out/archive.zip"
    tasks = {"parcelo": [(program_command("zip", out, items), data / "items")]}
    for program in ["our zip", "zip", "7z"]:
        tasks[program] = [(zip_commands(item, out)[program], data / "items") for item in items]
    # The others write the whole archive anew for each item: one run of theirs is long enough.
    others = {program: tasks.pop(program) for program in ["zip", "7z"]}
    results = measure(tasks, out, options.runs) | measure(others, out, 1)
    line, size = notes["items"]
    report(f"zip of {line}", results, limit_of(data / "items", work), size)


if __name__ == "__main__":
    main()
