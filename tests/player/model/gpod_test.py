#!/usr/bin/env python3
"""What the program knows of players is what libgpod reads of them, song by song and list by list, but for what is
named here. Big-endian libraries and SQLite files it does not read."""

import json
import os
import shutil
import subprocess
import tempfile
import unittest

SAMPLES = os.environ["SAMPLES"]
SHARED = os.environ["SHARED"]

# libgpod keeps some memory to the end, and what a load asks of the host stays with the host by contract.
ENVIRONMENT = {"TZ": "UTC", "ASAN_OPTIONS": "detect_leaks=0"}

EPOCH = 2082844800  # seconds from 1904 to 1970
DATES = {"added", "modified", "released", "last_played", "last_skipped"}
TEXTS = {"title": 1, "path": 2, "album": 3, "artist": 4, "genre": 5, "file_type": 6, "comment": 8, "composer": 12,
         "grouping": 13, "album_artist": 22}


def folders():
    """Each folder's database and what lies beside it, by a name of its own."""
    found = {"sample player": (os.path.join(SAMPLES, "player", "iPod_Control", "iTunes"), "iTunesDB")}
    players = os.path.join(SHARED, "data", "players")
    if os.path.isdir(players):
        found["fourth-generation"] = (os.path.join(players, "fourth-generation"), "iTunesDB")
        found["list-headers-of-14-bytes"] = (players, "list-headers-of-14-bytes.itunesdb")
    real = os.path.join(SHARED, "data", "real")
    if os.path.isdir(real):
        found.update({name: (real, name) for name in os.listdir(real) if name.endswith(".itunesdb")})
    return found


def as_player(folder, database, mount_point):
    inner = os.path.join(mount_point, "iPod_Control", "iTunes")
    os.makedirs(inner)
    shutil.copy(os.path.join(folder, database), os.path.join(inner, "iTunesDB"))
    counts = os.path.join(folder, "Play Counts")
    if os.path.exists(counts):
        shutil.copy(counts, inner)
    return os.path.join(inner, "iTunesDB")


def line_of(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True,
                          env={**os.environ, **ENVIRONMENT}, timeout=60)
    return json.loads(done.stdout)


def ours_of(song, field):
    if field in TEXTS:
        texts = [text for number, text in song["texts"] if number == TEXTS[field]]
        return texts[-1] if texts else None
    value = song[field]
    if value is None:
        return 0
    return value - EPOCH if field in DATES else int(value)


def explained(field, theirs, ours):
    """Whether the two differ as they do on purpose."""
    if field == "checked":  # there the mark of an unchecked song
        return bool(theirs) != bool(ours)
    if field == "explicit":  # there with the byte that follows it
        return (theirs & 0xFF == 1) == (ours == 1)
    if field == "persistent_id":  # invented there where the file has none
        return ours == 0
    if field in DATES and ours == 0:  # before 1980: other programs write such dates for none
        return theirs < 315532800
    if field == "last_skipped":  # not taken from the player's counts there
        return theirs == 0
    return field == "skips" and theirs == 0  # there without the second counter, where the first one is 0


class Libgpod(unittest.TestCase):
    longMessage = True

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def both(self):
        for name, (folder, database) in sorted(folders().items()):
            mount_point = os.path.join(self.folder, name)
            path = as_player(folder, database, mount_point)
            yield (name, mount_point, line_of(os.path.join(os.environ["PRINTERS"], "print_player"), "songs", path),
                   line_of(os.path.join(os.environ["PRINTERS"], "print_gpod"), mount_point))

    def test_songs_have_the_same_facts(self):
        compared = differing = 0
        for name, _, ours, theirs in self.both():
            self.assertEqual(len(ours["songs"]), len(theirs["songs"]))
            for song, other in zip(ours["songs"], theirs["songs"]):
                for field, value in other.items():
                    mine = ours_of(song, field)
                    compared += 1
                    if mine != value:
                        differing += 1
                        self.assertTrue(explained(field, value, mine), f"{name}, {song['id']}, {field}: {value}, {mine}")
        print(f"{compared} fields compared with libgpod, {differing} of them differ as explained")
        self.assertGreaterEqual(compared, 29 * 41)

    def test_lists_have_the_same_songs(self):
        compared = 0
        for name, mount_point, _, theirs in self.both():
            if name == "list-headers-of-14-bytes":  # there without any list
                self.assertEqual(theirs["playlists"], [])
                continue
            library = line_of(os.environ["ZEMHOST"], "export", mount_point, "--format", "json")
            ids = [song["track_id"] for song in library["songs"]]
            ours = [(each["name"], [ids[entry["song_index"]] for entry in each["entries"]]) for each in library["playlists"]]
            others = [(each["name"], each["songs"]) for each in theirs["playlists"]]
            if name == "library-1181-songs.itunesdb":  # there by the positions that a program left, which say another order
                ours, others = ([(title, sorted(songs)) for title, songs in lists] for lists in (ours, others))
            self.assertEqual(ours, others)
            compared += len(ours)
        self.assertGreaterEqual(compared, 7)


if __name__ == "__main__":
    unittest.main()
