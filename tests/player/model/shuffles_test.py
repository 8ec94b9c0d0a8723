#!/usr/bin/env python3
"""What the reader makes of files of shuffles is what a plain model makes of them: on sound, real and damaged ones."""

import os
import random
import struct
import tempfile
import unittest

import shuffle_model
from printer import printed, scaled

SHUFFLE = os.path.join(os.environ["SHARED"], "data", "players", "shuffle")
RANDOM_FILES = scaled(500)


class RandomFile:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.make = self.random.choice([self.older_list, self.newer_list, self.older_counts, self.newer_counts])

    def path(self):
        return self.random.choice(["/iPod_Control/Music/F00/A.mp3", "", "/S\u00e8te \U0001F600", "x" * 240])

    def older_list(self):
        count = self.random.randrange(5)
        data = (count.to_bytes(3, "big") + self.random.choice([b"\1\6\0", b"\1\x08\0"]) + b"\0\0\x12").ljust(18, b"\0")
        for _ in range(count):
            path = self.path().encode("utf-16-le") + self.random.choice([b"", b"", b"\0\xd8", b"\1\xdc"])
            data += (b"\0\2\x2e".ljust(33, b"\1") + path).ljust(555, b"\0") + b"\1\1\0"
        return data

    def newer_list(self):
        count = self.random.randrange(5)
        at = 0x40 if count or self.random.random() < 0.5 else 0
        head = (b"bdhs" + struct.pack("<III", 0x02010001, 0x40, count)).ljust(0x24, b"\0") + struct.pack("<I", at)
        songs = []
        for _ in range(count):
            length = self.random.choice([0x174] * 8 + [0x118, 0x150, 0x14F, 0x117])
            song = (b"rths" + struct.pack("<I", length)).ljust(0x18, b"\2") + self.path().encode()[:256].ljust(256, b"\0")
            song = song.ljust(0x148, b"\3") + struct.pack("<Q", self.random.choice([0, 7, self.random.getrandbits(64)]))
            songs.append(song.ljust(0x174, b"\0")[:length])
        offsets, place = b"", 0x40 + 20 + 4 * count
        for song in songs:
            offsets += struct.pack("<I", place)
            place += len(song)
        table = b"hths" + struct.pack("<IIII", 20 + 4 * count, count, 0, 0) + offsets
        return head.ljust(0x40, b"\0") + table + b"".join(songs)

    def older_counts(self):
        entries = [b"\x12\0\0" + self.random.randbytes(15) for _ in range(self.random.randrange(5))]
        return len(entries).to_bytes(3, "little") + bytes(3) + b"".join(entries)

    def newer_counts(self):
        entries = [b"\x20\0\0\0" + self.random.randbytes(28) for _ in range(self.random.randrange(5))]
        return struct.pack("<II", len(entries), 0) + b"".join(entries)

    def damaged(self, data):
        data = bytearray(data)
        for _ in range(self.random.randrange(1, 5)):
            at = self.random.randrange(max(1, len(data)))
            if self.random.random() < 0.7 and data:
                data[at] = self.random.choice([0, 1, 0xFF, self.random.randrange(256)])
            else:
                del data[at:]
        return bytes(data)


class Shuffles(unittest.TestCase):
    def assert_read(self, data, got):
        songs = shuffle_model.song_list(data)
        if songs is None:
            self.assertIsNone(got["list"])
        else:
            paths = [[list(path), identity] for path, identity in songs[0]]
            self.assertEqual(got["list"], {"songs": paths, "declared": songs[1], "is_cut_short": songs[2]})
        self.assertEqual(got["counts"], shuffle_model.counts(data))

    @unittest.skipUnless(os.path.isdir(SHUFFLE), "the collection of players is not there")
    def test_real_files(self):
        paths = [os.path.join(SHUFFLE, name) for name in sorted(os.listdir(SHUFFLE))]
        for path, got in zip(paths, printed("shuffles", paths), strict=True):
            with open(path, "rb") as file:
                self.assert_read(file.read(), got)
            whole = got["list"] and len(got["list"]["songs"]) or got["counts"] and len(got["counts"])
            self.assertEqual(whole, 13, path)

    def test_random_and_damaged_files(self):
        with tempfile.TemporaryDirectory() as folder:
            files, paths = [], []
            for seed in range(RANDOM_FILES):
                one = RandomFile(seed)
                files.append(one.make() if seed % 2 == 0 else one.damaged(one.make()))
                paths.append(os.path.join(folder, str(seed)))
                with open(paths[-1], "wb") as file:
                    file.write(files[-1])
            found = printed("shuffles", paths)
            for seed, (data, got) in enumerate(zip(files, found, strict=True)):
                with self.subTest(seed=seed):
                    self.assert_read(data, got)
            # Without these the comparison could pass over nothing.
            self.assertGreater(sum(bool(got["list"] and got["list"]["songs"]) for got in found), RANDOM_FILES // 8)
            self.assertGreater(sum(bool(got["list"] and got["list"]["is_cut_short"]) for got in found), RANDOM_FILES // 20)
            self.assertGreater(sum(bool(got["counts"]) for got in found), RANDOM_FILES // 8)


if __name__ == "__main__":
    unittest.main()
