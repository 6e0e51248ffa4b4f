#!/usr/bin/env python3
"""Times the bundled tools and the program against other archivers, all in one run.

    bench/archivers.py [--quick] [--runs N] [--work FOLDER] [SECTION...]

The sections are zip, tar.gz, levels, items, scale, cost and start; without any, all of them run.

The data (corpus.py) is composed once and lies in the page cache when it is timed. The programs take
turns, each time in another order, so that neither a busy moment of the machine nor what one leaves
behind falls on one alone; each begins when the disk has nothing left to do of the one before. Times
are the medians of the runs, peaks of memory the maxima; archives are the last run's. The level is 6
where nothing else is said, for 7z its own default, 5. Only our tar and the program flush their
archive to the disk.

The limit is libdeflate alone on all cores over the same bytes in pieces of 1 MiB, nothing written.
It deflates every byte, while ours stores what does not compress.
"wanted" is what we have set ourselves: how many times as long as ours the others should take, how
many times as long as the limit ours may, and how large our archive may be beside that of zip.
"""

import argparse
import json
import os
import shutil
import statistics
import subprocess
import sys
import time
from dataclasses import dataclass, field
from pathlib import Path

from corpus import MEGABYTE, compose, scaled_file

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/release"
TOOLS = BUILD / "libexec/parcelo/Contents/Resources"


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


def run(command, folder=None, environment=None):
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


@dataclass
class Result:
    times: list = field(default_factory=list)
    processor_times: list = field(default_factory=list)
    size: int = 0
    peak: float = 0

    @property
    def seconds(self):
        return statistics.median(self.times)

    @property
    def processor_seconds(self):
        return statistics.median(self.processor_times)


def measure(tasks, out, runs, limit=None):
    """Runs what {name: (command, folder, environment), ...} says, the last two of which may be left
    out, so that each makes `out`; gives {name: Result}."""
    results = {name: Result() for name in tasks}
    order = list(tasks)
    for _ in range(runs):
        for name in order:
            shutil.rmtree(out.parent, ignore_errors=True)
            out.parent.mkdir()
            seconds, processor_seconds, peak = run(*tasks[name])
            result = results[name]
            result.times.append(seconds)
            result.processor_times.append(processor_seconds)
            result.size = out.stat().st_size
            result.peak = max(result.peak, peak)
        order.append(order.pop(0))
        if limit:
            limit()
    return results


@dataclass
class Wanted:
    """How many times as long as ours each program should take, how many times as long as the limit
    ours may, and how large our archive may be in percent of that of zip."""
    times: dict = field(default_factory=dict)
    limit: float | None = None
    size: float | None = None


def report(title, results, original, wanted, limit=None):
    """The first of the results is ours."""
    ours = next(iter(results.values()))
    print(f"\n### {title}\n")
    if limit:
        goal = f", wanted {wanted.limit}" if wanted.limit else ""
        ratio = ours.seconds / limit.median()
        print(f"limit: {limit.median():.2f} s, ours takes {ratio:.2f} times that{goal}\n")
    print("| program | seconds | times ours | wanted | archive MB | of the data | peak MB |")
    print("|---|---:|---:|---:|---:|---:|---:|")
    for program, result in results.items():
        print(f"| {program} | {result.seconds:.2f} | {result.seconds / ours.seconds:.2f} "
              f"| {wanted.times.get(program, '')} | {result.size / MEGABYTE:.1f} "
              f"| {100 * result.size / original:.1f} % | {result.peak / MEGABYTE:.0f} |", flush=True)
    if wanted.size:
        ratio = 100 * ours.size / results["zip"].size
        print(f"\nour archive has {ratio:.2f} % of the size of the system's, wanted at most "
              f"{wanted.size}", flush=True)


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
    "zip tree": Wanted({"zip": 4.5}, limit=1.15, size=100),
    "zip large": Wanted({"zip": 5.5, "pigz": 2.3}, limit=1.2, size=100),
    "zip noise": Wanted({"zip": 20}),
    "zip mixed": Wanted({"zip": 6}, size=100.5),
    "tar.gz tree": Wanted({"tar -z": 5, "tar, pigz": 2}),
    "tar.gz large": Wanted({"tar -z": 5, "tar, pigz": 2}),
    "levels": Wanted({"zip": 1}, size=100),
    "items": Wanted({"parcelo with the system's zip": 5}),
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
            report(f"{kind} of {line}", measure(tasks, out, runs, limit), size, wanted, limit)
    return section


