"""inspect_zip.py ARCHIVE FOREIGN: a strict look at every byte of a zip that is not file data.

Local and central records must agree, the records and their data must fill the file without gap or
overlap, and entries must be written as this program writes them: sizes in the local record, zip64
exactly when a number needs it, bit 11 for the names that need it, times that do not wrap and are
the same in both fields. The first FOREIGN entries are other programs' work: only their place is checked.
Prints pairs, each half ended by a NUL: complaints, the comment, a zip64 end, the entries' names.
"""

import mmap
import struct
import sys
import time

ONES = 0xFFFFFFFF
LOCAL, CENTRAL, END, LOCATOR, END64 = b"PK\3\4", b"PK\1\2", b"PK\5\6", b"PK\6\7", b"PK\6\6"
ZIP64, NTFS, UNIX_TIME, SECOND_NAME = 1, 0x000A, 0x5455, 0x7075
UTF8_FLAG, LEVEL_FLAGS, DESCRIPTOR_FLAG = 0x0800, 0x0006, 0x0008


def tell(kind, text):
    sys.stdout.buffer.write(kind + b"\0" + text + b"\0")


def require(holds, *what):
    if not holds:
        tell(b"complaint", " ".join(map(str, what))[:500].encode())


def is_utf8(name):
    return name.decode(errors="replace").encode() == name


def dos_date_and_time(seconds):
    """In the system's zone; what lies outside of what the format holds becomes the nearest."""
    year, *rest = time.localtime(seconds)[:6]
    if not 1980 <= year <= 2107:
        year, *rest = (1980, 1, 1, 0, 0, 0) if year < 1980 else (2107, 12, 31, 23, 59, 59)
    month, day, hour, minute, second = rest
    return (year - 1980) << 9 | month << 5 | day, hour << 11 | minute << 5 | second // 2


class Record:
    """What a local and a central record have in common."""

    def __init__(self, data, at, signature):
        common, names = (at + 4, at + 30) if signature == LOCAL else (at + 6, at + 46)
        (self.version, self.flags, self.method, self.time, self.date, self.crc, self.packed,
         self.size, name_size, extra_size) = struct.unpack_from("<5H3L2H", data, common)
        at_extra = names + name_size
        self.name, self.extras, self.end = data[names:at_extra], {}, at_extra + extra_size
        require(data[at:at + 4] == signature, self.name, "lacks the signature", signature)
        while at_extra < self.end:
            kind, size = struct.unpack_from("<2H", data, at_extra)
            require(kind not in self.extras, self.name, "has an extra field twice")
            self.extras[kind] = data[at_extra + 4:at_extra + 4 + size]
            at_extra += 4 + size
        require(at_extra == self.end, self.name, "has extra fields that end elsewhere")

    def resolve(self, names, ours):
        """Takes the numbers that are all ones from the zip64 field."""
        names = [name for name in names if getattr(self, name) == ONES]
        self.has_wide = bool(names)
        field = self.extras.get(ZIP64)
        require(not ours or SECOND_NAME not in self.extras, self.name, "has a second name")
        require(not ours or bool(names) == (field is not None), self.name, "has zip64 without need")
        if names and field is not None:
            values = struct.unpack_from(f"<{len(names)}Q", field)
            vars(self).update(zip(names, values))
            require(not ours or len(field) == 8 * len(names), self.name, "has a long zip64 field")
            require(not ours or max(values) >= ONES, self.name, "has zip64 for small numbers")


def read_central(data, at, ours):
    entry = Record(data, at, CENTRAL)
    made_by, = struct.unpack_from("<H", data, at + 4)
    comment_size, disk, _, attributes, entry.offset = struct.unpack_from("<3H2L", data, at + 32)
    entry.resolve(["size", "packed", "offset"], ours)
    require(disk == 0, entry.name, "is said to be on another disk")
    if ours:
        require(made_by >> 8 == 3, entry.name, "was not made on Unix")
        check_as_ours(entry, attributes >> 16)
    return entry, entry.end + comment_size


