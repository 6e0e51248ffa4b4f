"""inspect_zip.py ARCHIVE FOREIGN: a strict look at every byte of a zip that is not file data.

Local and central records must agree, the records and their data must fill the file without gap or
overlap, and entries must be written as this program writes them: sizes in the local record, zip64
only when a number needs it, bit 11 for the names that need it, times that do not wrap and are the
same in both fields. The first FOREIGN entries are other programs' work: only their place is checked.

Prints, each ended by a NUL: the number of complaints, these, the comment, whether there is a zip64
end; then for each entry its name, its offset and whether it has a zip64 field.
"""

import mmap
import os
import struct
import sys
import time

ONES = 0xFFFFFFFF
LOCAL, CENTRAL, END = b"PK\3\4", b"PK\1\2", b"PK\5\6"
LOCATOR, END64 = b"PK\6\7", b"PK\6\6"
ZIP64, NTFS, UNIX_TIME, SECOND_NAME = 1, 0x000A, 0x5455, 0x7075
UTF8_FLAG, LEVEL_FLAGS, DESCRIPTOR_FLAG = 0x0800, 0x0006, 0x0008

complaints = []


def require(holds, *what):
    if not holds:
        complaints.append(" ".join(map(str, what))[:500])


def is_utf8(name):
    try:
        return name.decode() is not None
    except UnicodeDecodeError:
        return False


def dos_date_and_time(seconds):
    """In the system's zone; what lies outside of what the format holds becomes the nearest."""
    os.environ.pop("TZ", None)
    time.tzset()
    local = time.localtime(seconds)
    if not 1980 <= local.tm_year <= 2107:
        local = (1980, 1, 1, 0, 0, 0) if local.tm_year < 1980 else (2107, 12, 31, 23, 59, 59)
    year, month, day, hour, minute, second = local[:6]
    return (year - 1980) << 9 | month << 5 | day, hour << 11 | minute << 5 | second // 2


class Record:
    """What a local and a central record have in common, read from where both are alike."""

    FIELDS = struct.Struct("<5H3L2H")

    def __init__(self, data, at):
        (self.version, self.flags, self.method, self.time, self.date, self.crc, self.packed,
         self.size, self.name_size, self.extra_size) = self.FIELDS.unpack_from(data, at)

    def read_extras(self, data, at):
        self.extras = {}
        end = at + self.extra_size
        while at < end:
            kind, size = struct.unpack_from("<2H", data, at)
            require(kind not in self.extras, self.name, "has an extra field twice")
            self.extras[kind] = data[at + 4:at + 4 + size]
            at += 4 + size
        require(at == end, self.name, "has extra fields that do not end where they should")

    def resolve(self, names, ours):
        """Takes the numbers that are all ones from the zip64 field."""
        names = [name for name in names if getattr(self, name) == ONES]
        field = self.extras.get(ZIP64)
        if ours:
            require(bool(names) == (field is not None), self.name, "has zip64 without need")
        if names and field is not None:
            values = struct.unpack_from(f"<{len(names)}Q", field)
            for name, value in zip(names, values):
                setattr(self, name, value)
            if ours:
                require(len(field) == 8 * len(names), self.name, "has a long zip64 field")
                require(max(values) >= ONES, self.name, "has a zip64 field for small numbers")


