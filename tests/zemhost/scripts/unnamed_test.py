#!/usr/bin/env python3
"""Rescues of music that no song names: by the tags of every kind of file, and within bounds."""

import os
import random
import resource
import struct
import subprocess
import tempfile
import unittest

from database_writer import library
from music_files import aiff, flac, id3, mp4, mp4_text, mpeg, ogg, wav
from program import SHARED, ZEMHOST, run
from rescued_player import files_below

SOUND = bytes(i * 7 % 251 for i in range(4000))
VORBIS = {"TITLE": "Lost", "ARTIST": "Band", "ALBUM": "First", "TRACKNUMBER": "3"}
ID3 = id3({"TIT2": "Lost", "TPE1": "Band", "TALB": "First", "TRCK": "3"})
FILES = {
    "A.mp3": ID3 + mpeg(4000),
    "B.m4a": mp4(4000, mp4_text(b"\xa9nam", "Lost") + mp4_text(b"\xa9ART", "Band") + mp4_text(b"\xa9alb", "First")),
    "C.wav": wav(SOUND, {b"INAM": "Lost", b"IART": "Band", b"IPRD": "First", b"IPRT": "3"}),
    "D.aif": aiff(SOUND, ID3),
    "E.flac": flac(SOUND, VORBIS),
    "F.ogg": ogg(SOUND, VORBIS),
}
MEMORY = 128 << 20  # that the reader of tags may take


class Unnamed(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.player = os.path.join(folder.name, "player")
        self.music = os.path.join(folder.name, "music")

    def write(self, path, data, size=None):
        path = os.path.join(self.player, "iPod_Control", path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(data)
            file.truncate(size or len(data))
        return path

    def copy(self, name):
        with open(os.path.join(self.music, name), "rb") as file:
            return file.read()

    def test_files_of_every_kind_are_called_by_their_own_tags(self):
        self.write("iTunes/iTunesDB", library([]))
        for name, data in FILES.items():
            self.write(f"Music/F00/{name}", data)
        done = run("rescue", self.player, self.music)
        self.assertEqual((done.status, done.message), (0, ""))
        for name, data in FILES.items():
            number = "" if name == "B.m4a" else "03 "
            self.assertEqual(self.copy(f"Unnamed/Band/First/{number}Lost{os.path.splitext(name)[1]}"), data, name)
        self.assertEqual(len([name for name in files_below(self.music) if name.startswith("Unnamed/")]), len(FILES))

    def encrypted(self):
        """A database of one song whose content is scrambled behind its header."""
        data = library([{"title": "T", "path": ":iPod_Control:Music:F00:A.mp3"}] * 40)
        header = struct.unpack_from("<I", data, 4)[0]
        return data[:header] + random.Random(1).randbytes(len(data) - header)

    def test_of_an_encrypted_database_all_music_comes_by_its_own_tags(self):
        databases = [self.encrypted()]
        real = os.path.join(SHARED, "data", "real", "encrypted.library")
        if os.path.exists(real):
            with open(real, "rb") as file:
                databases.append(file.read())
        for number, data in enumerate(databases):
            self.music += str(number)
            path = self.write("iTunes/iTunesDB", data)
            self.write("Music/F00/A.mp3", FILES["A.mp3"])
            self.write("Music/F01/B.m4a", FILES["B.m4a"])
            self.write("Music/F01/NONE.mp3", mpeg(500))
            done = run("rescue", self.player, self.music)
            self.assertEqual((done.status, done.message),
                             (3, f"zemhost: {path}: the library is encrypted and cannot be read; copying the music files "
                                 "under the names in their own tags\n"))
            self.assertIn("1 problem:\n", done.text)
            self.assertEqual({name for name in files_below(self.music) if name.startswith("Unnamed/")},
                             {"Unnamed/Band/First/03 Lost.mp3", "Unnamed/Band/First/Lost.m4a", "Unnamed/NONE.mp3"})

    @unittest.skipIf("SANITIZED" in os.environ, "the sanitizer's own memory cannot be bounded")
    def test_tags_of_any_size_take_a_bounded_memory(self):
        self.write("iTunes/iTunesDB", library([]))
        whole = 255 << 20
        self.write("Music/F00/HUGE.mp3", b"ID3\4\0\0\x7f\x7f\x7f\x7fTIT2\x7f\x7f\x7f\x00\0\0\3A", whole + 20)
        self.write("Music/F00/A.mp3", FILES["A.mp3"])
        done = subprocess.run([ZEMHOST, "rescue", self.player, self.music, "--dry-run"], stdout=subprocess.PIPE, check=True)
        self.assertIn("Unnamed/HUGE.mp3\n", done.stdout.decode())
        self.assertIn("Unnamed/Band/First/03 Lost.mp3\n", done.stdout.decode())
        self.assertLess(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss << 10, MEMORY + (64 << 20))


if __name__ == "__main__":
    unittest.main()