def check_as_ours(entry, mode):
    name, folder = entry.name, entry.name.endswith(b"/")
    flags = UTF8_FLAG if not name.isascii() and is_utf8(name) else 0
    version = 45 if ZIP64 in entry.extras else 20 if entry.method or folder else 10
    require(entry.flags & ~LEVEL_FLAGS == flags, name, "has flags", entry.flags)
    require(entry.method in (0, 8), name, "has method", entry.method)
    require(entry.method or entry.size == entry.packed, name, "is stored in another size")
    require(entry.version == version, name, "asks for version", entry.version)
    require(folder == (mode & 0o170000 == 0o040000), name, "has the mode of another kind")
    require(not folder or entry.size == 0, name, "is a folder with content")
    require(not name.startswith((b"/", b"./")), name, "is not relative")
    unix, ntfs = entry.extras.get(UNIX_TIME), entry.extras.get(NTFS)
    require(unix is None or ntfs is None, name, "has both time fields")
    if unix is None and ntfs is None:  # out of reach: the DOS time is the first or the last
        seconds = (-1 if entry.date < 1 << 15 else 1) << 36
    elif unix is not None:
        seconds, = struct.unpack_from("<L", unix, 1)
        require(seconds < 1 << 31, name, "has a time that wraps")
    else:
        require(len(ntfs) == 32, name, "has a time field of another size")
        seconds = struct.unpack_from("<q", ntfs, 8)[0] // 10**7 - 11644473600
        require(not 0 <= seconds < 1 << 31, name, "has a long time without need")
    require((entry.date, entry.time) == dos_date_and_time(seconds), name, "has another DOS time")


def end_of_local(data, entry, ours):
    """Checks the local record of an entry; returns where its data ends."""
    local = Record(data, entry.offset, LOCAL)
    if ours:
        local.resolve(["size", "packed"], ours)
        same = ["flags", "method", "time", "date", "crc", "packed", "size", "name"]
        if ZIP64 in local.extras or ZIP64 not in entry.extras:
            same.append("version")  # else only the place is too large for the old field
        for field in same:
            require(getattr(local, field) == getattr(entry, field), entry.name,
                    "has another", field, "in its local record")
    has_descriptor = not ours and entry.flags & DESCRIPTOR_FLAG
    return local.end + entry.packed + (16 if has_descriptor else 0)


def read_end(data):
    end = at = data.rfind(END)
    _, _, count, total, size, offset, comment_size = struct.unpack_from("<4H2LH", data, at + 4)
    require(comment_size == len(data) - at - 22, "something follows the end record")
    tell(b"comment", data[at + 22:])
    zip64 = at >= 20 and data[at - 20:at - 16] == LOCATOR
    require(zip64 or total != 0xFFFF and ONES not in (size, offset), "lacks the zip64 end")
    if zip64:
        tell(b"zip64 end", b"")
        end, = struct.unpack_from("<Q", data, at - 12)
        require(data[end:end + 4] == END64 and end + 56 == at - 20, "the zip64 end is elsewhere")
        count, total, size, offset = struct.unpack_from("<4Q", data, end + 24)
    require(count == total, "there are two different counts")
    require(offset + size == end, "the directory does not end at its end")
    return total, offset, end, zip64


def inspect(data, foreign):
    total, offset, end, zip64 = read_end(data)
    entries, at, place = [], offset, 0
    for index in range(total):
        entry, at = read_central(data, at, index >= foreign)
        entries.append(entry)
        tell(b"entry", entry.name)
    require(at == end, "the directory holds more than its entries")
    needs_zip64 = total >= 0xFFFF or offset >= ONES or any(entry.has_wide for entry in entries)
    require(zip64 == needs_zip64 or zip64 and foreign, "a zip64 end is there:", zip64)
    require(len({entry.name for entry in entries}) == total, "a name is there twice")
    for index, entry in sorted(enumerate(entries), key=lambda pair: pair[1].offset):
        require(entry.offset == place, entry.name, "does not begin where the last one ends")
        place = end_of_local(data, entry, index >= foreign)
    require(place == offset, "there is a gap before the directory")


with open(sys.argv[1], "rb") as file:
    try:
        inspect(mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ), int(sys.argv[2]))
    except (struct.error, TypeError, ValueError) as error:
        require(False, "cannot be read:", error)
