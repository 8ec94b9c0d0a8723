#!/usr/bin/env python3
"""Tags of rescued copies: what the library says is in them, the sound is bit for bit that of the player, and files that mean
harm are copied as they are. The readers of tags here are plain ones of their own."""

import hashlib
import os
import shutil
import struct
import tempfile
import unittest

from database_writer import library
from music_files import aiff, id3, mp4, mpeg
from program import PLAYER, run

MUSIC = os.path.join("iPod_Control", "Music")
HOME = "The Paper Engines/Second Gear/07 Home.mp3"          # F01/HOMA.mp3
NINE = "Compilations/Roadside Jukebox/02 Nine Volt Heart.mp3"
RAIN = "月島ひかり/夜行列車/01 雨のプラットホーム.m4a"         # F03/AMEP.m4a

DEMO, DEMO_SOURCE = "Unknown Artist/Unknown Album/Untitled Demo 3.wav", "F09/DEMO.wav"


def boxes(data, *path):
    """The contents of the box at the end of a path of names; None when it is not there."""
    for depth, name in enumerate(path):
        at, found = 4 if depth and path[depth - 1] == b"meta" else 0, None
        while at + 8 <= len(data):
            length = struct.unpack_from(">I", data, at)[0]
            assert length >= 8, (path, at)
            if data[at + 4:at + 8] == name:
                found = data[at + 8:at + length]
                break
            at += length
        if found is None:
            return None
        data = found
    return data


def items(data):
    """The tags of an MP4 file: bytes by name, those of free form by their own names."""
    found, at = {}, 0
    ilst = boxes(data, b"moov", b"udta", b"meta", b"ilst") or b""
    while at < len(ilst):
        length = struct.unpack_from(">I", ilst, at)[0]
        name, content = ilst[at + 4:at + 8].decode("latin-1"), ilst[at + 8:at + length]
        if name == "----":
            name = boxes(content, b"name")[4:].decode()
        found[name] = boxes(content, b"data")[8:]
        at += length
    return found


def frames(data):
    """The frames of an ID3v2 tag of version 3 or 4, texts decoded, and what follows the tag."""
    if not data.startswith(b"ID3"):
        return {}, data
    version = data[3]
    end = 10 + sum(byte << shift for byte, shift in zip(data[6:10], (21, 14, 7, 0)))
    found, at = {}, 10
    while at + 10 <= end and data[at]:
        name = data[at:at + 4].decode("ascii")
        size = (sum(byte << shift for byte, shift in zip(data[at + 4:at + 8], (21, 14, 7, 0))) if version == 4
                else struct.unpack_from(">I", data, at + 4)[0])
        content = data[at + 10:at + 10 + size]
        if name[0] == "T":
            codec = ("latin-1", "utf-16", "utf-16-be", "utf-8")[content[0]]
            content = content[1:].decode(codec).rstrip("\0")
        found[name] = content
        at += 10 + size
    return found, data[end:]


def chunks_of(data):
    """The chunks of an AIFF file: names and contents."""
    at = 12
    while at + 8 <= len(data):
        length = struct.unpack_from(">I", data, at + 4)[0]
        yield data[at:at + 4], data[at + 8:at + 8 + length]
        at += 8 + length + length % 2


def sound(path, data):
    """The digest of what is played of a file."""
    part = boxes(data, b"mdat") if path.endswith((".m4a", ".m4b", ".m4v")) else frames(data)[1]
    return hashlib.sha256(part).hexdigest()


def content(path):
    with open(path, "rb") as file:
        return file.read()


