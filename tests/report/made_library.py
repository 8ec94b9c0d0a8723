"""Libraries for the page, written by other hands than the program's, and pages that hold them."""

import base64
import json
import random
import struct
import zlib

WORDS = ["artist", "album", "album_artist", "genre", "composer", "kind", "media", "comment"]
NUMBERS = ["year", "track", "disc", "duration", "size", "bit_rate", "added", "last_played", "plays", "skips", "rating",
           "compilation"]
EMPTY = {"year": 0, "track": 0, "disc": 0, "duration": 0, "size": 0, "bit_rate": 0}


def fill(template, library):
    """The page with this library in it: what could end the element, or is seen in no editor, is escaped."""
    text = json.dumps(library, separators=(",", ":"))  # ASCII, halves of surrogate pairs too
    for c in "<>&\x7f":
        text = text.replace(c, f"\\u{ord(c):04x}")
    title = library["title"].encode("utf-8", "replace").decode("utf-8")
    for c, name in ("&", "&amp;"), ("<", "&lt;"), (">", "&gt;"):
        title = title.replace(c, name)
    return template.replace("@TITLE@", title).replace("@LIBRARY@", text)


def png(red, green, blue, side=24):
    """A picture of two colours."""
    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))
    light, dark = bytes([red, green, blue]), bytes([red // 2, green // 2, blue // 2])
    rows = b"".join(b"\0" + light * (side - row) + dark * row for row in range(side))
    head = struct.pack(">IIBBBBB", side, side, 8, 2, 0, 0, 0)
    data = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")
    return "data:image/png;base64," + base64.b64encode(data).decode()


class Library:
    """Collects songs as dictionaries, and writes them in the columns that the page reads."""

    def __init__(self, title):
        self.words = {name: {"": 0} for name in WORDS}
        self.columns = {name: [] for name in ["title", *WORDS, *NUMBERS, "album_of", "flags"]}
        self.albums, self.covers, self.playlists, self.podcasts = {}, [], [], []
        self.title = title
        self.facts = [["Name", title], ["Model", "iPod (generation 5), 30 GB, white, number MA002"], ["Firmware", "1.2.1"]]
        self.health = {"checked": True, "findings": [], "remarks": [], "missing": [], "damaged": [], "duplicates": []}

    def __len__(self):
        return len(self.columns["title"])

    def add(self, title, cover=None, flags=0, **facts):
        for name in WORDS:
            self.columns[name].append(self.words[name].setdefault(facts.get(name, ""), len(self.words[name])))
        for name in NUMBERS:
            self.columns[name].append(facts.get(name, EMPTY.get(name)))
        album = None
        if facts.get("album"):
            key = (facts["album"], facts.get("album_artist") or facts.get("artist", ""))
            album = self.albums.setdefault(key, len(self.albums))
            if album == len(self.covers):
                self.covers.append(cover)
        self.columns["title"].append(title)
        self.columns["album_of"].append(album)
        self.columns["flags"].append(flags)
        return len(self) - 1

    def add_list(self, name, songs, kind="playlist", rules=None, parent=None, created=None):
        self.playlists.append({"name": name, "kind": kind, "rules": rules, "parent": parent, "songs": songs,
                               "created": created})
        return len(self.playlists) - 1

    def written(self):
        columns = dict(self.columns)
        for name, values in self.columns.items():
            blank = 0 if name in WORDS or name in EMPTY else None
            if name not in ("title", "flags") and all(value == blank for value in values):
                columns[name] = None
        pictures = [picture for picture in self.covers if picture]
        return {
            "program": "zemhost 1.2.3", "made": "2026-11-22T10:00:00", "title": self.title, "facts": self.facts,
            "totals": {"songs": len(self), "duration": sum(self.columns["duration"]), "size": sum(self.columns["size"]),
                       "playlists": len(self.playlists)},
            "words": {name: list(words) for name, words in self.words.items()},
            "songs": columns,
            "albums": [{"name": name, "artist": artist,
                        "cover": pictures.index(cover) if cover else None}
                       for (name, artist), cover in zip(self.albums, self.covers)],
            "covers": pictures, "playlists": self.playlists, "podcasts": self.podcasts, "health": self.health}


ARTISTS = ["Mira Solvang", "The Paper Engines", "Élodie Marchandeau", "月島ひかり", "Arcade Tide", "Los Faroles del Sur",
           "דנה לוי", "Zoë & the Ångströms", "Idris Calloway"]
GENRES = ["Folk", "Rock", "Chanson", "J-Pop", "Electronic", ""]
NOUNS = ["Harbour", "Lights", "Rail", "Moon", "Drive", "Café", "Été", "Signal", "Paper", "Engine", "Rain", "Ferry", "Home",
         "Hours", "Gear", "Jukebox", "Heart", "Tide"]


def small():
    """Sixty songs with something of everything that the page shows."""
    dice = random.Random(7)
    library = Library("Ann's player")
    for at in range(57):
        artist = ARTISTS[at % len(ARTISTS)]
        album = f"{NOUNS[at % 9 + 3]} & {NOUNS[at % 9 + 7]}" if at % 9 < 7 else ""
        library.add(
            f"{dice.choice(NOUNS)} {dice.choice(NOUNS)} {at}", artist=artist, album=album,
            genre=GENRES[at % len(GENRES)], composer=dice.choice(["", "J. Eik"]), year=dice.choice([0, 1987, 1996, 2003, 2005]),
            kind=dice.choice(["MPEG audio file", "AAC audio file"]), media="music", track=at // 9 + 1, disc=1,
            duration=dice.randrange(31000, 420000), size=dice.randrange(900000, 9000000),
            bit_rate=dice.choice([112, 128, 160, 192, 320]), added=13000 + dice.randrange(700),
            plays=dice.choice([0, 0, 1, 4, 40]), skips=dice.choice([0, 0, 2]), rating=dice.choice([0, 20, 60, 80, 100]),
            last_played=dice.choice([None, 14000]), cover=png(90 + at * 20 % 160, 120, 200 - at * 9 % 160) if at < 4 else None,
            compilation=0, comment="Bought in Sète" if at == 5 else "")
    for at in range(3):
        library.add(f"Episode {at + 1}", artist="Radio Fjord", album="News at Nine", media="podcast", genre="Podcast",
                    kind="MPEG audio file", duration=1800000, size=20000000, bit_rate=96, added=13800 + 7 * at, plays=0,
                    skips=0, rating=0, compilation=0)
    library.add_list("Ann's player", list(range(60)), kind="library")
    library.add_list("Night Drives", [4, 3, 3, 12, -1, 40], created=13500)
    library.add_list("Played often", [at for at in range(60) if library.columns["plays"][at] == 40], kind="smart",
                     rules="Plays is greater than 30\nGenre is not Podcast")
    folder = library.add_list("Travel", [], kind="folder")
    library.add_list("Ferries", [7, 8, 9], parent=folder)
    library.add_list("Trains", [9, 10], parent=folder)
    library.podcasts.append({"name": "News at Nine", "episodes": [57, 58, 59]})
    library.health.update(findings=["The play counts end early."], remarks=["3 files are named by no song."], missing=[6],
                          damaged=[[11, "2,000 bytes are missing at its end"]], duplicates=[[1, 2], [20, 21, 22]])
    for song, bit in (6, 1), (11, 2), (1, 4), (2, 4), (20, 4), (21, 4), (22, 4):
        library.columns["flags"][song] |= bit
    return library.written()


HOSTILE = [
    "</script><script>alert(1)</script>", "<img src=x onerror=alert(2)>", "<!--<script>", "]]>", "\"'`><svg onload=alert(3)>",
    "${alert(4)}", "{{constructor.constructor('alert(5)')()}}", "line\u2028separator\u2029end", "lone \ud800 half", "\udfff",
    "left \u202egnp.exe", "\u2066isolated", "mark\u200f\u200e", "zero\0byte", "bell\x07 and \x9b31m", "javascript:alert(6)",
    "&lt;b&gt;&amp;", "new\nline\ttab", "@TITLE@ @LIBRARY@", "__proto__", "constructor", "a=b&c=d#e?f%00%zz+g", "\ufeffmark",
    "z" + "\u0301" * 200, "W" * 5000, "  ", ""]


def hostile():
    """A library in which every text means harm."""
    library = Library(HOSTILE[0])
    library.facts = [[text or "-", text] for text in HOSTILE]
    for at, text in enumerate(HOSTILE):
        facts = {name: text for name in WORDS}
        library.add(text, **facts, year=2 ** 31, duration=2 ** 32 - 1, size=2 ** 40, plays=2 ** 32 - 1, rating=255,
                    skips=2 ** 32 - 1, track=2 ** 31, disc=2 ** 31, bit_rate=2 ** 32 - 1, added=-10 ** 6,
                    last_played=10 ** 9, compilation=1, flags=7, cover="javascript:alert(7)" if at == 0 else None)
    songs = list(range(len(library)))
    for text in HOSTILE:
        library.add_list(text, songs, kind="smart", rules=text)
        library.podcasts.append({"name": text, "episodes": songs})
    library.health.update(findings=HOSTILE, remarks=HOSTILE, missing=songs, damaged=[[at, HOSTILE[at]] for at in songs],
                          duplicates=[songs])
    return library.written()


def large(count):
    """As many songs as asked for, about as varied as those of real libraries."""
    dice = random.Random(11)
    library = Library(f"{count} songs")
    for at in range(count):
        artist = at // 30
        if at % 11 == 0:
            album = f"{dice.choice(NOUNS)} {at // 11}"
        library.add(
            f"{dice.choice(NOUNS)} {dice.choice(NOUNS)} {dice.choice(NOUNS)} {at}", artist=f"Artist {artist * 7919 % 99991}",
            album=album,
            genre=GENRES[artist % 6] or f"Genre {artist % 40}", kind="MPEG audio file", media="music", track=at % 11 + 1, disc=1,
            year=1960 + dice.randrange(60), duration=dice.randrange(60000, 600000), size=dice.randrange(2000000, 12000000),
            bit_rate=dice.choice([128, 192, 256, 320]), added=12000 + dice.randrange(4000), plays=dice.randrange(60),
            skips=dice.randrange(5), rating=20 * dice.randrange(6), compilation=0)
    library.add_list("Library", list(range(count)), kind="library")
    library.add_list("Every third", list(range(0, count, 3)))
    return library.written()
