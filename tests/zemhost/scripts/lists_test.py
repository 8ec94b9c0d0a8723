#!/usr/bin/env python3
"""Playlists as files: beside rescued music, and every list of a library into a folder; XSPF read by an XML parser."""

import os
import tempfile
import unittest
import urllib.parse
import xml.etree.ElementTree

from database_writer import library
from program import PLAYER, run

XSPF = "{http://xspf.org/ns/0/}"
LISTS = ["Café du matin", "Empty for Now", "Four Stars and Up", "Night Drives", "On-The-Go 1", "Podcasts",
         "Roadside Jukebox", "夏のプレイリスト"]


def header(number, inside=0, is_folder=False):
    """The words of a playlist's header: its persistent ID, that of the folder it lies in, and its kind."""
    return {0x1C: number, 0x30: inside, 0x28: 0x01000000 if is_folder else 0}


def below(folder):
    return sorted(os.path.relpath(os.path.join(at, name), folder) for at, _, names in os.walk(folder) for name in names)


def tracks(path):
    """The title of an XSPF list and what it says of each song: element names and texts."""
    root = xml.etree.ElementTree.parse(path).getroot()
    assert (root.tag, root.get("version")) == (XSPF + "playlist", "1"), root
    assert [child.tag for child in root][-1] == XSPF + "trackList"
    return root.findtext(XSPF + "title"), [{part.tag.removeprefix(XSPF): part.text for part in track}
                                           for track in root.find(XSPF + "trackList")]


def entries(path):
    with open(path, encoding="utf-8", newline="") as file:
        return [line for line in file.read().split("\n") if line and not line.startswith("#")]


