#!/usr/bin/env python3
"""What the commands take grows no faster than the library: instructions, counted by valgrind, which say the same on a busy
machine. What is taken without any song is left out; four times the songs may take 4.4 times as many."""

import os
import re
import subprocess
import tempfile
import unittest

from database_writer import library
from program import WRITE_GENERATED, ZEMHOST, run

FEW = 100


class Growth(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def instructions(self, *arguments):
        done = subprocess.run(["setarch", "--addr-no-randomize", "valgrind", "--tool=cachegrind", "--cache-sim=no",
                               "--cachegrind-out-file=/dev/null", ZEMHOST, *arguments], stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, text=True, timeout=200)
        counted = re.search(r"I\s+refs:\s+([\d,]+)", done.stderr)
        self.assertTrue(counted, f"{arguments} did not run: {done.stderr}")
        return int(counted[1].replace(",", ""))

    def assert_linear(self, write, *commands):
        """`write` makes a library of so many songs; each command takes a list of arguments from its path."""
        none, few, many = (write(songs) for songs in (0, FEW, 4 * FEW))
        self.assertEqual(run("songs", many).status, 0)
        for command in commands:
            start = self.instructions(*command(none))
            ratio = (self.instructions(*command(many)) - start) / (self.instructions(*command(few)) - start)
            print(f"{' '.join(command(os.path.basename(many)))}: {ratio:.2f}")
            self.assertLess(ratio, 4.4, command(many))

    def generated(self, songs):
        path = os.path.join(self.folder, f"generated-{songs}")
        subprocess.run([WRITE_GENERATED, path, str(songs), "3", str(songs), "little"], check=True)
        return path

    def test_of_each_command_with_an_ordinary_library(self):
        self.assert_linear(self.generated, lambda path: ["songs", path], lambda path: ["playlists", path],
                           lambda path: ["check", path], lambda path: ["export", path, "--format", "json"],
                           lambda path: ["plays", path, "--by", "artist"], lambda path: ["stats", path],
                           lambda path: ["report", path, "-o", "-"])

    def test_of_each_song_for_a_check_and_an_export(self):
        """A check reads each text once from the class and once from the file, and an export writes its lines without
        making objects of them. They took 110,000 and 474,000 instructions a song when they did not."""
        few, many = (self.generated(songs) for songs in (FEW, 4 * FEW))
        for words, most in ((["check"], 83_000), (["export", "--format", "json"], 210_000)):
            taken = [self.instructions(words[0], path, *words[1:]) for path in (few, many)]
            a_song = (taken[1] - taken[0]) // (3 * FEW)
            print(f"{' '.join(words)}: {a_song} instructions a song")
            self.assertLess(a_song, most, words)

    def test_of_comparisons_however_alike_the_songs_are(self):
        kinds = {"equal": lambda i: {"title": "Same", "artist": "A", "album": "X"},
                 "distinct": lambda i: {"title": f"Song {i}", "artist": f"{i}", "album": "X"},
                 "untitled": lambda i: {"artist": "A"}}
        for name, song in kinds.items():
            def write(songs, name=name, song=song):
                path = os.path.join(self.folder, f"{name}-{songs}")
                with open(path, "wb") as file:
                    file.write(library([song(i) for i in range(songs)]))
                return path
            self.assert_linear(write, lambda path: ["duplicates", path], lambda path: ["duplicates", path, "--loose"],
                               lambda path: ["compare", path, path])


if __name__ == "__main__":
    unittest.main()
