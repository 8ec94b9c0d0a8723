"""Writes small database files of both variants, songs only, apart from the writer of the other tests."""

import struct

LITTLE = {"title": 1, "album": 3, "artist": 4, "genre": 5, "composer": 12}
BIG = {"title": 2, "album": 3, "artist": 4, "genre": 5, "composer": 12}


def _chunk(tag, order, jump, body, count=0, length=None):
    header = tag + struct.pack(order + "III", jump, len(body) + jump if length is None else length, count)
    return header.ljust(jump, b"\0") + body


def library(songs, big=False, eight_bit=False):
    """The bytes of a library of these songs, dictionaries of texts. With `eight_bit` the texts of a big-endian one
    are in Mac Roman."""
    order = ">" if big else "<"
    tags = [b"hdfm", b"hdsm", b"htlm", b"htim", b"hohm"] if big else [b"mhbd", b"mhsd", b"mhlt", b"mhit", b"mhod"]
    tracks = []
    for number, song in enumerate(songs):
        objects = b""
        for name, kind in (BIG if big else LITTLE).items():
            if song.get(name):
                text = song[name].encode("mac-roman" if eight_bit else "utf-16-be" if big else "utf-16-le",
                                         "strict" if eight_bit else "surrogatepass")
                head = struct.pack(order + "IIIIII", 0, 0, 3 if eight_bit else 1, len(text), 0, 0)
                objects += _chunk(tags[4], order, 0x18, (head + text)[8:], kind)
        header = struct.pack(order + "I", 1000 + number).rjust(4, b"\0")
        track = _chunk(tags[3], order, 0xF4, objects)
        tracks.append(track[:0x10] + header + track[0x14:])
    songs_list = _chunk(tags[2], order, 0x5C, b"", length=len(songs)) + b"".join(tracks)
    return _chunk(tags[0], order, 0x68, _chunk(tags[1], order, 0x60, songs_list, 1))