class Lists(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.out = os.path.join(self.folder, "out")

    def rescue(self, *options):
        done = run("rescue", PLAYER, self.out, *options)
        self.assertEqual((done.status, done.message), (3, ""))  # a file of the sample player is missing
        return done

    def export(self, *options, path=PLAYER):
        return run("export", path, "--all-playlists", self.out, *options)

    def test_rescued_lists_in_xspf_name_the_copies_as_m3u8_does(self):
        self.rescue("--playlists", "xspf")
        names = [name for name in below(self.out) if "/" not in name and name.endswith(".xspf")]
        self.assertEqual(names, sorted(name + ".xspf" for name in LISTS))
        self.assertFalse([name for name in below(self.out) if name.endswith(".m3u8")])
        self.rescue("--playlists", "m3u8")
        for name in LISTS:
            title, songs = tracks(os.path.join(self.out, name + ".xspf"))
            self.assertEqual(title, name)
            locations = [song["location"] for song in songs]
            self.assertTrue(all(location.isascii() and ":" not in location for location in locations), locations)
            paths = [urllib.parse.unquote(location, errors="strict") for location in locations]
            self.assertEqual(paths, entries(os.path.join(self.out, name + ".m3u8")))
            self.assertTrue(all(os.path.exists(os.path.join(self.out, path)) for path in paths), paths)
        _, songs = tracks(os.path.join(self.out, "Café du matin.xspf"))
        self.assertEqual({**songs[0], "location": None},
                         {"location": None, "title": "Café de l'Écluse", "creator": "Élodie Marchandeau",
                          "album": "À contre-jour", "duration": "198800"})

    def test_lists_in_xspf_are_known_again(self):
        self.rescue("--playlists", "xspf")
        before = below(self.out)
        self.rescue("--playlists", "xspf")
        self.assertEqual(below(self.out), before)
        mine = os.path.join(self.out, "Podcasts.xspf")
        with open(mine, "w", encoding="utf-8") as file:
            file.write("<playlist>\nmine\n</playlist>\n")
        self.rescue("--playlists", "xspf")
        self.assertEqual(sorted(set(below(self.out)) - set(before)), ["Podcasts (2).xspf"])
        with open(mine, encoding="utf-8") as file:
            self.assertEqual(file.read(), "<playlist>\nmine\n</playlist>\n")

    def test_no_lists_are_written_when_none_are_wanted(self):
        done = self.rescue("--playlists", "none")
        self.assertEqual([name for name in below(self.out) if name.endswith((".m3u8", ".xspf"))], [])
        self.assertNotIn("playlist", done.text)
        self.assertNotIn("playlist", self.rescue("--playlists", "none", "--dry-run").text)

    def test_every_list_is_exported_without_music(self):
        for form, read in (("m3u8", entries), ("xspf", tracks)):
            done = self.export("--format", form, "--paths", "device")
            self.assertEqual((done.status, done.message), (0, ""))
            self.assertEqual(done.text.splitlines()[-1], "8 playlists written")
            self.assertEqual([name for name in below(self.out) if name.endswith(form)],
                             sorted(f"{name}.{form}" for name in LISTS))
        self.assertEqual(entries(os.path.join(self.out, "Podcasts.m3u8")),
                         ["/iPod_Control/Music/F13/EP12.mp3", "/iPod_Control/Music/F14/EP13.mp3"])

    def test_smart_lists_and_their_songs_are_among_them(self):
        self.export("--format", "m3u8")
        single = run("export", PLAYER, "--format", "m3u8", "--playlist", "Four Stars and Up").text
        with open(os.path.join(self.out, "Four Stars and Up.m3u8"), encoding="utf-8", newline="") as file:
            self.assertEqual(file.read(), single)
        self.assertGreater(len(entries(os.path.join(self.out, "Four Stars and Up.m3u8"))), 3)

    def test_relative_paths_lead_from_the_folder_to_the_files(self):
        self.export("--format", "m3u8", "--paths", "relative")
        found = [os.path.join(self.out, path) for path in entries(os.path.join(self.out, "Night Drives.m3u8"))]
        self.assertEqual(len(found), 6)
        self.assertTrue(all(os.path.exists(path) for path in found), found)
        self.export("--format", "xspf")
        _, songs = tracks(os.path.join(self.out, "Night Drives.xspf"))
        for song in songs:
            address = urllib.parse.urlsplit(urllib.parse.urljoin("file://" + self.out + "/x.xspf", song["location"]))
            self.assertEqual((address.scheme, address.netloc), ("file", ""))
            self.assertTrue(os.path.exists(urllib.parse.unquote(address.path)), song)

    def test_other_files_are_never_replaced_and_lists_that_are_there_are_left(self):
        os.mkdir(self.out)
        with open(os.path.join(self.out, "Podcasts.m3u8"), "w", encoding="utf-8") as file:
            file.write("mine")
        done = self.export("--format", "m3u8")
        self.assertIn("1 name was taken by another file, so a number was added\n", done.text)
        with open(os.path.join(self.out, "Podcasts.m3u8"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "mine")
        before = below(self.out)
        self.assertIn("Podcasts (2).m3u8", before)
        again = self.export("--format", "m3u8")
        self.assertTrue(again.text.startswith("0 playlists written\n8 playlists are already there\n"), again.text)
        self.assertEqual(below(self.out), before)

    def test_names_and_texts_of_a_hostile_library_stay_texts(self):
        songs = [{"title": "</title>&<x>\n\u202e\ufffe", "artist": "]]>", "album": "&amp;",
                  "path": ":iPod_Control:Music:http#%2e <a>.mp3"}]
        root = os.path.join(self.folder, "player")
        os.makedirs(os.path.join(root, "iPod_Control", "iTunes"))
        with open(os.path.join(root, "iPod_Control", "iTunes", "iTunesDB"), "wb") as out:
            out.write(library(songs, [("../../up", [0]), ("UP", []), ("up", [0]), ("CON", [0]), ("", [0])]))
        done = self.export("--format", "xspf", "--paths", "device", path=root)
        self.assertEqual(done.status, 0, done.message)
        self.assertEqual(below(self.out), ["CON_.xspf", "Playlist 5.xspf", "UP.xspf", "_._.._up.xspf", "up (2).xspf"])
        _, (song,) = tracks(os.path.join(self.out, "CON_.xspf"))
        self.assertEqual(song, {"location": "/iPod_Control/Music/http%23%252e%20%3Ca%3E.mp3",
                                "title": "</title>&<x>\u240a\ufffd\ufffd", "creator": "]]>", "album": "&amp;"})

    def player(self, songs, playlists):
        root = os.path.join(self.folder, "player")
        os.makedirs(os.path.join(root, "iPod_Control", "iTunes"))
        with open(os.path.join(root, "iPod_Control", "iTunes", "iTunesDB"), "wb") as out:
            out.write(library(songs, playlists))
        for song in songs:
            file = os.path.join(root, *song["path"][1:].split(":"))
            os.makedirs(os.path.dirname(file), exist_ok=True)
            with open(file, "w", encoding="utf-8") as out:
                out.write(song["title"])
        return root

    def test_folders_have_the_songs_of_what_lies_in_them(self):
        songs = [{"title": name, "size": 1, "path": f":iPod_Control:Music:F00:{name}.mp3"} for name in "ABCDE"]
        root = self.player(songs, [("Trips", [], header(1, is_folder=True)), ("North", [2, 0], header(2, 1)),
                                   ("Inner", [], header(3, 1, True)), ("South", [0, 1], header(4, 1)),
                                   ("Deep", [3], header(5, 3)), ("Round", [], header(6, 6, True)),
                                   ("Stored", [4], header(7, is_folder=True)), ("Child", [0], header(8, 7))])
        wanted = {"Trips": "CADB", "Inner": "D", "Round": "", "Stored": "E"}
        self.assertEqual(self.export("--format", "m3u8", path=root).status, 0)
        single = run("export", root, "--format", "csv", "--fields", "title", "--playlist", "Trips").text
        self.assertEqual(single.split(), ["title", *wanted["Trips"]])
        for name, titles in wanted.items():
            self.assertEqual([os.path.basename(path)[0] for path in entries(os.path.join(self.out, name + ".m3u8"))],
                             list(titles), name)
        self.out = os.path.join(self.folder, "music")
        self.assertEqual(run("rescue", root, self.out, "--playlist", "Trips", "--pattern", "{title}").status, 0)
        self.assertEqual(entries(os.path.join(self.out, "Trips.m3u8")), [title + ".mp3" for title in wanted["Trips"]])

    def test_songs_without_a_place_are_told_and_status_is_3(self):
        root = os.path.join(self.folder, "iTunesDB")
        with open(root, "wb") as out:
            out.write(library([{"title": "A", "path": ":x:y.mp3"}], [("One", [0])]))
        done = self.export("--format", "m3u8", path=root)
        self.assertEqual(done.status, 3)
        self.assertIn('1 problem:\n- playlist 1 "One": 1 song left out: the path names no place', done.text)
        self.assertEqual(below(self.out), ["One.m3u8"])

    def test_options_that_do_not_go_together_are_refused(self):
        for options in (["--format", "csv"], ["--format", "m3u8", "-o", "x"], ["--format", "m3u8", "--playlist", "1"],
                        ["--format", "xspf", "--encoding", "UTF-16"]):
            done = self.export(*options)
            self.assertEqual((done.status, done.text), (2, ""), options)
            self.assertIn("--all-playlists", done.message)
        self.assertEqual(run("export", PLAYER, "--format", "m3u8", "--all-playlists", "").status, 2)
        refused = run("export", PLAYER, "--format", "m3u8", "--all-playlists", os.path.join(PLAYER, "lists"))
        self.assertEqual(refused.status, 1)
        self.assertIn("this lies on the player", refused.message)


if __name__ == "__main__":
    unittest.main()
