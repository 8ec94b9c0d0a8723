"""What a player's files say of its songs, read by plain tables that share nothing with the program under test."""

import os
import struct

DAY = 86400
YEAR_1980 = (76 * 365 + 19) * DAY  # seconds since the start of 1904, as all dates here
YEAR_2001 = (97 * 365 + 25) * DAY


def date(value):
    return value if value >= YEAR_1980 else None


def event(value):
    """Some players write the start of 2001 in UTC for never, by the clock of their own zone."""
    return None if abs(value - YEAR_2001) <= 14 * 3600 else date(value)


def nonzero(value):
    return value or None


def stored(value):
    return value


def mark(yes, no):
    return lambda value: {yes: True, no: False}.get(value)


def rating(value):
    return value if value <= 100 else None


BOTH = {
    "id": (0x10, "I", stored), "modified": (0x20, "I", stored), "size": (0x24, "I", stored),
    "duration": (0x28, "I", stored), "track": (0x2C, "I", stored), "track_total": (0x30, "I", stored),
    "year": (0x34, "I", stored), "bit_rate": (0x38, "I", stored), "rate_word": (0x3C, "I", stored),
}
LITTLE = {
    "compilation": (0x1E, "B", bool), "rating": (0x1F, "B", rating), "volume": (0x40, "i", stored),
    "start": (0x44, "I", nonzero), "stop": (0x48, "I", nonzero), "sound_check": (0x4C, "I", nonzero),
    "plays": (0x50, "I", stored), "last_played": (0x58, "I", event), "disc": (0x5C, "I", nonzero),
    "discs": (0x60, "I", nonzero), "added": (0x68, "I", date), "bookmark": (0x6C, "I", nonzero),
    "picture": (0xA4, "B", mark(1, 2)), "image": (0x160, "I", nonzero),
    "persistent_id": (0x70, "Q", nonzero), "checked": (0x78, "B", mark(0, 1)), "bpm": (0x7A, "H", nonzero),
    "released": (0x8C, "I", date), "explicit": (0x92, "B", mark(1, 2)),
    "protected": (0x94, "I", lambda value: value == 0x01010100), "last_skipped": (0xA0, "I", event),
    "skipped_in_shuffle": (0xA5, "B", bool), "remembers_position": (0xA6, "B", bool), "lyrics": (0xB0, "B", bool),
    "movie": (0xB1, "B", bool), "heard": (0xB2, "B", mark(1, 2)), "delay": (0xB8, "I", stored),
    "samples": (0xBC, "Q", lambda value: value if value < 1 << 63 else None), "padding": (0xC8, "I", stored), "gapless": (0xCC, "I", bool),
    "media_type": (0xD0, "I", stored), "season": (0xD4, "I", nonzero), "episode": (0xD8, "I", nonzero),
    "purchased": (0xDC, "I", date), "gapless_album": (0x102, "B", bool), "channels": (0x20C, "H", nonzero),
}
BIG = {
    "plays": (0x4C, "I", stored), "last_played": (0x64, "I", event), "rating": (0x6C, "B", rating),
    "added": (0x78, "I", date), "persistent_id": (0x80, "Q", nonzero), "bpm": (0xA4, "H", nonzero),
}
NAMES = list(BOTH) + list(LITTLE) + ["skips", "bought"]


