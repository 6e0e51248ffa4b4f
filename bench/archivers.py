#!/usr/bin/env python3
"""Times the bundled tools and the program against other archivers, all in one run.

    bench/archivers.py [--quick] [--runs N] [--work FOLDER] [SECTION...]

The sections are zip, tar.gz, levels, items, scale and start; without any, all of them run.

The data is composed once, from files that every Debian machine has, and lies in the page cache when
it is timed. The programs take turns, so that a busy moment of the machine does not fall on one alone,
and each begins when the disk has nothing left to do of the one before. Times are the medians of the
runs, peaks of memory the maxima; archives are the last run's. The level is 6 where nothing else is
said, for 7z its own default, 5. Only our tar and the program flush their archive to the disk.

The limit is libdeflate alone on all cores over the same bytes in pieces of 1 MiB, nothing written.
It deflates every byte, while ours stores what does not compress.
"wanted" is what we have set ourselves: how many times as long as ours the others should take, how
many times as long as the limit ours may, and how large our archive may be beside that of zip.
"""

import argparse
import json
import os
import random
import shutil
import statistics
import subprocess
import sys
import time
import zipfile
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


# What the mixed data takes of the compressed files of packages, as parts of the whole. Archives,
# which they have most of, are a quarter at most.
COMPRESSED = {".png": 0.1, ".jpg": 0.1, ".jpeg": 0.1, ".mp3": 0.1, ".ogg": 0.1, ".mp4": 0.1,
              ".webm": 0.1, ".pdf": 0.1, ".svgz": 0.1, ".woff2": 0.1, ".odt": 0.1, ".docx": 0.1,
              ".pptx": 0.1, ".xlsx": 0.1, ".jar": 0.1, ".gz": 0.1}
TEXTS = [".txt", ".html", ".rst", ".md", ".svg", ".xml", ".h"]


def compose_mixed(folder, size):
    """A quarter of text, an eighth of office files, of other compressed files what there is of each
    kind, and photographs for the rest. Packages have hardly any photographs and office files, and no
    videos: the first two are made, photographs of noisy plasma, office files of texts and a
    photograph. Videos are left out."""
    kinds = {suffix: [] for suffix in [*COMPRESSED, *TEXTS]}
    for path, length in regular_files():
        kinds.get(os.path.splitext(path)[1].lower(), []).append((path, length))
    texts = [file for suffix in TEXTS for file in kinds[suffix]]
    rest = size - copy_some(texts, size // 4, folder)
    for suffix, part in COMPRESSED.items():
        rest -= copy_some(kinds[suffix], int(part * size), folder)

    photographs = []
    (folder / "made photographs").mkdir(parents=True)
    while sum(f.stat().st_size for f in photographs) < rest - size // 8:
        photographs.append(folder / f"made photographs/{len(photographs)}.jpg")
        subprocess.check_call(
            ["convert", "-seed", str(len(photographs)), "-size", "2400x1600", "plasma:fractal",
             "-attenuate", "0.5", "+noise", "Gaussian", "-quality", "90", photographs[-1]])
    (folder / "made office files").mkdir()
    made = number = 0
    while made < size // 8:
        name = folder / f"made office files/{number}.docx"
        with zipfile.ZipFile(name, "w", zipfile.ZIP_DEFLATED) as office:
            for part in range(20):
                office.write(texts[(20 * number + part) % len(texts)][0], f"word/{part}.xml")
            office.write(photographs[number % len(photographs)], "word/media/image.jpg",
                         zipfile.ZIP_STORED)
        made += name.stat().st_size
        number += 1


def copy_some(files, size, folder):
    """Copies files up to that size in all; gives the size that it came to."""
    total = 0
    for path, length in files:
        if total + length <= size:
            total += length
            copy(path, folder / path[1:])
    return total


def compose(data, quick):
    """Makes the data sets, with a line and the size in bytes of each in notes.json, unless they have
    been made since this script was last changed."""
    made = data / "notes.json"
    if made.exists() and made.stat().st_mtime > Path(__file__).stat().st_mtime:
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
             "mixed": [f"{len(mixed)} files, {total_mixed / MEGABYTE:.0f} MB: " + kinds_of(mixed),
                       total_mixed]}
    made.write_text(json.dumps(notes))