class Tags(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.player = os.path.join(folder.name, "player")
        self.out = os.path.join(folder.name, "music")
        shutil.copytree(PLAYER, self.player)
        self.sources = {}
        for at, _, names in os.walk(os.path.join(self.player, MUSIC)):
            for name in names:
                path = os.path.join(at, name)
                size = os.path.getsize(path)
                if name.endswith(".mp3"):
                    self.write(path, mpeg(size))
                elif name.endswith((".m4a", ".m4b", ".m4v")):
                    self.write(path, mp4(size))

    def write(self, path, data):
        path = os.path.join(self.player, MUSIC, path)
        with open(path, "wb") as file:
            file.write(data)
        os.utime(path, (1_000_000_000, 1_000_000_000))

    def rescue(self, *options):
        done = run("rescue", self.player, self.out, "--playlists", "none", *options)
        self.assertEqual((done.status, done.message), (3, ""))  # a file of the sample player is missing
        return done

    def copy(self, name):
        return content(os.path.join(self.out, name))

    def test_copies_have_what_the_library_says_and_the_sound_of_the_player(self):
        done = self.rescue("--tags")
        self.assertIn("tags were written into 27 copies\n", done.text)
        home, _ = frames(self.copy(HOME))
        self.assertEqual({name: home[name] for name in ("TIT2", "TPE1", "TALB", "TCON", "TCOM", "TRCK", "TDRC")},
                         {"TIT2": "Home", "TPE1": "The Paper Engines", "TALB": "Second Gear", "TCON": "Rock",
                          "TCOM": "D. Ashwell", "TRCK": "7/12", "TDRC": "1998"})
        self.assertTrue(home["COMM"].endswith(b"Ripped from the first pressing; the B-side is longer."), home["COMM"])
        meter = home["POPM"].partition(b"\0")[2]
        self.assertEqual((meter[0], int.from_bytes(meter[1:], "big")), (255, 59))
        self.assertTrue(home["TXXX"].startswith("DATE ADDED\0") and home["TXXX"].endswith("2004-05-01T12:02:00"), home["TXXX"])
        self.assertTrue(home["APIC"].startswith(b"\x00image/png\0\x03"), home["APIC"][:20])
        self.assertIn(b"\x89PNG\r\n\x1a\n", home["APIC"])
        self.assertEqual(frames(self.copy(NINE))[0]["TCMP"], "1")
        rain = items(self.copy(RAIN))
        self.assertEqual({name: rain[name].decode() for name in ("\xa9nam", "\xa9ART", "\xa9alb", "\xa9wrt", "\xa9day", "rate")},
                         {"\xa9nam": "雨のプラットホーム", "\xa9ART": "月島ひかり", "\xa9alb": "夜行列車", "\xa9wrt": "青木 透",
                          "\xa9day": "2002", "rate": "100"})
        self.assertEqual((rain["trkn"], rain["disk"]), (b"\0\0\0\x01\0\x0a\0\0", b"\0\0\0\x01\0\x01"))
        self.assertEqual((rain["covr"][:8], rain["PLAYCOUNT"]), (b"\x89PNG\r\n\x1a\n", b"44"))
        for at, _, names in os.walk(os.path.join(self.player, MUSIC)):
            for name in names:
                if not name.endswith(".wav"):
                    self.sources[sound(name, content(os.path.join(at, name)))] = name
        found = [sound(name, content(os.path.join(at, name))) for at, _, names in os.walk(self.out) for name in names
                 if name.endswith((".mp3", ".m4a", ".m4b", ".m4v"))]
        self.assertEqual(len(found), 27)
        self.assertLessEqual(set(found), set(self.sources))
        for name in (HOME, RAIN):
            self.assertEqual(os.stat(os.path.join(self.out, name)).st_mtime, 1_000_000_000)

    def test_places_of_the_sound_follow_it(self):
        self.rescue("--tags")
        data = self.copy(RAIN)
        stco = boxes(data, b"moov", b"trak", b"mdia", b"minf", b"stbl", b"stco")
        places = struct.unpack_from(">II", stco, 8)
        mdat = boxes(data, b"mdat")
        self.assertEqual([data[place:place + 8] for place in places], [mdat[:8], mdat[16:24]])

    def test_files_of_chunks_take_tags_too(self):
        sound = bytes(range(100))
        self.write(DEMO_SOURCE, b"RIFF" + struct.pack("<I", 44 - 8 + 100) + b"WAVEfmt " +
                   struct.pack("<IHHIIHH", 16, 1, 1, 8000, 8000, 1, 8) + b"data" + struct.pack("<I", 100) + sound)
        self.rescue("--tags")
        data = self.copy(DEMO)
        self.assertEqual((data[36:44 + 100], data[:4], struct.unpack_from("<I", data, 4)[0]),
                         (b"data" + struct.pack("<I", 100) + sound, b"RIFF", len(data) - 8))
        self.assertEqual(data[144:148].lower(), b"id3 ")
        self.assertEqual(frames(data[152:])[0]["TIT2"], "Untitled Demo 3")

    def test_aiff_copies_take_tags_and_keep_their_sound(self):
        player = os.path.join(os.path.dirname(self.player), "aiff")
        samples = bytes(i * 7 % 251 for i in range(4000))
        os.makedirs(os.path.join(player, MUSIC, "F00"))
        os.makedirs(os.path.join(player, "iPod_Control", "iTunes"))
        names = ("A.aif", "B.AIFF")
        for name in names:
            with open(os.path.join(player, MUSIC, "F00", name), "wb") as file:
                file.write(aiff(samples, b""))
        with open(os.path.join(player, "iPod_Control", "iTunes", "iTunesDB"), "wb") as file:
            file.write(library([{"title": f"Title {name}", "artist": "A", "album": "B",
                                 "path": f":iPod_Control:Music:F00:{name}"} for name in names]))
        done = run("rescue", player, self.out, "--tags")
        self.assertEqual((done.status, done.message), (0, ""))
        self.assertIn("tags were written into 2 copies\n", done.text)
        for name in names:
            data = self.copy(f"A/B/Title {name}{os.path.splitext(name)[1]}")
            chunks = dict(chunks_of(data))
            self.assertEqual((chunks[b"SSND"][8:], struct.unpack_from(">I", data, 4)[0]), (samples, len(data) - 8))
            got = frames(chunks.get(b"ID3 ") or chunks[b"id3 "])[0]
            self.assertEqual((got["TIT2"], got["TPE1"], got["TALB"]), (f"Title {name}", "A", "B"))

    def test_tags_of_the_file_stay_unless_they_are_to_be_replaced(self):
        size = os.path.getsize(os.path.join(self.player, MUSIC, "F01/HOMA.mp3"))
        for version in (3, 4):
            own = id3({"TIT2": "My own title", "TPE3": "A conductor"}, version)
            self.write("F01/HOMA.mp3", own + mpeg(size - len(own)))
            for option, title in (("--tags", "My own title"), ("--tags=replace", "Home")):
                shutil.rmtree(self.out, ignore_errors=True)
                self.rescue(option)
                got, played = frames(self.copy(HOME))
                self.assertEqual((got["TIT2"], got["TPE3"], got["TALB"]), (title, "A conductor", "Second Gear"))
                self.assertEqual((self.copy(HOME)[3], played), (version, mpeg(size - len(own))))

    def test_tagged_copies_are_known_again(self):
        self.rescue("--tags")
        before = {name: self.copy(name) for name in (HOME, NINE, RAIN)}
        for options in (["--tags"], [], ["--tags=replace"]):
            again = self.rescue(*options)
            self.assertTrue(again.text.startswith("0 songs copied, 0 B\n28 songs are already there\n"), again.text)
            self.assertEqual({name: self.copy(name) for name in before}, before)
        os.unlink(os.path.join(self.out, HOME))
        self.assertTrue(self.rescue("--tags").text.splitlines()[1].startswith("1 song copied"))
        self.assertEqual(self.copy(HOME), before[HOME])

    def test_files_that_take_no_tags_are_copied_as_they_are(self):
        shutil.rmtree(self.player)
        shutil.copytree(PLAYER, self.player)  # whose files are noise
        done = self.rescue("--tags")
        for name, source in ((HOME, "F01/HOMA.mp3"), (RAIN, "F03/AMEP.m4a"), (DEMO, DEMO_SOURCE)):
            self.assertEqual(self.copy(name), content(os.path.join(self.player, MUSIC, source)))
            self.assertIn(f"{source}: no tags can be written into it; it is copied as it is\n", done.text)

    def test_hostile_files_neither_stop_nor_mislead(self):
        deep = b"".join(struct.pack(">I", 8 * (200_000 - depth)) + b"moov" for depth in range(200_000))
        sized = mp4(4000)
        hostile = {"F03/AMEP.m4a": deep, "F03/SHUD.m4a": sized[:100], "F04/SHIH.m4a": sized[:1000], "F00/QHLA.m4a": struct.pack(">I", 0) + b"moov",
                   "F01/SORX.m4a": struct.pack(">I", 1) + b"moov" + b"\xff" * 8, "F01/HOMA.mp3": b"ID3\4\0\0\x7f\x7f\x7f\x7f" + mpeg(500),
                   "F00/INTB.mp3": b"", "F07/NINE.mp3": id3({"TIT2": "x"})[:12] + mpeg(5000)}
        if "SANITIZED" in os.environ:
            hostile["F03/AMEP.m4a"] = deep[:1000]  # the process that writes tags has no stack for it, as would be reported
        for name, data in hostile.items():
            self.write(name, data)
        done = self.rescue("--tags")
        self.assertIn("28 songs copied", done.text)
        copies = {content(os.path.join(at, name)) for at, _, names in os.walk(self.out) for name in names}
        for name in ("F03/AMEP.m4a", "F03/SHUD.m4a", "F04/SHIH.m4a", "F00/QHLA.m4a", "F01/SORX.m4a", "F00/INTB.mp3"):
            self.assertIn(hostile[name], copies, name)
        self.assertIn("F03/AMEP.m4a: ", done.text)
        self.assertFalse([name for name in os.listdir(self.out) if name.startswith(".zemhost-")])

    def test_a_word_that_is_no_way_is_refused(self):
        done = run("rescue", self.player, self.out, "--tags=all")
        self.assertEqual((done.status, done.text), (2, ""))


if __name__ == "__main__":
    unittest.main()
