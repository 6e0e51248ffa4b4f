#!/usr/bin/env python3
"""Times the bundled tools and the program against other archivers, all in one run.

    bench/archivers.py [--quick] [--runs N] [--work FOLDER] [SECTION...]

The sections are zip, tar.gz, levels, items, scale and start; without any, all of them run.

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


# What is compressed already: pictures, sound, documents, and the zips that office files are, too.
COMPRESSED = (".png", ".jpg", ".jpeg", ".mp3", ".ogg", ".mp4", ".webm", ".pdf", ".svgz", ".jar",
              ".odt", ".docx", ".gz", ".woff2")


def compose_mixed(folder, size):
    """Three quarters of compressed files, of each kind as much as there is, and a quarter of text."""
    kinds = {suffix: [] for suffix in COMPRESSED}
    texts = []
    for path, length in regular_files():
        if path.startswith("/usr/include/"):
            texts.append((path, length))
        else:
            kinds.get(os.path.splitext(path)[1].lower(), []).append((path, length))
    rest = size - copy_some(texts, size // 4, folder)
    rarest_first = sorted(kinds.values(), key=lambda files: sum(length for _, length in files))
    for number, files in enumerate(rarest_first):
        rest -= copy_some(files, rest // (len(kinds) - number), folder)


def copy_some(files, size, folder):
    """Copies files up to that size in all; gives the size that it came to."""
    total = 0
    for path, length in files:
        if total + length <= size:
            total += length
            copy(path, folder / path[1:])
    return total


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
    compose_mixed(data / "mixed", 200 * MEGABYTE // part)
    (data / "items").mkdir()
    with open(data / "large", "rb") as large:
        for number in range(4000 // part):
            large.seek(number * 7919 % (4000 // part) * 60_000)  # each part is like the whole
            (data / "items" / f"item{number:04}").write_bytes(large.read(100_000))

    total = sum(f.stat().st_size for f in files)
    mixed = [p for p in (data / "mixed").rglob("*") if p.is_file()]
    total_mixed = sum(f.stat().st_size for f in mixed)
    notes = {"tree": [f"{len(files)} files, {total / MEGABYTE:.0f} MB", total],
             "large": [f"one file of {250 // part} MB", 250 * MEGABYTE // part],
             "noise": [f"{300 // part} MB of random bytes", 300 * MEGABYTE // part],
             "mixed": [f"{len(mixed)} files, {total_mixed / MEGABYTE:.0f} MB, three quarters of "
                       "them pictures, documents and archives", total_mixed]}
    (data / "notes.json").write_text(json.dumps(notes))


# ---- the programs -------------------------------------------------------------------------------

def zip_commands(name, out, level=6):
    return {"our zip": [TOOLS / "zip", f"-{level}", "-y", "-r", out, f"./{name}"],
            "parcelo": program_command("zip", out, [name]),
            "zip": ["zip", f"-{level}", "-y", "-r", out, f"./{name}"],
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


def run(command, folder, environment=None):
    """Runs a command to its end; returns the seconds, the peak memory of its largest process, and
    the seconds of processor time."""
    start = time.perf_counter()
    child = subprocess.Popen([str(word) for word in command], cwd=folder, env=environment,
                             stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    message = child.stderr.read()
    _, status, usage = os.wait4(child.pid, 0)
    child.returncode = os.waitstatus_to_exitcode(status)
    seconds = time.perf_counter() - start
    if child.returncode != 0:
        sys.exit(f"{command[0]} ended with {child.returncode}: {message.decode()}")
    return seconds, usage.ru_maxrss * 1024, usage.ru_utime + usage.ru_stime


def limit_of(data, work, runs, level=6):
    """The seconds that deflating alone takes on all cores, in pieces of 1 MiB."""
    files = [data, *sorted(data.rglob("*"))]
    listing = work / "list"
    listing.write_bytes(b"\0".join(os.fsencode(p) for p in files if p.is_file()))
    command = [BUILD / "bench/deflate_limit", str(level), str(os.cpu_count()), listing]
    return statistics.median(float(subprocess.check_output(command)) for _ in range(runs))


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
    if limit:
        print(f"deflate alone: {limit:.2f} s, ours takes {ours / limit:.2f} times that\n")
    print("| program | seconds | times ours | archive MB | of the data | peak MB |")
    print("|---|---:|---:|---:|---:|---:|")
    for program, (seconds, size, peak) in results.items():
        print(f"| {program} | {seconds:.2f} | {seconds / ours:.2f} | {size / MEGABYTE:.1f} "
              f"| {100 * size / original:.1f} % | {peak / MEGABYTE:.0f} |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--quick", action="store_true", help="a tenth of the data")
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("sections", nargs="*", metavar="SECTION", choices=[[], *SECTIONS])
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
    print(f"{os.cpu_count()} cores, medians of {options.runs} runs, data in the page cache")
    for section in options.sections or SECTIONS:
        SECTIONS[section](data, work, notes, options.runs)


def kind_section(kind, commands):
    def section(data, work, notes, runs):
        for name, (line, size) in notes.items():
            out = work / "out" / f"archive.{kind}"
            tasks = {p: [(c, data)] for p, c in commands(name, out).items()}
            report(f"{kind} of {line}", measure(tasks, out, runs), limit_of(data / name, work, runs),
                   size)
    return section


def levels_section(data, work, notes, runs):
    out = work / "out/archive.zip"
    for level in [1, 9]:
        for name in ["tree", "large"]:
            commands = zip_commands(name, out, level)
            tasks = {p: [(commands[p], data)] for p in ["our zip", "zip"]}
            line, size = notes[name]
            report(f"zip -{level} of {line}", measure(tasks, out, runs),
                   limit_of(data / name, work, runs, level), size)


def items_section(data, work, notes, runs):
    items = sorted(p.name for p in (data / "items").iterdir())
    out = work / "out/archive.zip"
    seconds = {}
    for count in [len(items) // 4, len(items)]:
        chosen = items[:count]
        tasks = {"parcelo": [(program_command("zip", out, chosen), data / "items")],
                 "our zip": [(zip_commands(i, out)["our zip"], data / "items") for i in chosen]}
        results = measure(tasks, out, runs)
        seconds[count] = results["parcelo"][0]
        if count < len(items):
            # The others write the whole archive anew for each item: one run is long enough.
            others = {p: [(zip_commands(i, out)[p], data / "items") for i in chosen]
                      for p in ["zip", "7z"]}
            results |= measure(others, out, 1)
        report(f"zip of {count} items of 100 KB, a run of the tool for each", results, None,
               count * 100_000)
    few, many = seconds
    print(f"\n{many} items take {seconds[many] / seconds[few]:.2f} times what {few} take")


def scale_section(data, work, notes, runs):
    print("\n### our zip, by size and by threads\n")
    print("| data | threads | seconds | s per GB | processor s per GB | peak MB |")
    print("|---|---:|---:|---:|---:|---:|")
    unit = notes["large"][1]
    out = work / "out/archive.zip"
    for size, threads in [(10, 2), (100, 2), (1000, 2), (4000, 2), (1000, 1), (1000, 4), (1000, 8)]:
        size = size * unit // 250
        file = work / "scaled"
        if not file.exists() or file.stat().st_size != size:
            with open(file, "wb") as scaled, open(data / "large", "rb") as large:
                while scaled.tell() < size:
                    large.seek(0)
                    shutil.copyfileobj(large, scaled, MEGABYTE)
                scaled.truncate(size)
        results = []
        for _ in range(runs):
            shutil.rmtree(out.parent, ignore_errors=True)
            out.parent.mkdir()
            results.append(run(zip_commands(file.name, out)["our zip"], work,
                               os.environ | {"PARCELO_THREADS": str(threads)}))
        seconds, peak, processor = (statistics.median(column) for column in zip(*results))
        gigabytes = size / 10**9
        print(f"| {size / MEGABYTE:.0f} MB | {threads} | {seconds:.2f} | {seconds / gigabytes:.2f} "
              f"| {processor / gigabytes:.2f} | {peak / MEGABYTE:.0f} |", flush=True)
    file.unlink()


def start_section(data, work, notes, runs):
    runs = 20 * runs + 1
    print(f"\n### one file of one byte, medians of {runs} runs\n")
    print("| program | ms |")
    print("|---|---:|")
    (work / "byte").write_bytes(b"x")
    out = work / "out/archive.zip"
    tasks = {p: [(c, work)] for p, c in zip_commands("byte", out).items()}
    for program, (seconds, _, _) in measure(tasks, out, runs).items():
        print(f"| {program} | {1000 * seconds:.2f} |")
    nothing = statistics.median(run(["/bin/true"], work)[0] for _ in range(runs))
    print(f"| true, which does nothing | {1000 * nothing:.2f} |")


SECTIONS = {"zip": kind_section("zip", zip_commands), "tar.gz": kind_section("tar.gz", tar_commands),
            "levels": levels_section, "items": items_section, "scale": scale_section,
            "start": start_section}

if __name__ == "__main__":
    main()
