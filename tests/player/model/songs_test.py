#!/usr/bin/env python3
"""What the reader knows of songs is, field by field, what a plain model reads: on sound, real and damaged files."""

import os
import random
import struct
import tempfile
import unittest

from printer import printed, scaled
from song_model import BIG, BOTH, LITTLE, NAMES, Database, expected

SAMPLES = os.environ["SAMPLES"]
SHARED = os.environ["SHARED"]
RANDOM_FILES = scaled(500)


def real_files():
    folders = [os.path.join(SHARED, "data", *part) for part in (["real"], ["players"], ["players", "fourth-generation"])]
    return [os.path.join(folder, name) for folder in folders if os.path.isdir(folder)
            for name in sorted(os.listdir(folder))
            if name.endswith((".itunesdb", ".library", "iTunesDB")) and not name.startswith("encrypted")]


def chunk(tag, order, jump, body, count=0, length=None):
    header = tag + struct.pack(order + "III", jump, jump + len(body) if length is None else length, count)
    return header.ljust(jump, b"\0")[:max(jump, 16)] + body


class RandomFiles:
    """Databases whose songs have headers of any length, and any values, usual and odd, in their fields."""

    DATES = [0, 1, 0x7C25B080, 2398377599, 2398377600, 0xB6757900, 0xB6757900 + 50400, 0xB6757900 + 50401,
             0xB6757900 - 50400, 0xB6757900 - 50401, 0xD2F9137C, 0xFFFFFFFF]
    LENGTHS = [0x9C, 0xF4, 0x148, 0x184, 0x248, 0x270]
    ENCODINGS = [1, 1, 1, 0, 2]
    shortest = 0x14

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.big = self.random.random() < 0.25
        self.order = ">" if self.big else "<"

    def value(self, size):
        some = self.random.choice([0, 0, 1, 2, 20, 100, 101, self.random.getrandbits(8 * size),
                                   self.random.choice(self.DATES), 0x01010100])
        return some % (1 << 8 * size)

    def song(self, place):
        jump = self.random.choice(self.LENGTHS + [self.random.randrange(self.shortest, 0x280)])
        fields = {**BOTH, **(BIG if self.big else LITTLE), "skips": (0x98, "I", 0), "more": (0x9C, "I", 0),
                  "number": (0xE0, "I", 0)}
        objects = b"".join(self.text() for _ in range(self.random.randrange(4)))
        song = bytearray(chunk(b"htim" if self.big else b"mhit", self.order, jump, b""))
        for name, (offset, form, _) in fields.items():
            form = form.upper()
            if offset + struct.calcsize(self.order + form) <= jump and self.random.random() < 0.8:
                value = 100 + place if name == "id" else self.value(struct.calcsize(self.order + form))
                struct.pack_into(self.order + form, song, offset, value)
        struct.pack_into(self.order + "II", song, 8, len(song) + len(objects), objects.count(b"hohm" if self.big
                                                                                         else b"mhod"))
        return bytes(song) + objects

    def text(self):
        units = [self.random.choice([0x41, 0x62, 0xE9, 0x20AC, 0x3042, 0xD83D, 0xDE00, 0xFFFF])
                 for _ in range(self.random.randrange(12))]
        body = struct.pack(f"{self.order}{len(units)}H", *units)
        inner = struct.pack(self.order + "IIII", self.random.choice(self.ENCODINGS), len(body), 1, 0)
        tag = b"hohm" if self.big else b"mhod"
        return chunk(tag, self.order, 0x18, inner + body, self.random.randrange(1, 40))

    def database(self):
        songs = [self.song(place) for place in range(self.random.randrange(1, 12))]
        tags = (b"hdfm", b"hdsm", b"htlm") if self.big else (b"mhbd", b"mhsd", b"mhlt")
        tracks = chunk(tags[2], self.order, 0x5C, b"", 0, len(songs)) + b"".join(songs)
        return chunk(tags[0], self.order, 0x68, chunk(tags[1], self.order, 0x60, tracks, 1)), len(songs)

    def damaged(self, data):
        data = bytearray(data)
        for _ in range(self.random.randrange(1, 6)):
            what = self.random.random()
            at = self.random.randrange(0x68, len(data))
            if what < 0.6:
                data[at] = self.random.choice([0, 1, 0xFF, self.random.randrange(256)])
            elif what < 0.8:
                data[at:at + 16] = self.random.randbytes(min(16, len(data) - at))
            else:
                del data[max(at, 0x70):]
        return bytes(data)

    def play_counts(self, songs):
        length = self.random.choice([0x0C, 0x10, 0x14, 0x1C, 0x28, 0x28, 0x0F, 0x08])
        count = songs + self.random.choice([0] * 12 + [1, -1])
        entries = b""
        for _ in range(count):
            entry = bytearray(max(length, 0x28))
            words = [self.random.choice([0, 1, 7, 0xFFFFFFFF]), self.random.choice(self.DATES), self.value(4),
                     self.random.choice([0, 20, 100, 101]), self.random.choice([0, 0x100, 0x200, 0x300]),
                     self.random.choice([0, 3]), self.random.choice(self.DATES)]
            struct.pack_into("<7I", entry, 0, *words)
            entries += bytes(entry[:length])
        file = b"mhdp" + struct.pack("<III", 0x60, length, count) + bytes(0x50) + entries
        return file[:self.random.randrange(len(file))] if self.random.random() < 0.1 else file


