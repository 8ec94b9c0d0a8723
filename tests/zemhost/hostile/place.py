"""A hostile player in its surroundings: what lies around it must not be read or written on its behalf."""

import os
import pathlib
import struct
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "scripts"))
from database_writer import compressed, library  # noqa: E402

# What the files outside the player hold, and the environment: it may appear nowhere.
CANARY = "canary-51f0c7d2"
# A line that begins with this stands for one that the player made up.
FORGED = "FORGED"

FIRST_SONG = ":iPod_Control:Music:F00:A.mp3"
MUSIC = b"ID3 music of the player\n"


def play_counts(songs, entry=0x1C, plays=3):
    """A file of play counts: `songs` entries of this length."""
    body = b"".join(struct.pack("<II", plays, 3_600_000_000).ljust(entry, b"\0") for _ in range(songs))
    return struct.pack("<4sIII", b"mhdp", 0x60, entry, songs).ljust(0x60, b"\0") + body


def chunk(tag, jump, length, count=0, body=b""):
    """A chunk whose header says what it is told to say."""
    return struct.pack("<4sIII", tag, jump, length, count).ljust(max(jump, 16), b"\0") + body


def database(body):
    """A database file around these chunks."""
    header = bytearray(chunk(b"mhbd", 0x68, 0x68 + len(body), 1))
    struct.pack_into("<II", header, 0x10, 0x19, 1)
    return bytes(header) + body


def track_list(tracks, announced):
    """The data set of the songs, around these tracks."""
    inner = chunk(b"mhlt", 0x5C, announced) + tracks
    return chunk(b"mhsd", 0x60, 0x60 + len(inner), 1, inner)


class Place:
    """The machine of one player: `root` is the player, `outside` lies beside it, `work` is where a command may write."""

    def __init__(self, base):
        self.base = pathlib.Path(base)
        self.machine = self.base / "machine"
        self.outside = self.machine / "outside"
        self.work = self.base / "work"
        self.root = self.machine / "player"
        for folder in (self.outside / "F00", self.work / "exports", self.work / "tmp"):
            folder.mkdir(parents=True)
        song = {"title": CANARY, "artist": CANARY, "path": FIRST_SONG}
        (self.outside / "iTunes").mkdir()
        listed = library([song], [(CANARY, [0])])
        for name, content in {"canary.mp3": CANARY.encode(), "F00/A.mp3": CANARY.encode(), "secret.txt": CANARY.encode(),
                              "iTunesDB": listed, "iTunes/iTunesDB": listed,
                              "Play Counts": play_counts(1, plays=51)}.items():
            (self.outside / name).write_bytes(content)
        os.mkfifo(self.outside / "fifo")

    def label(self, name):
        """Gives the player another name; to be called first."""
        self.root = self.machine / name

    def path(self, name):
        """A place on the player, whose folder is there from now on."""
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        return path

    def write(self, name, content):
        path = self.path(name)
        path.write_bytes(content)
        return path

    def write_database(self, content, name="iTunesDB"):
        (self.root / "iPod_Control" / "Music" / "F00").mkdir(parents=True, exist_ok=True)
        return self.write(f"iPod_Control/iTunes/{name}", content)

    def write_songs(self, songs, playlists=(("List", (0,)),), **options):
        """The player's database with these songs, in the format of a small device."""
        self.write_database(library(songs, list(playlists), **options))

    def write_music(self, name="F00/A.mp3", content=MUSIC):
        return self.write(f"iPod_Control/Music/{name}", content)

    def ordinary(self):
        """One song with its file, in one playlist."""
        self.write_songs([{"title": "Song", "artist": "Artist", "path": FIRST_SONG, "size": len(MUSIC)}])
        self.write_music()



__all__ = ["CANARY", "FIRST_SONG", "FORGED", "MUSIC", "Place", "chunk", "compressed", "database", "library",
           "play_counts", "track_list"]
