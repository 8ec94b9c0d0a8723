"""Writes small database files of both variants, apart from the writer of the other tests."""

import struct
import zlib

LITTLE = {"title": 1, "path": 2, "album": 3, "artist": 4, "genre": 5, "comment": 8, "composer": 12, "album_artist": 22}
# Numbers of a song in a little-endian library.
NUMBERS = {"marks": 0x1C, "size": 0x24, "length": 0x28, "track": 0x2C, "track_total": 0x30, "year": 0x34, "disc": 0x5C, "discs": 0x60}
COMPILATION = 0x10000  # among the marks
BIG = {"title": 2, "album": 3, "artist": 4, "genre": 5, "composer": 12}
FIRST_ID = 1000


def _chunk(tag, order, jump, body, count=0, length=None):
    header = tag + struct.pack(order + "III", jump, len(body) + jump if length is None else length, count)
    return header.ljust(jump, b"\0") + body


def _with_words(chunk, order, words):
    chunk = bytearray(chunk)
    for offset, word in words.items():
        struct.pack_into(order + "I", chunk, offset, word)
    return bytes(chunk)


def library(songs, playlists=None, big=False, eight_bit=False):
    """The bytes of a library of these songs, dictionaries of texts and, in a little-endian one, of NUMBERS. With `eight_bit`
    the texts of a big-endian one are in Mac Roman. A little-endian one may have playlists: names, each with the places
    of its songs, and words of its header where it has some."""
    order = ">" if big else "<"
    tags = [b"hdfm", b"hdsm", b"htlm", b"htim", b"hohm"] if big else [b"mhbd", b"mhsd", b"mhlt", b"mhit", b"mhod"]

    def text_object(kind, text):
        text = text.encode("mac-roman" if eight_bit else "utf-16-be" if big else "utf-16-le",
                           "strict" if eight_bit else "surrogatepass")
        chunk = _chunk(tags[4], order, 0x18, bytes(16) + text, kind)
        return _with_words(chunk, order, {0x18: 3 if eight_bit else 1, 0x1C: len(text)})

    tracks = []
    for place, song in enumerate(songs):
        objects = [text_object(kind, song[name]) for name, kind in (BIG if big else LITTLE).items() if song.get(name)]
        track = _chunk(tags[3], order, 0xF4, b"".join(objects))
        words = {0x10: FIRST_ID + place}
        if not big:
            words |= {offset: song.get(name) or 0 for name, offset in NUMBERS.items()}
        tracks.append(_with_words(track, order, words))
    sets = _chunk(tags[1], order, 0x60, _chunk(tags[2], order, 0x5C, b"", length=len(songs)) + b"".join(tracks), 1)
    if playlists is not None:
        lists = b""
        for name, places, *more in [("Library", range(len(songs))), *playlists]:
            entries = [_with_words(_chunk(b"mhip", order, 0x4C, b""), order, {0x18: FIRST_ID + place})
                       for place in places]
            body = text_object(1, name) + b"".join(entries)
            lists += _with_words(_chunk(b"mhyp", order, 0x6C, body, 1), order, {0x10: len(entries), **(more[0] if more else {})})
        count = len(playlists) + 1
        sets += _chunk(b"mhsd", order, 0x60, _chunk(b"mhlp", order, 0x5C, b"", length=count) + lists, 2)
    return _chunk(tags[0], order, 0x68, sets)


def compressed(database, level=6):
    """The compressed form of a player's database, made by another writer than the one under test knows."""
    header = struct.unpack_from("<I", database, 4)[0]
    body = zlib.compress(database[header:], level)
    return _with_words(database[:header], "<", {8: header + len(body)}) + body