class Database:
    """songs: for each its facts by name, "at" where it begins, "texts" pairs of type and text."""

    def __init__(self, data, songs_at=None):
        self.data = data
        self.big = data[:4] == b"hdfm"
        self.order = ">" if self.big else "<"
        self.songs = [self._song(at) for at in (self.songs_at() if songs_at is None else songs_at)]

    def word(self, at):
        return struct.unpack_from(self.order + "I", self.data[at:at + 4].ljust(4, b"\0"))[0]

    def songs_at(self):
        """Where songs begin, when one chunk follows another to the end of the file; else None."""
        at, found = 0, []
        while at < len(self.data):
            tag = self.data[at:at + 4]
            if tag in (b"mhit", b"htim"):
                found.append(at)
            step = self.word(at + 8) if tag in (b"mhod", b"hohm") else self.word(at + 4)
            if step < 16 or len(tag) < 4:
                return None
            at += step
        return found if at == len(self.data) else None

    def _song(self, at):
        header = self.data[at:at + min(self.word(at + 4), 0x400)]

        def field(offset, form):
            form = self.order + form
            return struct.unpack_from(form, header, offset)[0] if offset + struct.calcsize(form) <= len(header) else None

        song = dict.fromkeys(NAMES)
        for name, (offset, form, rule) in {**BOTH, **(BIG if self.big else LITTLE)}.items():
            value = field(offset, form)
            song[name] = None if value is None else rule(value)
        if not self.big:
            song["skips"] = field(0x98, "I")
            if song["skips"] == 0 and song["last_skipped"] is not None:
                song["skips"] = field(0x9C, "I")
            if field(0xE0, "I") is not None:
                song["bought"] = field(0xDC, "I") != 0 or field(0xE0, "I") != 0
            if not song["gapless"]:
                song.update(delay=None, padding=None, samples=None)
        song["id"] = song["id"] or 0
        song["at"] = at
        song["texts"] = list(self._texts(at))
        return song

    def _texts(self, song):
        end, at = song + self.word(song + 8), song + self.word(song + 4)
        for _ in range(self.word(song + 12)):
            length = self.word(at + 8)
            if self.data[at:at + 4] != (b"hohm" if self.big else b"mhod") or len(self.data) < at + 0x18:
                return
            if length < 0x18 or at + length > end:
                return
            if 0x28 <= length <= 1 << 20 and len(self.data) >= at + 0x28:
                if self.word(at + 0x14) == 0 and self.word(at + 0x18) == 1:
                    body = self.data[at + 0x28:at + length]
                    yield [self.word(at + 12), text_of(body[:len(body) & ~1], self.big)]
            at += length


def text_of(body, big):
    """With U+FFFD for each unit that is no character."""
    text = body.decode("utf-16-be" if big else "utf-16-le", "surrogatepass")
    return "".join("\uFFFD" if 0xD800 <= ord(character) < 0xE000 else character for character in text)


def play_counts(data, songs):
    """The entries of the file, each a dictionary; None when it cannot be used for this many songs."""
    if len(data) < 16 or data[:4] != b"mhdp":
        return None
    jump, length, count = struct.unpack_from("<III", data, 4)
    if jump < 16 or not 12 <= length <= 0x400 or count != songs or jump + count * length > len(data):
        return None
    entries = []
    for i in range(count):
        entry = data[jump + i * length:][:length]
        words = list(struct.unpack(f"<{length // 4}I", entry[:length & ~3])) + [None] * 8
        heard = entry[0x11] if length >= 0x14 else 0
        entries.append({
            "plays": words[0], "last_played": event(words[1]), "bookmark": nonzero(words[2]),
            "rating": None if words[3] is None else rating(words[3]), "heard": mark(1, 2)(heard),
            "skips": words[5], "last_skipped": None if words[6] is None else event(words[6])})
    return entries


def merge(songs, entries):
    """Whether the entries were joined with the songs, in place; they are not when most of them are older."""
    pairs = list(zip(songs, entries))
    dated = [entry["last_played"] - song["last_played"] for song, entry in pairs
             if entry["last_played"] is not None and song["last_played"] is not None]
    if sum(gap < 0 for gap in dated) > sum(gap >= 0 for gap in dated):
        return False
    rated = [(song["rating"], entry["rating"]) for song, entry in pairs if song["rating"]]
    with_none = not rated or any(one == other for one, other in rated)
    for song, entry in pairs:
        for name in ("plays", "skips"):
            if song[name] is not None:
                song[name] = min(song[name] + (entry[name] or 0), 0xFFFFFFFF)
        for name in ("last_played", "last_skipped"):
            dates = [value for value in (song[name], entry[name]) if value is not None]
            song[name] = max(dates, default=None)
        for name in ("bookmark", "heard"):
            if entry[name] is not None:
                song[name] = entry[name]
        if entry["rating"] is not None and (entry["rating"] or with_none):
            song["rating"] = entry["rating"]
    return True


def counts_file(database):
    """The bytes of the play counts beside a database of a player's name; None without."""
    path = os.path.join(os.path.dirname(database), "Play Counts")
    if os.path.basename(database).lower() not in ("itunesdb", "itunescdb") or not os.path.exists(path):
        return None
    with open(path, "rb") as file:
        return file.read()


def known(path, songs_at=None):
    """The songs of a database with what the player counted, and its entries; None where it has none that fit."""
    with open(path, "rb") as file:
        songs = Database(file.read(), songs_at).songs
    data = counts_file(path)
    entries = None if data is None else play_counts(data, len(songs))
    return songs, entries if entries is not None and merge(songs, entries) else None


def expected(path, songs_at=None):
    """The songs of a database, whether counts are joined with them, and whether some are left out."""
    songs, entries = known(path, songs_at)
    return songs, entries is not None, entries is None and counts_file(path) is not None