def kinds_of(files):
    """The sizes of the files by kind as text, largest first."""
    sizes = {}
    for file in files:
        suffix = file.suffix.lower()
        kind = ("text" if suffix in TEXTS
                else file.parent.name if file.parent.name.startswith("made ") else suffix[1:])
        sizes[kind] = sizes.get(kind, 0) + file.stat().st_size
    return ", ".join(f"{kind} {size / MEGABYTE:.1f} MB"
                     for kind, size in sorted(sizes.items(), key=lambda item: -item[1]))


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


def program_command(kind, out, names, prefix=BUILD):
    return [prefix / "bin/parcelo", "--quiet", "--to", out.parent, "--name", out.name.split(".")[0],
            "--type", kind, "--level", "6", *names]


def without_our_zip(work):
    """A copy of the program that has no zip of its own, so that it runs the system's."""
    prefix = work / "without"
    shutil.rmtree(prefix, ignore_errors=True)
    for part in ["bin", "libexec"]:
        shutil.copytree(BUILD / part, prefix / part)
    (prefix / TOOLS.relative_to(BUILD) / "zip").unlink()
    return prefix


def one_by_one(tool, out, items):
    """Adds the items as the engine does, by a run of the tool for each, but from a shell."""
    script = """out=$0 tool=$1; shift
        for item; do "$tool" -6 -y -r "$out" "./$item" -x '*/.DS_Store' || exit; done"""
    return ["sh", "-c", script, out, tool, *items]


def run(command, folder, environment=None):
    """Runs a command to its end; returns the seconds, the seconds of processor time, and the peak
    memory of its largest process in bytes."""
    os.sync()
    reading, writing = os.pipe()
    child = subprocess.Popen(
        [BUILD / "bench/launch", str(writing), *map(str, command)], cwd=folder, env=environment,
        stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, pass_fds=[writing])
    os.close(writing)
    message = child.communicate()[1]
    with os.fdopen(reading) as result:
        figures = result.read().split()
    if child.returncode != 0:
        sys.exit(f"{command[0]} ended with {child.returncode}: {message.decode()}")
    return tuple(map(float, figures))


class Limit:
    """What deflating alone takes: a call measures it once more."""

    def __init__(self, data, work, level=6):
        files = [p for p in [data, *sorted(data.rglob("*"))] if p.is_file()]
        listing = work / "list"
        listing.write_bytes(b"\0".join(os.fsencode(p) for p in files))
        self.command = [BUILD / "bench/deflate_limit", str(level), str(os.cpu_count()), listing]
        self.seconds = []

    def __call__(self):
        os.sync()
        self.seconds.append(float(subprocess.check_output(self.command)))

    def median(self):
        return statistics.median(self.seconds)


def measure(tasks, out, runs, limit=None):
    """{program: (command, folder)} -> {program: (seconds, archive size, peak memory)}"""
    seconds = {program: [] for program in tasks}
    sizes, peaks = {}, dict.fromkeys(tasks, 0)
    for _ in range(runs):
        for program, (command, folder) in tasks.items():
            shutil.rmtree(out.parent, ignore_errors=True)
            out.parent.mkdir()
            taken, _, peak = run(command, folder)
            seconds[program].append(taken)
            peaks[program] = max(peaks[program], peak)
            sizes[program] = out.stat().st_size
        if limit:
            limit()
    return {p: (statistics.median(seconds[p]), sizes[p], peaks[p]) for p in tasks}


