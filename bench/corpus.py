"""Composes what archivers.py gives to the archivers, from files that every Debian machine has."""

import json
import os
import random
import shutil
import subprocess
import zipfile
from pathlib import Path

SOURCES = ["/usr/include", "/usr/share/doc", "/usr/share/man", "/usr/lib/python3", "/usr/share",
           "/usr/lib", "/usr/bin"]
MEGABYTE = 10**6


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


def scaled_file(large, size, path):
    """Makes a file of that size of parts of `large` that lie evenly over all of it, so that every
    size compresses alike."""
    part = 100_000
    count = size // part
    last = large.stat().st_size - part
    with open(path, "wb") as scaled, open(large, "rb") as source:
        for number in range(count):
            source.seek(number * last // count)
            scaled.write(source.read(part))


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