class Songs(unittest.TestCase):
    maxDiff = 2000

    def assert_read(self, path, got):
        with open(path, "rb") as file:
            own = Database(file.read(), []).songs_at()
        at = [song["at"] for song in got["songs"]]
        if own is not None and self.is_sound:
            self.assertEqual(at, own)
        songs, used, left_out = expected(path, at)
        self.assertEqual((got["has_counts"], got["is_warned"]), (used, left_out))
        self.assertEqual(len(got["songs"]), len(songs))
        for one, other in zip(got["songs"], songs):
            self.assertEqual(one, other)

    def test_sample_and_real_files(self):
        self.is_sound = True
        paths = [os.path.join(SAMPLES, "player", "iPod_Control", "iTunes", "iTunesDB"),
                 os.path.join(SAMPLES, "big-endian.library"), *real_files()]
        for path, got in zip(paths, printed("songs", paths), strict=True):
            with self.subTest(os.path.basename(path)):
                self.assertTrue(got["songs"] or "empty" in path)
                self.assert_read(path, got)
                have = {name: sum(song[name] is not None for song in got["songs"]) for name in NAMES}
                print(f"{os.path.basename(path)}: {len(got['songs'])} songs; with", " ".join(
                    f"{name} {count}" for name, count in have.items() if count))

    def test_random_and_damaged_files(self):
        with tempfile.TemporaryDirectory() as folder:
            paths, sound = [], []
            for seed in range(RANDOM_FILES):
                files = RandomFiles(seed)
                data, songs = files.database()
                sound.append(seed % 2 == 0)
                os.makedirs(os.path.join(folder, str(seed)))
                paths.append(os.path.join(folder, str(seed), "iTunesDB"))
                with open(paths[-1], "wb") as file:
                    file.write(data if sound[-1] else files.damaged(data))
                if seed % 3 != 0:
                    with open(os.path.join(folder, str(seed), "Play Counts"), "wb") as file:
                        file.write(files.play_counts(songs))
            found = printed("songs", paths)
            for path, got, self.is_sound in zip(paths, found, sound, strict=True):
                with self.subTest(path):
                    self.assert_read(path, got)
            # Without these the comparison could pass over nothing.
            self.assertGreater(sum(got["has_counts"] for got in found), RANDOM_FILES // 8)
            self.assertGreater(sum(got["is_warned"] for got in found), RANDOM_FILES // 20)
            songs = [song for got in found for song in got["songs"]]
            for name in NAMES:
                self.assertTrue(any(song[name] is not None for song in songs), name)


if __name__ == "__main__":
    unittest.main()