def report(title, results, limit, original, wanted=None):
    """`wanted` names how many times as long as ours a program should take; "limit": how many times as
    long as that ours may; "size": how large ours may be in percent of that of zip."""
    wanted = wanted or {}
    ours = next(iter(results.values()))[0]
    print(f"\n### {title}\n")
    if limit:
        goal = f", wanted {wanted['limit']}" if "limit" in wanted else ""
        ratio = ours / limit.median()
        print(f"limit: {limit.median():.2f} s, ours takes {ratio:.2f} times that{goal}\n")
    print("| program | seconds | times ours | wanted | archive MB | of the data | peak MB |")
    print("|---|---:|---:|---:|---:|---:|---:|")
    for program, (seconds, size, peak) in results.items():
        print(f"| {program} | {seconds:.2f} | {seconds / ours:.2f} | {wanted.get(program, '')} "
              f"| {size / MEGABYTE:.1f} | {100 * size / original:.1f} % | {peak / MEGABYTE:.0f} |",
              flush=True)
    if "size" in wanted:
        sizes = [size for program, (_, size, _) in results.items() if program in ["zip", "tar -z"]]
        ratio = 100 * next(iter(results.values()))[1] / sizes[0]
        print(f"\nour archive has {ratio:.2f} % of the size of the system's, wanted at most "
              f"{wanted['size']}", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--quick", action="store_true", help="a tenth of the data")
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("sections", nargs="*", metavar="SECTION", choices=[[], *SECTIONS])
    parser.add_argument("--work", type=Path, default=ROOT / "build/bench")
    options = parser.parse_args()

    start = time.monotonic()
    targets = ["deflate_limit", "launch", "bare_window", "parcelo"]
    subprocess.check_call(["cmake", "--build", BUILD, "--target", *targets],
                          stdout=subprocess.DEVNULL)
    work = options.work.resolve() / ("quick" if options.quick else "full")
    data = work / "data"
    compose(data, options.quick)
    notes = json.loads((data / "notes.json").read_text())
    subprocess.check_call(["sh", "-c", "find . -type f -exec cat {} + > /dev/null"], cwd=data)
    print(f"{os.cpu_count()} cores, medians of {options.runs} runs, data in the page cache; ours may "
          f"take {wanted_peak(os.cpu_count()):.0f} MB of memory")
    for section in options.sections or SECTIONS:
        SECTIONS[section](data, work, notes, options.runs)
    print(f"\nall of this took {(time.monotonic() - start) / 60:.1f} minutes")


WANTED = {
    "zip tree": {"zip": 4.5, "limit": 1.15, "size": 100},
    "zip large": {"zip": 5.5, "pigz": 2.3, "limit": 1.2, "size": 100},
    "zip noise": {"zip": 20},
    "zip mixed": {"zip": 6, "size": 100.5},
    "tar.gz tree": {"tar -z": 5, "tar, pigz": 2},
    "tar.gz large": {"tar -z": 5, "tar, pigz": 2},
    "levels": {"zip": 1, "size": 100},
    "items": {"parcelo with the system's zip": 5},
}


def wanted_peak(threads):
    """The memory that ours may take at most, in megabytes."""
    return (64 + 8 * threads) * 2**20 / MEGABYTE


def limit_for(kind, name, data, work):
    """None for what ours stores in great part without deflating it."""
    if name in ["noise", "mixed"]:
        return None
    if kind == "zip":
        return Limit(data / name, work)
    plain = work / "plain.tar"
    subprocess.check_call(["tar", "-hcf", plain, name], cwd=data)
    return Limit(plain, work)


def kind_section(kind, commands):
    def section(data, work, notes, runs):
        for name, (line, size) in notes.items():
            wanted = WANTED.get(f"{kind} {name}")
            if not wanted:
                continue
            out = work / "out" / f"archive.{kind}"
            tasks = {p: (c, data) for p, c in commands(name, out).items()}
            if name == "noise":
                tasks["copy"] = (["cp", name, out], data)
            if (kind, name) == ("zip", "large"):
                tasks["pigz"] = (["sh", "-c", 'pigz -6 -c "$1" > "$0"', out, name], data)
            limit = limit_for(kind, name, data, work)
            report(f"{kind} of {line}", measure(tasks, out, runs, limit), limit, size, wanted)
    return section


def levels_section(data, work, notes, runs):
    out = work / "out/archive.zip"
    for level in [1, 9]:
        for name in ["tree", "large"]:
            commands = zip_commands(name, out, level)
            tasks = {p: (commands[p], data) for p in ["our zip", "zip"]}
            line, size = notes[name]
            limit = Limit(data / name, work, level)
            report(f"zip -{level} of {line}", measure(tasks, out, runs, limit), limit, size,
                   WANTED["levels"])


def items_section(data, work, notes, runs):
    """Items that were dropped at once: the program runs the tool for each. The system's zip, which
    writes the whole archive anew each time, is run by a copy of the program."""
    items = sorted(p.name for p in (data / "items").iterdir())
    folder = data / "items"
    out = work / "out/archive.zip"
    prefix = without_our_zip(work)
    few, many = len(items) // 4, len(items)
    tasks = {}
    for count in [few, many]:
        chosen = items[:count]
        tasks |= {(count, "parcelo"): (program_command("zip", out, chosen), folder),
                  (count, "our zip, from a shell"): (one_by_one(TOOLS / "zip", out, chosen), folder)}
    tasks[few, "parcelo with the system's zip"] = (
        program_command("zip", out, items[:few], prefix), folder)
    results = measure(tasks, out, runs)
    for count in [few, many]:
        report(f"zip of {count} items of 100 KB, a run of the tool for each",
               {program: result for (number, program), result in results.items() if number == count},
               None, count * 100_000, WANTED["items"])
        own = results[count, "parcelo"][0] - results[count, "our zip, from a shell"][0]
        print(f"\nmore than the shell takes: {1000 * own / count:.2f} ms for each item, wanted at most "
              "1.5")
    times = results[many, "parcelo"][0] / results[few, "parcelo"][0]
    shares = [100 * results[count, "parcelo"][1] / (count * 100_000) for count in [few, many]]
    print(f"\n{many} items take {times:.2f} times what {few} take, wanted at most 4.4; they become "
          f"{shares[1]:.1f} % and {shares[0]:.1f} % of their size")


def scale_section(data, work, notes, runs):
    print("\n### our zip, by size and by threads\n")
    print("| data | threads | seconds | s per GB | processor s per GB | peak MB | wanted |")
    print("|---|---:|---:|---:|---:|---:|---:|")
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
        environment = os.environ | {"PARCELO_THREADS": str(threads)}
        tool = zip_commands(file.name, out)["our zip"]
        program = program_command("zip", out, [file.name])
        results, shares = [], []
        for _ in range(runs):
            for command in [tool] + ([program] if (size, threads) == (4 * unit, 2) else []):
                shutil.rmtree(out.parent, ignore_errors=True)
                out.parent.mkdir()
                figures = run(command, work, environment)
                (results if command is tool else shares).append(figures)
        seconds, processor, peak = (statistics.median(column) for column in zip(*results))
        gigabytes = size / 10**9
        print(f"| {size / MEGABYTE:.0f} MB | {threads} | {seconds:.2f} | {seconds / gigabytes:.2f} "
              f"| {processor / gigabytes:.2f} | {peak / MEGABYTE:.0f} | {wanted_peak(threads):.0f} |",
              flush=True)
        if shares:
            share = statistics.median(each[0] for each in shares) / seconds - 1
    file.unlink()
    print(f"\nparcelo takes {100 * share:.1f} % longer for {4 * unit / 10**9:.1f} GB than the tool "
          "that it runs, wanted at most 3")


def start_section(data, work, notes, runs):
    print(f"\n### one file of one byte, medians of {20 * runs} runs\n")
    print("| program | ms | wanted |")
    print("|---|---:|---:|")
    (work / "byte").write_bytes(b"x")
    out = work / "out/archive.zip"
    tasks = {p: (c, work) for p, c in zip_commands("byte", out).items()}
    for program, (seconds, _, _) in measure(tasks, out, 20 * runs).items():
        print(f"| {program} | {1000 * seconds:.2f} | {'3' if program == 'our zip' else ''} |")
    nothing = statistics.median(run(["true"], work)[0] for _ in range(20 * runs))
    print(f"| true, which does nothing | {1000 * nothing:.2f} | |")
    window_table(work, runs)


def window_table(work, runs):
    """From the start of the process to its window on the screen, on a display of its own."""
    programs = {"parcelo": ([BUILD / "bin/parcelo"], "Parcelo"),
                "an empty window of Qt": ([BUILD / "bench/bare_window"], "Bare")}
    home = work / "home"
    shutil.rmtree(home, ignore_errors=True)
    home.mkdir(mode=0o700)
    server = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "1280x800x24"],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    display = ":" + server.stdout.readline().strip()
    environment = {"DISPLAY": display, "PATH": os.environ["PATH"], "LANG": "C.UTF-8",
                   "HOME": str(home), "XDG_CONFIG_HOME": str(home), "XDG_RUNTIME_DIR": str(home),
                   "TMPDIR": str(home)}
    manager = subprocess.Popen(["openbox"], env=environment, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    try:
        time.sleep(1)
        seconds = {program: [] for program in programs}
        for _ in range(runs + 1):  # the first is for the caches
            for program, (command, title) in programs.items():
                seconds[program].append(seconds_to_window(command, title, environment))
        print("\n| window on the screen | ms | times an empty one | million instructions, with a "
              "second after it | times an empty one |")
        print("|---|---:|---:|---:|---:|")
        counts = {p: instructions(*program, environment) for p, program in programs.items()}
        milliseconds = {p: 1000 * statistics.median(taken[1:]) for p, taken in seconds.items()}
        empty = "an empty window of Qt"
        for program, count in counts.items():
            counted = (f"{count / 10**6:.0f} | {count / counts[empty]:.2f}" if count
                       else "not measured without valgrind |")
            print(f"| {program} | {milliseconds[program]:.0f} "
                  f"| {milliseconds[program] / milliseconds[empty]:.2f} | {counted} |", flush=True)
    finally:
        for each in [manager, server]:
            each.terminate()
            each.wait()


def seconds_to_window(command, title, environment, stay=0):
    """Ends the program when its window has been there for `stay` seconds."""
    look = ["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"]
    start = time.perf_counter()
    program = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    try:
        while subprocess.run(look, env=environment, capture_output=True).returncode != 0:
            seconds = time.perf_counter() - start
            if program.poll() is not None or seconds > 120:
                sys.exit(f"{command}: no window after {seconds:.1f} s")
        seconds = time.perf_counter() - start
        time.sleep(stay)
    finally:
        program.terminate()
        program.wait()
    return seconds


def instructions(command, title, environment):
    """Those of the program itself from its start to its end, the kernel's not counted; nothing when
    they cannot be counted."""
    if not shutil.which("valgrind"):
        return None
    counts = Path(environment["HOME"]) / "counts"
    tool = ["valgrind", "--tool=callgrind", f"--callgrind-out-file={counts}"]
    seconds_to_window([*tool, *command], title, environment, 1)
    with open(counts) as lines:
        return next(int(line.split()[1]) for line in lines if line.startswith("summary:"))


SECTIONS = {"zip": kind_section("zip", zip_commands), "tar.gz": kind_section("tar.gz", tar_commands),
            "levels": levels_section, "items": items_section, "scale": scale_section,
            "start": start_section}

if __name__ == "__main__":
    main()