def read_central(data, at, ours):
    entry = Record(data, at + 6)
    require(data[at:at + 4] == CENTRAL, "a central record lacks its signature")
    made_by, = struct.unpack_from("<H", data, at + 4)
    comment_size, disk, _, attributes, entry.offset = struct.unpack_from("<3H2L", data, at + 32)
    entry.name = data[at + 46:at + 46 + entry.name_size]
    entry.read_extras(data, at + 46 + entry.name_size)
    entry.resolve(["size", "packed", "offset"], ours)
    require(disk == 0, entry.name, "is said to be on another disk")
    if ours:
        require(made_by >> 8 == 3, entry.name, "was not made on Unix")
        check_as_ours(entry, attributes >> 16)
    return entry, at + 46 + entry.name_size + entry.extra_size + comment_size


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
    require(SECOND_NAME not in entry.extras, name, "has a second name")

    unix, ntfs = entry.extras.get(UNIX_TIME), entry.extras.get(NTFS)
    require((unix is None) != (ntfs is None), name, "must have one of the two time fields")
    if unix is not None:
        seconds, = struct.unpack_from("<L", unix, 1)
        require(seconds < 1 << 31, name, "has a time that wraps")
    else:
        require(len(ntfs) == 32, name, "has a time field of another size")
        seconds = struct.unpack_from("<q", ntfs, 8)[0] // 10**7 - 11644473600
        require(not 0 <= seconds < 1 << 31, name, "has a long time without need")
    require((entry.date, entry.time) == dos_date_and_time(seconds), name, "has another DOS time")


def end_of_local(data, entry, ours):
    """Checks the local record of an entry; returns where its data ends."""
    at = entry.offset
    require(data[at:at + 4] == LOCAL, entry.name, "has no local record")
    local = Record(data, at + 4)
    local.name = data[at + 30:at + 30 + local.name_size]
    local.read_extras(data, at + 30 + local.name_size)
    if ours:
        local.resolve(["size", "packed"], ours)
        same = ["flags", "method", "time", "date", "crc", "packed", "size", "name"]
        if ZIP64 in local.extras or ZIP64 not in entry.extras:
            same.append("version")  # else only the place is too large for the old field
        for field in same:
            require(getattr(local, field) == getattr(entry, field), entry.name,
                    "has another", field, "in its local record")
        require(SECOND_NAME not in local.extras, entry.name, "has a second name")
    end = at + 30 + local.name_size + local.extra_size + entry.packed
    return end + (16 if not ours and entry.flags & DESCRIPTOR_FLAG else 0)


def read_end(data):
    at = data.rfind(END)
    _, _, count, total, size, offset, comment_size = struct.unpack_from("<4H2LH", data, at + 4)
    comment = data[at + 22:]
    require(comment_size == len(comment), "something follows the end record")
    zip64 = data[at - 20:at - 16] == LOCATOR if at >= 20 else False
    require(zip64 == (total == 0xFFFF or ONES in (size, offset)), "zip64 end: is", zip64)
    end = at
    if zip64:
        end, = struct.unpack_from("<Q", data, at - 12)
        require(data[end:end + 4] == END64 and end + 56 == at - 20, "the zip64 end is elsewhere")
        count, total, size, offset = struct.unpack_from("<4Q", data, end + 24)
        require(total >= 0xFFFF or max(size, offset) >= ONES, "the zip64 end is not needed")
    require(count == total, "there are two different counts")
    require(offset + size == end, "the directory does not end at its end")
    return total, offset, end, comment, zip64


def inspect(data, foreign):
    total, offset, end, comment, zip64 = read_end(data)
    entries, at = [], offset
    for index in range(total):
        entry, at = read_central(data, at, index >= foreign)
        entries.append(entry)
    require(at == end, "the directory holds more than its entries")
    require(len({entry.name for entry in entries}) == total, "a name is there twice")
    place = 0
    for index, entry in sorted(enumerate(entries), key=lambda pair: pair[1].offset):
        require(entry.offset == place, entry.name, "does not begin where the last one ends")
        place = end_of_local(data, entry, index >= foreign)
    require(place == offset, "there is a gap before the directory")
    return entries, comment, zip64


def main():
    entries, comment, zip64 = [], b"", False
    with open(sys.argv[1], "rb") as file:
        try:
            data = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
            entries, comment, zip64 = inspect(data, int(sys.argv[2]))
        except (struct.error, TypeError, ValueError) as error:
            require(False, "cannot be read:", error)
    fields = [len(complaints), *complaints, comment, int(zip64)]
    for entry in entries:
        fields += [entry.name, entry.offset, int(ZIP64 in entry.extras)]
    for field in fields:
        sys.stdout.buffer.write((field if isinstance(field, bytes) else str(field).encode()) + b"\0")


main()
