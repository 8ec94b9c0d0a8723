"""A plain reader of what a shuffle plays from, written from a description of the files alone."""

import struct


def three(data, at, order):
    return int.from_bytes(data[at:at + 3], order)


def song_list(data):
    """The songs as pairs of path (bytes) and persistent id, the number announced, whether some are missing; None for
    bytes that are no such list."""
    if data[:4] == b"bdhs":
        return newer_list(data)
    if len(data) < 18 or data[3:9] not in (b"\1\6\0\0\0\x12", b"\1\x08\0\0\0\x12"):
        return None
    count, songs = three(data, 0, "big"), []
    for i in range(count):
        song = data[18 + 558 * i:18 + 558 * (i + 1)]
        if len(song) < 558 or three(song, 0, "big") != 558:
            break
        units = struct.unpack("<261H", song[33:33 + 522])
        text = b"".join(struct.pack("<H", unit) for unit in units).decode("utf-16-le", "surrogatepass")
        text = "".join("\uFFFD" if 0xD800 <= ord(one) < 0xE000 else one for one in text).split("\0")[0]
        songs.append((text.encode(), None))
    return songs, count, len(songs) < count


def newer_list(data):
    def word(at):
        return struct.unpack_from("<I", data, at)[0] if at + 4 <= len(data) else None
    count, at, songs = word(12) or 0, word(0x24) or 0, []
    if count == 0:
        return songs, 0, False
    if data[at:at + 4] != b"hths":
        return songs, count, True
    limit = word(at + 4) or 0
    for i in range(count):
        place = 20 + 4 * i
        room = (i + 1) * 0x118 <= len(data)  # for so many songs beside each other
        song = word(at + place) if place + 4 <= limit and room else None
        if song is None or data[song:song + 4] != b"rths":
            return songs, count, True
        length = word(song + 4) or 0
        if length < 0x118 or song + length > len(data):
            return songs, count, True
        record = data[song:song + length]
        identity = struct.unpack_from("<Q", record, 0x148)[0] if length >= 0x150 else 0
        songs.append((record[0x18:0x118].split(b"\0")[0], identity or None))
    return songs, count, False


def counts(data):
    """Pairs of plays and skips; None for bytes that are no such file."""
    if len(data) < 6:
        return None
    if data == bytes(8) or len(data) >= 40 and data[8:12] == b"\x20\0\0\0":
        found = []
        for i in range(struct.unpack_from("<I", data)[0]):
            entry = data[8 + 32 * i:8 + 32 * (i + 1)]
            if len(entry) < 32 or entry[:4] != b"\x20\0\0\0":
                break
            found.append(list(struct.unpack_from("<I4xI", entry, 8)))
        return found
    number = three(data, 0, "little")
    if number and (len(data) < 24 or data[6:9] != b"\x12\0\0"):
        return None
    found = []
    for i in range(number):
        entry = data[6 + 18 * i:6 + 18 * (i + 1)]
        if len(entry) < 18 or entry[:3] != b"\x12\0\0":
            break
        found.append([three(entry, 12, "little"), three(entry, 15, "little")])
    return found
