"""read_apple_double.py ARCHIVE: what the AppleDouble files in a zip's __MACOSX folder hold.

A line for each: NAME|FINDER INFORMATION|ATTRIBUTE=VALUE,...|RESOURCE FORK, bytes as Python writes them.
Stops at anything that readers would stumble over.
"""

import struct
import sys
import zipfile


def text(data):
    return data.decode("latin-1").rstrip("\0")


def read_attributes(data, end):
    magic, _, total, start, size = struct.unpack_from(">4s4I", data, 84)
    count = struct.unpack_from(">H", data, 118)[0]
    assert magic == b"ATTR" and total == end and start + size == end and start <= 65536
    position = 120
    for _ in range(count):
        offset, length, _, name_size = struct.unpack_from(">IIHB", data, position)
        name = data[position + 11 : position + 11 + name_size]
        assert name.endswith(b"\0") and name_size <= 128
        assert start <= offset and offset + length <= end
        yield text(name) + "=" + text(data[offset : offset + length])
        position += (11 + name_size + 3) // 4 * 4
        assert position <= start


with zipfile.ZipFile(sys.argv[1]) as archive:
    for name in archive.namelist():
        if not name.startswith("__MACOSX/"):
            continue
        data = archive.read(name)
        magic, version, _, count = struct.unpack_from(">II16sH", data)
        assert (magic, version, count) == (0x00051607, 0x00020000, 2)
        kind, finder, finder_size, second, fork, fork_size = struct.unpack_from(">6I", data, 26)
        assert (kind, finder, second) == (9, 50, 2)
        assert finder + finder_size == fork and fork + fork_size == len(data)
        attributes = ",".join(read_attributes(data, fork))
        print(name, text(data[50:82]), attributes, text(data[fork:]), sep="|")
