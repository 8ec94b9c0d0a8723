#!/usr/bin/env python3
"""What two libraries share, and what one has twice, against plain comparisons of the exported texts."""

import itertools
import json
import os
import random
import tempfile
import unicodedata
import unittest

from answers import answers
from database_writer import library
from program import DESKTOP, PLAYER, real_files, run

KINDS = {"song": ["title", "artist", "album"], "artist": ["artist"], "album": ["album", "artist"],
         "genre": ["genre"], "composer": ["composer"]}


def songs_of(path):
    return [json.loads(line) for line in run("export", path, "--format", "ndjson").text.splitlines()]


def texts(song, names):
    key = [unicodedata.normalize("NFC", song[name] or "") for name in names]
    if names[0] == "title" and not song["title"]:
        key[0] = song["path"] or ""
    return tuple(key)


def plain_groups(songs, names):
    groups = {}
    for song in songs:
        groups.setdefault(texts(song, names), []).append(song["song_index"])
    return groups


class Comparisons(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = temporary.name

    def write(self, name, *arguments, **options):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(library(*arguments, **options))
        return path

    def json(self, *command):
        done = run(*command, "--json")
        self.assertEqual((done.status, done.message), (0, ""))
        return json.loads(done.text)

    def assert_comparison(self, path_a, path_b):
        a, b = songs_of(path_a), songs_of(path_b)
        for kind, names in KINDS.items():
            in_a, in_b = plain_groups(a, names), plain_groups(b, names)
            got = self.json("compare", path_a, path_b, "--by", kind)
            self.assertEqual((got["by"], got["a"], got["b"]),
                             (kind, {"path": path_a, "songs": len(a)}, {"path": path_b, "songs": len(b)}))
            key = lambda group: tuple(group[name] for name in names)
            self.assertEqual({key(group): group["songs_a"] for group in got["only_a"]},
                             {text: songs for text, songs in in_a.items() if text not in in_b})
            self.assertEqual({key(group): group["songs_b"] for group in got["only_b"]},
                             {text: songs for text, songs in in_b.items() if text not in in_a})
            self.assertEqual({key(group): (group["songs_a"], group["songs_b"]) for group in got["both"]},
                             {text: (songs, in_b[text]) for text, songs in in_a.items() if text in in_b})
            for part, songs in (("only_a", "songs_a"), ("only_b", "songs_b"), ("both", "songs_a")):
                firsts = [group[songs][0] for group in got[part]]
                self.assertEqual(firsts, sorted(firsts))

    def random_library(self, seed, count):
        random.seed(seed)
        pick = lambda values: random.choice(values)
        return [{"title": pick(["Home", "Intro", "home", "雨", "é", "e\u0301", ""]), "artist": pick(["A", "B", ""]),
                 "album": pick(["X", "Y", ""]), "genre": pick(["Rock", "Folk", ""]),
                 "composer": pick(["C", ""])} for _ in range(count)]

    def test_player_and_desktop_library_hold_the_same_songs(self):
        got = self.json("compare", PLAYER, DESKTOP)
        self.assertEqual((got["only_a"], got["only_b"]), ([], []))
        self.assertEqual([(group["songs_a"], group["songs_b"]) for group in got["both"]],
                         [([i], [i]) for i in range(29)])
        self.assert_comparison(PLAYER, DESKTOP)

    def test_random_libraries_of_both_kinds(self):
        for seed in range(6):
            a = self.write("a.itunesdb", self.random_library(seed, 60))
            b = self.write("b.library", self.random_library(seed + 100, 40), big=seed % 2 == 0)
            with self.subTest(seed):
                self.assert_comparison(a, b)

    def test_real_libraries(self):
        for a, b in itertools.pairwise(real_files()):
            self.assert_comparison(a, b)

    def test_text_counts_however_it_is_stored(self):
        song = {"title": "Déjà l'été", "artist": "Élodie", "album": "Mått"}
        apart = {name: unicodedata.normalize("NFD", text) for name, text in song.items()}
        a = self.write("a.itunesdb", [song])
        for name, other in (("eight", library([song], big=True, eight_bit=True)), ("big", library([song], big=True)),
                            ("apart", library([apart]))):
            b = os.path.join(self.folder, name)
            with open(b, "wb") as file:
                file.write(other)
            got = self.json("compare", a, b)
            self.assertEqual(got["both"], [{**song, "songs_a": [0], "songs_b": [0]}], name)
        changed = self.write("changed", [{**song, "title": song["title"].upper()}])
        self.assertEqual(self.json("compare", a, changed)["both"], [])

    def test_counts_stand_before_the_lists(self):
        a = self.write("a", [{"title": "One"}, {"title": "Two"}, {"title": "Two"}])
        b = self.write("b", [{"title": "Three"}, {"title": "Two"}])
        done = run("compare", a, b)
        self.assertEqual((done.status, done.message), (0, ""))
        self.assertEqual(done.text, f"""A  {a}: 3 songs, 2 different songs
B  {b}: 2 songs, 2 different songs

Only in A  1
Only in B  1
In both    1

Only in A

Title  Artist  Album  In A  In B
One                      1     0

Only in B

Title  Artist  Album  In A  In B
Three                    0     1

In both

Title  Artist  Album  In A  In B
Two                      2     1
""")

    def assert_duplicates(self, path):
        songs = songs_of(path)
        for options, names, method in (([], KINDS["song"], "CompareAlbum"),
                                       (["--any-album"], ["title", "artist"], "CompareArtist")):
            expected = {}
            for song in songs:
                if song["title"]:  # the bytes of the file, so no composed forms here
                    expected.setdefault(tuple(song[name] or "" for name in names), []).append(song["song_index"])
            expected = [group for group in expected.values() if len(group) > 1]
            got = self.json("duplicates", path, *options)["groups"]
            self.assertEqual([[song["song_index"] for song in group["songs"]] for group in got], expected)
            pairs = [pair for group in expected for pair in itertools.pairwise(group)]
            self.assertTrue(all(answers(path, [f"{method}({a}, {b})" for a, b in pairs])))
            for group in got:
                for song in group["songs"]:
                    exported = songs[song["song_index"]]
                    self.assertEqual(song["size_bytes"], exported["size_bytes"])
                    self.assertEqual(song["path"], exported["path"] or "")
                    self.assertEqual(song["track_id"], exported["track_id"])

    def test_duplicates_are_those_of_the_class(self):
        for path in [PLAYER, DESKTOP] + real_files():
            self.assert_duplicates(path)
        for seed in range(4):
            self.assert_duplicates(self.write("twice", self.random_library(seed, 80), big=seed % 2 == 1))

    def test_duplicates_as_a_person_reads_them(self):
        one = {"title": "Home", "artist": "A", "album": "X"}
        path = self.write("twice", [one, {"title": ""}, one, {"title": ""}, {**one, "album": "Y"}])
        done = run("duplicates", path)
        self.assertEqual((done.status, done.text), (0, """Group  #  Title  Artist  Album  Time  Size  Added  File
    1  0  Home   A       X
    1  2  Home   A       X

1 song is in the library more than once; 1 copy too many, 0 B
"""))
        self.assertIn("2 copies too many", run("duplicates", path, "--any-album").text)
        self.assertEqual(run("duplicates", PLAYER).text, "No song occurs twice.\n")

    def test_many_songs_equal_distinct_and_untitled(self):
        equal = [{"title": "Same", "artist": "A", "album": "X"}] * 20000
        distinct = [{"title": f"Song {i}", "artist": f"{i}", "album": "X"} for i in range(20000)]
        untitled = [{"artist": "A"}] * 20000
        for songs, groups in ((equal, 1), (distinct, 0), (untitled, 0)):
            path = self.write("many", songs)
            self.assertEqual(len(self.json("duplicates", path)["groups"]), groups)
            self.assertEqual(len(self.json("compare", path, path)["only_a"]), 0)

    def test_wrong_options_are_named(self):
        for command, status, text in ((["compare", PLAYER, DESKTOP, "--by", "year"], 2, "--by"),
                                      (["compare", PLAYER], 2, "B is required"),
                                      (["compare", PLAYER, self.folder + "/none"], 1, "/none: No such file"),
                                      (["duplicates", PLAYER, "--json", "--encoding", "UTF-16"], 2, "--encoding")):
            done = run(*command)
            self.assertEqual((done.status, done.text), (status, ""), done.message)
            self.assertIn(text, done.message)

    def test_other_encodings(self):
        for command in (["compare", PLAYER, DESKTOP], ["duplicates", self.write("a", [{"title": "雨"}] * 2)]):
            self.assertEqual(run(*command, "--encoding", "UTF-16").out[2:].decode("utf-16-le"), run(*command).text)
            self.assertIn("have no place" if command[0] == "compare" else "no place",
                          run(*command, "--encoding", "ISO-8859-1").message)


if __name__ == "__main__":
    unittest.main()
