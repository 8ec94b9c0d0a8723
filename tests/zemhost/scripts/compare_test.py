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

    def plain_recordings(self, songs, names, key, limit):
        """The recordings of which there are several songs, found by comparing all lengths of the same texts."""
        groups = {}
        for song in songs:
            texts = tuple(key(song[name] or "") for name in names)
            if song["title"] and texts[0]:
                groups.setdefault(texts, []).append(song)
        found = []
        for group in groups.values():
            left = sorted(group, key=lambda song: (song["duration_ms"] or 0, song["song_index"]))
            while left:
                first = left[0]["duration_ms"] or 0
                isOne = lambda song: ((song["duration_ms"] or 0) - first <= limit) if first else not song["duration_ms"]
                one = [song for song in left if isOne(song)]
                left = [song for song in left if not isOne(song)]
                if len(one) > 1:
                    found.append(sorted(song["song_index"] for song in one))
        return sorted(found)

    def assert_duplicates(self, path):
        songs = songs_of(path)
        exact = lambda text: text  # the bytes of the file, so no composed forms here
        for options, names, method in ((["--same-album"], KINDS["song"], "CompareAlbum"),
                                       ([], ["title", "artist"], "CompareArtist")):
            for seconds in (0, 2, 90):
                expected = self.plain_recordings(songs, names, exact, seconds * 1000)
                got = self.json("duplicates", path, "--length", seconds, *options)["groups"]
                self.assertEqual([[song["song_index"] for song in group["songs"]] for group in got], expected)
                pairs = [pair for group in expected for pair in itertools.pairwise(group)]
                self.assertTrue(all(answers(path, [f"{method}({a}, {b})" for a, b in pairs])))
                for group in got:
                    self.assertEqual((group["same"], group["loosely_same"]), (names, []))
                    lengths = [song["duration_ms"] for song in group["songs"]]
                    self.assertEqual(group["length_difference_ms"], max(lengths) - min(lengths) if min(lengths) else None)
                    for song in group["songs"]:
                        exported = songs[song["song_index"]]
                        self.assertEqual(song["size_bytes"], exported["size_bytes"])
                        self.assertEqual(song["path"], exported["path"] or "")
                        self.assertEqual(song["track_id"], exported["track_id"])

    def test_duplicates_are_those_of_the_class_and_of_one_length(self):
        for path in [PLAYER, DESKTOP] + real_files():
            self.assert_duplicates(path)
        for seed in range(4):
            songs = self.random_library(seed, 80)
            for song in songs:
                song["length"] = random.choice([0, 1, 180000, 181500, 183000, 184999, 260000])
            self.assert_duplicates(self.write("twice", songs, big=seed % 2 == 1))

    def lengths(self, *lengths, options=()):
        """The songs of one title and artist, by length, that count as the same."""
        path = self.write("lengths", [{"title": "Home", "artist": "A", "length": length} for length in lengths])
        return [[song["duration_ms"] for song in group["songs"]] for group in self.json("duplicates", path, *options)["groups"]]

    def test_recordings_of_other_lengths_are_told_apart(self):
        self.assertEqual(self.lengths(180000, 182000, 182001), [[180000, 182000]])
        self.assertEqual(self.lengths(182001, 180000, 240000, 241000), [[240000, 241000]])
        # A chain of small steps is no one recording: no two of a group lie further apart than that.
        self.assertEqual(self.lengths(180000, 181500, 183000, 184500), [[180000, 181500], [183000, 184500]])
        self.assertEqual(self.lengths(180000, 181500, 183000, options=["--length", "3"]), [[180000, 181500, 183000]])
        self.assertEqual(self.lengths(180000, 180001, 180000, options=["--length", "0"]), [[180000, 180000]])
        self.assertEqual(self.lengths(180000, 180400, 181000, options=["--length", "0.5"]), [[180000, 180400]])
        # A length that is not known says nothing about those that are.
        self.assertEqual(self.lengths(0, 1000, 0), [[0, 0]])

    def test_loosely_the_same_texts_differ_in_writing_alone(self):
        same = [("Home", "The Band"), ("HOME", "the  band "), ("home (Live)", "The Band"), ("Ho me [Remastered 2009]", "TheBand"),
                ("Home (Live) [Mono (2nd)]", "The Band"), ("\u3000Home\uff08Live\uff09", "The\u00a0Band")]
        other = [("Home Again", "The Band"), ("(Home)", "The Band"), ("Home (Live) Again", "The Band"), ("Home)", "The Band"),
                 ("Home", "Band"), ("", "The Band")]
        path = self.write("loose", [{"title": title, "artist": artist, "album": str(i)}
                                    for i, (title, artist) in enumerate(same + other)])
        groups = self.json("duplicates", path, "--loose")["groups"]
        self.assertEqual([[song["song_index"] for song in group["songs"]] for group in groups], [list(range(len(same)))])
        self.assertEqual((groups[0]["same"], groups[0]["loosely_same"]), ([], ["title", "artist"]))
        self.assertEqual(self.json("duplicates", path)["groups"], [])
        self.assertEqual(self.json("duplicates", path, "--loose", "--same-album")["groups"], [])
        for one, two in (("Déjà", unicodedata.normalize("NFD", "Déjà")), ("(Live)", "(live)"), ("STRASSE", "straße")):
            path = self.write("forms", [{"title": one, "artist": "A"}, {"title": two, "artist": "A"}])
            group, = self.json("duplicates", path, "--loose")["groups"]
            self.assertEqual((group["same"], len(group["songs"])), (["artist"] if one != "Déjà" else ["title", "artist"], 2))
            self.assertEqual(self.json("duplicates", path)["groups"], [])

    def test_duplicates_as_a_person_reads_them(self):
        one = {"title": "Home", "artist": "A", "album": "X", "length": 200000}
        path = self.write("twice", [one, {"title": ""}, {**one, "length": 200350}, {"title": ""}, {**one, "album": "Y"},
                                    {**one, "length": 250000}])
        done = run("duplicates", path, "--same-album")
        self.assertEqual((done.status, done.text), (0, """\
Group  #  Title  Artist  Album  Time  Size  Same                                        Added  File
    1  0  Home   A       X      3:20        title, artist, album; length within 0.35 s
    1  2  Home   A       X      3:20

1 song is in the library more than once; 1 copy too many, 0 B
1 song has recordings whose lengths lie more than 2 s apart; these are not the same
"""))
        self.assertIn("2 copies too many", run("duplicates", path).text)
        self.assertIn("title (loosely), artist; length not known\n", run("duplicates", self.write("loose", [
            {"title": "Home", "artist": "A"}, {"title": "home", "artist": "A"}]), "--loose").text)
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
                                      (["compare"], 2, "B is required"),
                                      (["compare", PLAYER, self.folder + "/none"], 1, "/none: No such file"),
                                      (["duplicates", PLAYER, "--json", "--encoding", "UTF-16"], 2, "--encoding"),
                                      (["duplicates", PLAYER, "--length", "-1"], 2, "--length")):
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
