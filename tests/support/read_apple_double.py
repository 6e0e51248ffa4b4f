"""read_apple_double.py ARCHIVE: what the AppleDouble files in a zip's __MACOSX folder hold.

A line for each: NAME|FINDER INFORMATION|ATTRIBUTE=VALUE,...|RESOURCE FORK, bytes as Latin-1, of long values the count.
Stops at anything that readers would stumble over.
"""

import struct
import sys
import zipfile


def text(data):
    return data.decode("latin-1").replace("\0", "\\0") if len(data) < 50 else f"{len(data)} bytes"


def read_attributes(data, end):
    magic, _, total, start, size = struct.unpack_from(">4s4I", data, 84)
    assert magic == b"ATTR" and total == end and start + size == end and start <= 65536
    position = 120
    for _ in range(struct.unpack_from(">H", data, 118)[0]):
        offset, length, _, name_size = struct.unpack_from(">IIHB", data, position)
        name = data[position + 11:position + 11 + name_size]
        assert name.endswith(b"\0") and name_size <= 128
        assert start <= offset and offset + length <= end
        yield text(name[:-1]) + "=" + text(data[offset:offset + length])
        position += (11 + name_size + 3) // 4 * 4
        assert position <= start


archive = zipfile.ZipFile(sys.argv[1])
for name in filter(lambda name: name.startswith("__MACOSX/"), archive.namelist()):
    data = archive.read(name)
    *head, finder_size, second, fork, fork_size = struct.unpack_from(">II16xH6I", data)
    assert (head, second) == ([0x00051607, 0x00020000, 2, 9, 50], 2)
    assert 50 + finder_size == fork and fork + fork_size == len(data)
    print(name, text(data[50:82].rstrip(b"\0")), ",".join(read_attributes(data, fork)), text(data[fork:]), sep="|")
