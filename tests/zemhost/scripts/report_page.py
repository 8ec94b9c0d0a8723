"""A page of the program as a browser's parser takes it apart, and figures of a library that are counted here."""

import datetime
import html.parser
import json
import os
import unicodedata

from program import run

COLUMNS = {"artist": "artist", "album": "album", "album_artist": "album_artist", "genre": "genre", "composer": "composer",
           "kind": "file_type", "media": "media_kind", "comment": "comment"}
# Numbers of a song: its column in the page, the field of an export, and what stands for unknown.
NUMBERS = [("year", "year", 0), ("track", "track", 0), ("disc", "disc", 0), ("duration", "duration_ms", 0),
           ("size", "size_bytes", 0), ("bit_rate", "bit_rate_kbps", 0), ("plays", "play_count", None),
           ("skips", "skip_count", None), ("rating", "rating", None), ("compilation", "compilation", None)]


class _Reader(html.parser.HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open, self.title, self.data, self.elements = None, "", [], []

    def handle_starttag(self, tag, attributes):
        self.elements.append((tag, dict(attributes)))
        self.open = (tag, dict(attributes))

    def handle_endtag(self, tag):
        self.open = None

    def handle_data(self, data):
        if self.open == ("title", {}):
            self.title += data
        if self.open and self.open[0] == "script" and self.open[1].get("id") == "library":
            self.data.append(data)


class Page:
    """What stands in a page: its title, its library, and `elements`, the tags and attributes in their order."""

    def __init__(self, content):
        reader = _Reader()
        reader.feed(content.decode("utf-8"))
        reader.close()
        self.title, self.elements = reader.title, reader.elements
        (self.json,) = reader.data
        self.library = json.loads(self.json)

    def texts(self, name):
        """A column of texts, a text a song."""
        songs, words = self.library["songs"], self.library["words"]
        if songs[name] is None:
            return [""] * len(songs["title"])
        return [words[name][number] for number in songs[name]]

    def numbers(self, name, unknown):
        return self.library["songs"][name] or [unknown] * len(self.library["songs"]["title"])


def report(path, *options):
    """The page of a player or database, from standard output."""
    done = run("report", path, "-o", "-", *options)
    if done.status != 0:
        raise AssertionError(done.message)
    return Page(done.out)


def as_json(command, path, *options):
    done = run(command, path, *options)
    if done.status not in (0, 3):
        raise AssertionError(done.message)
    return json.loads(done.text)


def export(path):
    return as_json("export", path, "--format", "json")


def days(date):
    """Since the start of 1970, of a date as exports write it."""
    return date and (datetime.date.fromisoformat(date[:10]) - datetime.date(1970, 1, 1)).days


def folded(text):
    """Texts that people take for the same album's name are the same in this form."""
    return unicodedata.normalize("NFC", unicodedata.normalize("NFC", text or "").casefold()).strip(" ")


def groups(songs, name):
    """The songs of an export by what `name` says of each; None where it says nothing."""
    found = {}
    for song in songs:
        found.setdefault(name(song) or None, []).append(song)
    return found


def figures(songs):
    """What songs of an export add up to, in the words of `stats --json`."""
    sums = {"songs": len(songs), "songs_without": {}}
    for field, result, isknown in (("duration_ms", "duration_ms", bool), ("size_bytes", "size_bytes", bool),
                                   ("play_count", "plays", lambda value: value is not None)):
        stated = [song[field] for song in songs if isknown(song[field])]
        sums[result] = sum(stated) if stated or not songs else None
        sums["songs_without"][result] = len(songs) - len(stated)
    return sums


NAMES = {
    "artist": lambda song: song["artist"],
    "genre": lambda song: song["genre"],
    "kind": lambda song: song["file_type"],
    "year": lambda song: str(song["year"] or ""),
    "decade": lambda song: f"{song['year'] // 10 * 10}s" if song["year"] else None,
    "rating": lambda song: None if song["rating"] is None else str(song["rating"]),
    "month": lambda song: song["date_added"] and song["date_added"][:7],
}


def nano():
    return os.path.join(os.environ["SAMPLES"], "nano")