def levels_section(data, work, notes, runs):
    out = work / "out/archive.zip"
    for level in [1, 9]:
        for name in ["tree", "large"]:
            commands = zip_commands(name, out, level)
            tasks = {p: (commands[p], data) for p in ["our zip", "zip"]}
            line, size = notes[name]
            limit = Limit(data / name, work, level)
            report(f"zip -{level} of {line}", measure(tasks, out, runs, limit), size,
                   WANTED["levels"], limit)


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
               count * 100_000, WANTED["items"])
        own = results[count, "parcelo"].seconds - results[count, "our zip, from a shell"].seconds
        print(f"\nmore than the shell takes: {1000 * own / count:.2f} ms for each item, wanted at most "
              "1.5")
    times = results[many, "parcelo"].seconds / results[few, "parcelo"].seconds
    shares = [100 * results[count, "parcelo"].size / (count * 100_000) for count in [few, many]]
    print(f"\n{many} items take {times:.2f} times what {few} take, wanted at most 4.4; they become "
          f"{shares[1]:.1f} % and {shares[0]:.1f} % of their size")
    small_items_table(data, work, runs)


def small_items_table(data, work, runs):
    """What an item costs that is hardly anything to compress, and whether that grows."""
    folder = work / "small"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    text = next((data / "items").iterdir()).read_bytes()
    names = [f"small item {number:04}.txt" for number in range(5000)]
    for number, name in enumerate(names):
        (folder / name).write_bytes(text[number:number + 2000])
    out = work / "out/archive.zip"
    counts = [1000, 2000, 5000]
    tasks = {count: (program_command("zip", out, names[:count]), folder) for count in counts}
    print("\n### items of 2 KB, a run of the tool for each\n")
    print("| items | ms for each | processor ms for each | times that of the fewest | wanted |")
    print("|---:|---:|---:|---:|---:|")
    results = measure(tasks, out, runs)
    each = {count: 1000 * result.seconds / count for count, result in results.items()}
    for count, result in results.items():
        print(f"| {count} | {each[count]:.2f} | {1000 * result.processor_seconds / count:.2f} "
              f"| {each[count] / each[counts[0]]:.2f} | 1.0 ms, 1.10 |", flush=True)


def scale_section(data, work, notes, runs):
    unit = notes["large"][1] // 250
    files = {size: work / f"scaled{size}" for size in [10, 100, 1000, 4000]}
    for size, file in files.items():
        scaled_file(data / "large", size * unit, file)
    out = work / "out/archive.zip"
    tasks = {(size, threads): (zip_commands(files[size].name, out)["our zip"], work,
                               os.environ | {"PARCELO_THREADS": str(threads)})
             for size, threads in [(10, 2), (100, 2), (1000, 2), (4000, 2),
                                   (1000, 1), (1000, 4), (1000, 8)]}
    print("\n### our zip, by size and by threads\n")
    print("| data | threads | seconds | s per GB | processor s per GB | peak MB | wanted |")
    print("|---|---:|---:|---:|---:|---:|---:|")
    for (size, threads), result in measure(tasks, out, runs).items():
        gigabytes = size * unit / 10**9
        print(f"| {1000 * gigabytes:.0f} MB | {threads} | {result.seconds:.2f} "
              f"| {result.seconds / gigabytes:.2f} | {result.processor_seconds / gigabytes:.2f} "
              f"| {result.peak / MEGABYTE:.0f} | {wanted_peak(threads):.0f} |", flush=True)
    for file in files.values():
        file.unlink()


