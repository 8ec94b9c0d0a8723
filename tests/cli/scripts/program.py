"""What the scripts share: running the built program, and waiting for what it does.

Each script is called as SCRIPT ZEMHOST PLAYER, with the built program and the sample player.
"""

import os
import struct
import subprocess
import sys
import time
import unittest
import zlib

ZEMHOST, PLAYER = sys.argv[1:3] if len(sys.argv) >= 3 else ("zemhost", "player")


def start(*arguments, **options):
    """The running program, its output and errors in pipes unless `options` say otherwise."""
    options.setdefault("stdout", subprocess.PIPE)
    options.setdefault("stderr", subprocess.PIPE)
    return subprocess.Popen([ZEMHOST, *map(str, arguments)], **options)


def run(*arguments, **options):
    """Runs it to its end: status, output, errors, both as text."""
    process = start(*arguments, **options)
    out, err = process.communicate(timeout=100)
    return process.returncode, (out or b"").decode(), (err or b"").decode()


def wait_until(what, seconds=20):
    """Waits until `what` answers something true, and returns it."""
    end = time.monotonic() + seconds
    while not (found := what()):
        if time.monotonic() > end:
            raise AssertionError("waited in vain")
        time.sleep(0.002)
    return found


def compressed(database, level=6):
    """The compressed form of a player's database, made by another writer than the one under test knows."""
    header = struct.unpack_from("<I", database, 4)[0]
    body = zlib.compress(database[header:], level)
    out = bytearray(database[:header])
    struct.pack_into("<I", out, 8, header + len(body))
    return bytes(out) + body


def database_of(player):
    with open(os.path.join(player, "iPod_Control", "iTunes", "iTunesDB"), "rb") as file:
        return file.read()


def chunk(tag, header, body, words, length=None):
    """A header of so many bytes with its words by offset, and what it holds."""
    head = bytearray(header)
    head[:4] = tag
    struct.pack_into("<II", head, 4, header, header + len(body) if length is None else length)
    for offset, word in words.items():
        struct.pack_into("<I", head, offset, word)
    return bytes(head) + body


def text_object(number, text):
    body = text.encode("utf-16-le")
    return chunk(b"mhod", 0x18, struct.pack("<IIII", 1, len(body), 0, 0) + body, {12: number})


def make_database(songs, playlists):
    """A player's database. A song is a dictionary of `path`, `size` and texts by object number, its ID its place
    and 100; a playlist is a name and places of songs."""
    parts = []
    for place, song in enumerate(songs):
        texts = dict(song["texts"])
        texts[2] = song["path"]
        objects = b"".join(text_object(number, text) for number, text in texts.items())
        parts.append(chunk(b"mhit", 0x9C, objects, {12: len(texts), 0x10: 100 + place, 0x14: 1, 0x24: song["size"],
                                                    0x28: 180000, 0x2C: song.get("track", 0)}))
    tracks = chunk(b"mhlt", 0x5C, b"".join(parts), {}, len(songs))
    lists = []
    for name, places in [("Library", range(len(songs)))] + playlists:
        entries = b"".join(chunk(b"mhip", 0x4C, b"", {0x18: 100 + place}) for place in places)
        lists.append(chunk(b"mhyp", 0x6C, text_object(1, name) + entries, {12: 1, 0x10: len(places)}))
    sets = chunk(b"mhsd", 0x60, tracks, {12: 1})
    sets += chunk(b"mhsd", 0x60, chunk(b"mhlp", 0x5C, b"".join(lists), {}, len(lists)), {12: 2})
    return chunk(b"mhbd", 0x68, sets, {12: 1, 0x10: 0x19, 0x14: 2})


class Player:
    """A player with tiny songs, each with a content of its own, in albums of twelve."""

    def __init__(self, folder, count, size=200):
        self.root = os.path.join(folder, "player")
        self.contents = {}  # by the name that a rescue gives the song
        songs = []
        for place in range(count):
            path = f"F{place % 50:02}/S{place:05}.mp3"
            content = f"song {place} ".encode() * (size // 10 + 1)
            file = os.path.join(self.root, "iPod_Control", "Music", path)
            if place < 50:
                os.makedirs(os.path.dirname(file))
            with open(file, "wb") as out:
                out.write(content)
            os.utime(file, (1_000_000_000 + place, 1_000_000_000 + place))
            album = place // 12
            texts = {1: f"Song {place}", 3: f"Album {album}", 4: f"Artist {album % 97}"}
            songs.append({"path": ":iPod_Control:Music:" + path.replace("/", ":"), "size": len(content),
                          "texts": texts, "track": place % 12 + 1})
            name = f"Artist {album % 97}/Album {album}/{place % 12 + 1:02} Song {place}.mp3"
            self.contents[name] = (content, 1_000_000_000 + place)
        os.makedirs(os.path.join(self.root, "iPod_Control", "iTunes"))
        with open(os.path.join(self.root, "iPod_Control", "iTunes", "iTunesDB"), "wb") as out:
            out.write(make_database(songs, [("Some", [0, count - 1])]))


def main():
    unittest.main(argv=[sys.argv[0], "-v"])
