"""A player of many tiny songs, and the files that a rescue of it leaves."""

import os

from database_writer import library

# What a rescue says of itself, beside the music.
REPORTS = {"rescue-report.ndjson", "rescue-report.json", "SHA256SUMS"}


def files_below(folder):
    """All files but those that have no name of their own yet."""
    return {os.path.relpath(os.path.join(at, name), folder) for at, _, names in os.walk(folder) for name in names
            if ".zemhost-" not in at}


class Player:
    """A player with tiny songs, each with a content of its own, in albums of twelve."""

    def __init__(self, folder, count, size=200, word="song"):
        self.root = os.path.join(folder, "player-of-" + word + "s")  # its name tells its songs from others'
        self.contents = {}  # by the name that a rescue gives the song
        songs = []
        for place in range(count):
            path = f"F{place % 50:02}/S{place:05}.mp3"
            content = f"{word} {place} ".encode() * (size // 10 + 1)
            file = os.path.join(self.root, "iPod_Control", "Music", path)
            if place < 50:
                os.makedirs(os.path.dirname(file))
            with open(file, "wb") as out:
                out.write(content)
            os.utime(file, (1_000_000_000 + place, 1_000_000_000 + place))
            album = place // 12
            songs.append({"title": f"Song {place}", "album": f"Album {album}", "artist": f"Artist {album % 97}",
                          "path": ":iPod_Control:Music:" + path.replace("/", ":"), "size": len(content),
                          "track": place % 12 + 1})
            name = f"Artist {album % 97}/Album {album}/{place % 12 + 1:02} Song {place}.mp3"
            self.contents[name] = (content, 1_000_000_000 + place)
        os.makedirs(os.path.join(self.root, "iPod_Control", "iTunes"))
        with open(os.path.join(self.root, "iPod_Control", "iTunes", "iTunesDB"), "wb") as out:
            out.write(library(songs, [("Some", [0, count - 1])]))