def cost_section(data, work, notes, runs):
    """What the program adds to a run of its tool."""
    size = 5 * notes["large"][1]
    file = work / f"scaled{size}"
    scaled_file(data / "large", size, file)
    out = work / "out/archive.zip"
    commands = zip_commands(file.name, out)
    tasks = {program: (commands[program], work) for program in ["our zip", "parcelo"]}
    results = measure(tasks, out, runs)
    report(f"zip of one file of {size / 10**9:.2f} GB", results, size, Wanted())
    shares = sorted(100 * (program / tool - 1) for tool, program
                    in zip(results["our zip"].times, results["parcelo"].times))
    print(f"\nparcelo takes {statistics.median(shares):.1f} % longer than the tool that it runs just "
          f"before or after it, {shares[0]:.1f} to {shares[-1]:.1f}; wanted at most 3", flush=True)
    file.unlink()


def start_section(data, work, notes, runs):
    print(f"\n### one file of one byte, medians of {20 * runs} runs\n")
    print("| program | ms | wanted |")
    print("|---|---:|---:|")
    (work / "byte").write_bytes(b"x")
    out = work / "out/archive.zip"
    tasks = {p: (c, work) for p, c in zip_commands("byte", out).items()}
    for program, result in measure(tasks, out, 20 * runs).items():
        print(f"| {program} | {1000 * result.seconds:.2f} | {'3' if program == 'our zip' else ''} |")
    nothing = statistics.median(run(["true"])[0] for _ in range(20 * runs))
    print(f"| true, which does nothing | {1000 * nothing:.2f} | |")
    window_table(work, runs)


def window_table(work, runs):
    """From the start of the process to its window on the screen, on a display of its own."""
    programs = {"parcelo": ([BUILD / "bin/parcelo"], "Parcelo"),
                "an empty window of Qt": ([BUILD / "bench/bare_window"], "Bare")}
    counted = {p: c for p, (c, _) in programs.items()}
    counted["parcelo"] = [BUILD / "libexec/parcelo/parcelo-window"]  # which the former becomes
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
        print("\n| window on the screen | ms | times an empty one | million instructions before the "
              "event loop | times an empty one |")
        print("|---|---:|---:|---:|---:|")
        counts = {p: instructions(command, environment) for p, command in counted.items()}
        milliseconds = {p: 1000 * statistics.median(taken[1:]) for p, taken in seconds.items()}
        empty = "an empty window of Qt"
        for program, count in counts.items():
            told = (f"{count / 10**6:.0f} | {count / counts[empty]:.2f}" if count
                    else "not measured without valgrind |")
            print(f"| {program} | {milliseconds[program]:.0f} "
                  f"| {milliseconds[program] / milliseconds[empty]:.2f} | {told} |", flush=True)
    finally:
        for each in [manager, server]:
            each.terminate()
            each.wait()


def seconds_to_window(command, title, environment):
    """Ends the program when its window is there."""
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
    finally:
        program.terminate()
        program.wait()
    return seconds


def instructions(command, environment):
    """Those of the program itself from its start to its event loop, the kernel's not counted; nothing
    when they cannot be counted."""
    if not shutil.which("valgrind"):
        return None
    counts = Path(environment["HOME"]) / "counts"
    dump = counts.with_suffix(".1")
    dump.unlink(missing_ok=True)
    tool = ["valgrind", "--tool=callgrind", f"--callgrind-out-file={counts}",
            "--dump-before=QApplication::exec()"]
    program = subprocess.Popen([*tool, *command], env=environment, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    while not dump.exists() and program.poll() is None:
        time.sleep(0.1)
    program.terminate()
    program.wait()
    with open(dump) as lines:
        return next(int(line.split()[1]) for line in lines if line.startswith("summary:"))


SECTIONS = {"zip": kind_section("zip", zip_commands), "tar.gz": kind_section("tar.gz", tar_commands),
            "levels": levels_section, "items": items_section, "scale": scale_section,
            "cost": cost_section, "start": start_section}

if __name__ == "__main__":
    main()
