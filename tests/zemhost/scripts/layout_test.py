#!/usr/bin/env python3
"""The usual names of a rescue: on real libraries an album lies in one folder, and its discs follow each other."""

import collections
import json
import os
import tempfile
import unicodedata
import unittest

from database_writer import COMPILATION, library
from program import SHARED, run

FIELDS = ("title", "artist", "album", "album_artist", "track", "track_total", "year", "disc", "discs", "compilation")
REAL = ("real/library-1181-songs.itunesdb", "real/signed-350-songs.itunesdb", "real/smart-playlists.itunesdb",
        "players/fourth-generation/iTunesDB", "players/nano-7/Library.itdb")
BY_ARTIST = "{artist}/{album}/{track:02} {title}"
VARIOUS = "various artists"


def key(text):
    return unicodedata.normalize("NFC", text or "").strip(" ").casefold()


def are_one_by_numbers(songs):
    """Whether songs of one album name, none with an album artist, are one album to a person who sees their numbers."""
    places = {(song["disc"], song["track"]) for song in songs}
    totals = {(song["disc"], song["track_total"]) for song in songs}
    years = {song["year"] for song in songs} - {None, 0}
    return (len(places) == len(songs) and len(totals) == len({disc for disc, _ in totals})
            and all(song["track"] and song["track_total"] for song in songs)
            and (len(years) < 2 or len({key(song["artist"]) for song in songs}) > 2))


def albums_of(songs):
    """The albums of a library, lists of places: of an album artist, a compilation, by numbers, or of an artist."""
    names = collections.defaultdict(list)
    for place, song in enumerate(songs):
        if key(song["album"]):
            names[key(song["album"])].append(place)
    albums = collections.defaultdict(list)
    for name, places in names.items():
        uncredited = [songs[place] for place in places if not credited(songs[place])]
        by_numbers = are_one_by_numbers(uncredited)
        for place in places:
            song = songs[place]
            artist = credited(song)
            if artist == VARIOUS or not artist and (song["compilation"] or by_numbers):
                albums[name, ""].append(place)
            else:
                albums[name, artist or key(song["artist"])].append(place)
    return list(albums.values())


def credited(song):
    return key(song["album_artist"])


class Layout(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def names(self, songs, *options):
        """What a rescue calls each of these songs, on a player that has a file for each."""
        player = tempfile.mkdtemp(dir=self.folder)
        music = os.path.join(player, "iPod_Control", "Music", "F00")
        os.makedirs(os.path.join(player, "iPod_Control", "iTunes"))
        os.makedirs(music)
        records = []
        for place, song in enumerate(songs):
            with open(os.path.join(music, f"{place:05}.mp3"), "wb") as file:
                file.write(b"music")
            records.append({**song, "size": 5, "path": f":iPod_Control:Music:F00:{place:05}.mp3",
                            "marks": COMPILATION if song["compilation"] else 0})
        with open(os.path.join(player, "iPod_Control", "iTunes", "iTunesDB"), "wb") as out:
            out.write(library(records))
        destination = os.path.join(self.folder, "music")
        done = run("rescue", player, destination, "--dry-run", *options)
        self.assertEqual((done.status, done.message), (0, ""))
        found = {}
        for line in done.text.splitlines():
            source, arrow, target = line.partition(" -> ")
            if arrow:
                found[int(source[-9:-4])] = os.path.relpath(target, destination)
        self.assertEqual(sorted(found), list(range(len(songs))))
        return [found[place] for place in range(len(songs))]

    def measure(self, songs, *options):
        """The folders that albums of several artists lie in, and the albums whose discs interrupt each other where
        files are sorted by name."""
        names = self.names(songs, *options)
        folders = mixed = 0
        for places in albums_of(songs):
            if len({key(songs[place]["artist"]) for place in places}) > 1:
                folders += len({os.path.dirname(names[place]) for place in places})
            discs = [songs[place]["disc"] for place in sorted(places, key=names.__getitem__) if songs[place]["disc"]]
            mixed += discs != sorted(discs)
        return folders, mixed

    def test_albums_of_real_libraries_lie_together_and_their_discs_follow_each_other(self):
        tried = 0
        for name in REAL:
            path = os.path.join(SHARED, "data", name)
            if not os.path.exists(path):
                continue
            done = run("export", "--format", "ndjson", "--fields", ",".join(FIELDS), path)
            songs = [json.loads(line) for line in done.text.splitlines()]
            albums = [places for places in albums_of(songs)
                      if len({key(songs[place]["artist"]) for place in places}) > 1]
            several = sum(len({songs[place]["disc"] for place in places} - {None}) > 1 for places in albums_of(songs))
            by_artist = self.measure(songs, "--pattern", BY_ARTIST)
            usual = self.measure(songs)
            print(f"{name}: {len(albums)} albums of several artists ({sum(map(len, albums))} songs) in {by_artist[0]} "
                  f"folders by artist, in {usual[0]} now; {several} albums of several discs, {by_artist[1]} mixed by "
                  f"artist, {usual[1]} now")
            self.assertEqual(usual, (len(albums), 0), name)
            tried += 1
        if not tried:
            self.skipTest("the real libraries are not here")

    def test_best_of_two_artists_stays_apart(self):
        songs = [dict.fromkeys(FIELDS) | {"title": f"T{track}", "artist": artist, "album": "Greatest Hits", "track": track,
                                          "track_total": 20}
                 for artist in ("A", "B") for track in (1, 2)]
        self.assertEqual(self.names(songs), ["A/Greatest Hits/01 T1.mp3", "A/Greatest Hits/02 T2.mp3",
                                             "B/Greatest Hits/01 T1.mp3", "B/Greatest Hits/02 T2.mp3"])

    def test_ten_discs_sort_as_their_numbers_do(self):
        songs = [dict.fromkeys(FIELDS) | {"title": "T", "artist": "A", "album": "All", "album_artist": "Choir", "track": 1,
                                          "disc": disc} for disc in range(1, 11)]
        names = self.names(songs)
        self.assertEqual((names[0], names[9]), ("Choir/All/01-01 T.mp3", "Choir/All/10-01 T.mp3"))
        self.assertEqual(names, sorted(names))


if __name__ == "__main__":
    unittest.main()
