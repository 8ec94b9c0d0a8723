#!/usr/bin/env python3
"""What a compressed database may cost, and what is said when there is no memory."""

import os
import re
import resource
import struct
import subprocess
import tempfile
import unittest
import zlib

from database_writer import compressed, library
from program import PLAYER, ZEMHOST, generated, start, without_free_room

MEGABYTE = 1 << 20

# Every command that reads a library; {path} is one, {work} a folder to write to.
COMMANDS = {
    "info": ["info", "{path}"],
    "songs": ["songs", "{path}"],
    "playlists": ["playlists", "{path}"],
    "playlist": ["playlist", "{path}", "0"],
    "plays": ["plays", "{path}"],
    "check": ["check", "{path}"],
    "check as JSON": ["check", "{path}", "--json"],
    "csv": ["export", "{path}", "--format", "csv"],
    "json": ["export", "{path}", "--format", "json"],
    "m3u8": ["export", "{path}", "--format", "m3u8", "--paths", "device"],
    "sqlite": ["export", "{path}", "--format", "sqlite", "-o", "{work}/songs.sqlite"],
    "rescue": ["rescue", "{path}", "{work}/music", "--dry-run"],
    "compare": ["compare", "{path}", "{path}"],
    "duplicates": ["duplicates", "{path}"],
    "stats": ["stats", "{path}"],
    "report": ["report", "{path}", "-o", "-"],
    "call": ["call", "{path}", "CountSongs", "GetTitle(0)", "GetAbsolutePath(0)"],
}


def chunk(tag, jump, length, count=0):
    return struct.pack("<4sIII", tag, jump, length, count)


def write_records(path, record, count):
    """Writes a compressed database of two data sets, a song and a playlist, each before so many copies of the record.
    Returns its inflated size. Never holds it whole: a child's peak of memory begins with that of its parent."""
    inner = 0x5C + 0x9C + len(record) * count
    size = 0x68 + 2 * (0x60 + inner)
    stream = zlib.compressobj(1)
    with open(path, "wb") as file:
        file.write(chunk(b"mhbd", 0x68, size, 2).ljust(0x68, b"\0"))
        for tag, first, kind in ((b"mhlt", b"mhit", 1), (b"mhlp", b"mhyp", 2)):
            file.write(stream.compress(chunk(b"mhsd", 0x60, 0x60 + inner, kind).ljust(0x60, b"\0")))
            file.write(stream.compress(chunk(tag, 0x5C, 0xFFFFFFF).ljust(0x5C, b"\0")))
            file.write(stream.compress(chunk(first, 0x9C, 0x9C).ljust(0x9C, b"\0")))
            for _ in range(count // 1000):
                file.write(stream.compress(record * 1000))
        file.write(stream.flush())
    return size


COSTLY = {
    "songs": chunk(b"mhit", 16, 16),
    "playlists": chunk(b"mhyp", 16, 16),
    "entries": chunk(b"mhip", 16, 16),
    "other texts": chunk(b"mhod", 0, 16, 99),
    "titles": chunk(b"mhod", 0, 16, 1),
    "songs with a text": chunk(b"mhit", 16, 32, 1) + chunk(b"mhod", 0, 16, 1),
    "unknown chunks": chunk(b"mhxx", 16, 16),
}


class Memory(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def write(self, name, content):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def run_limited(self, arguments, limit=None, shown=True):
        """Status, output, errors, and the peak of resident memory in bytes; `limit` is that of the address space. What is not
        `shown` is not read either, which would enlarge the peak of the next."""
        def lower():
            if limit is not None:
                resource.setrlimit(resource.RLIMIT_AS, (limit, limit))
        arguments = [argument.replace("{work}", self.folder) for argument in arguments]
        out = os.path.join(self.folder, "out") if shown else os.devnull
        err = os.path.join(self.folder, "err")
        with open(out, "wb") as to, open(err, "wb") as errors:
            process = start(*arguments, stdout=to, stderr=errors, preexec_fn=lower)
            _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        with open(out, "rb") as file, open(err, encoding="utf-8") as message:
            # The class names the copy of a compressed database that lies on no player, which has another name each time.
            text = re.sub(rb"zemhost-\w{6}", b"zemhost-COPY", file.read())
            text = re.sub(rb'"made":"[^"]*"', b"", without_free_room(text))  # when a page was made
            return process.returncode, text, message.read(), usage.ru_maxrss * 1024

    def test_compressed_databases_cost_twice_their_inflated_size_and_64_megabytes_at_most(self):
        refused = set()
        for name, record in COSTLY.items():
            for count in (100_000, 1_000_000):
                path = os.path.join(self.folder, "database")
                size = write_records(path, record, count // 2)
                for command, words in COMMANDS.items():
                    if name not in ("songs", "playlists") and command not in ("info", "songs", "playlist", "check", "call"):
                        continue  # the class keeps less of these records, and few commands show them
                    status, _, err, peak = self.run_limited([word.replace("{path}", path) for word in words],
                                                             shown=False)
                    times = 2 if command == "compare" else 1
                    self.assertLess(peak, times * (2 * size + 64 * MEGABYTE), (name, count, command))
                    self.assertIn(status, (0, 1, 3), (name, count, command, err))
                    if "out of memory" in err:
                        self.assertEqual(status, 1, (name, command, err))
                        self.assertEqual(err.splitlines()[-1], f"zemhost: {path}: out of memory; a compressed database may "
                                         "take twice its inflated size and 64 MB")
                        refused.add((name, count, command))
        # A million songs of 16 bytes each are more than any command has memory for.
        self.assertEqual({("songs", 1_000_000, command) for command in COMMANDS} - refused, set())

    def test_ordinary_compressed_databases_are_far_from_that(self):
        path = self.write("library", b"")
        generated(path, 8_000, 10, 5_000)
        with open(path, "rb") as file:
            plain = file.read()
        packed = self.write("packed", compressed(plain, 1))
        for command, words in COMMANDS.items():
            expected = self.run_limited([word.replace("{path}", path) for word in words])
            got = self.run_limited([word.replace("{path}", packed) for word in words])
            self.assertEqual(got[0], expected[0], (command, got[2]))
            self.assertEqual(got[1].replace(b"packed", b"library").count(b"\n"), expected[1].count(b"\n"), command)

    def smallest_start(self):
        """An address space, in steps of 64 kB, in which the program starts at all: a step more than the smallest, since the
        layout of a process differs by some pages from run to run, and the libraries end it where their own beginning fails."""
        limit = 4 * MEGABYTE
        while self.run_limited(["--version"], limit)[0] != 0:
            limit += MEGABYTE // 16
        return limit + MEGABYTE // 16

    def test_every_command_says_that_it_ran_out_of_memory(self):
        small = library([{"title": f"Song {i}", "artist": f"Artist {i % 9}", "album": "Album" * 20,
                          "path": f":iPod_Control:Music:F00:{i}.mp3"} for i in range(1200)], [("List", range(900))])
        alone = self.write("library.itunesdb", small)
        packed = self.write("packed.itunesdb", compressed(small))
        first, named = self.smallest_start(), 0
        for path in (PLAYER, alone, packed):
            for command, words in COMMANDS.items():
                words = [word.replace("{path}", path) for word in words]
                whole = self.run_limited(words)
                limit, failures, well = first, 0, 0
                while well < 3:
                    self.assertLess(limit, first + 400 * MEGABYTE, (path, command))
                    status, out, err, _ = self.run_limited(words, limit)
                    if "out of memory" in err:
                        self.assertEqual(status, 1, (path, command, limit, err))
                        # It may be the plug-in, or even less, for which there is no memory.
                        self.assertRegex(err.splitlines()[-1], "\\Azemhost: ((cannot load the plug-in )?/.*: )?out of memory")
                        named += f"zemhost: {path}" in err
                        failures, well = failures + 1, 0
                    else:
                        self.assertEqual((status, out, err), whole[:3], (path, command, limit))
                        well += 1
                    # `rescue` walks the folders, for which the library has one narrow window in which it cannot throw.
                    limit += MEGABYTE // (8 if command == "rescue" else 3)
                self.assertGreater(failures, 0, (path, command))
        self.assertGreater(named, 100)

    def test_the_shell_sees_it_too(self):
        path = self.write("library.itunesdb", b"")
        generated(path, 20_000)
        ended = subprocess.run(["sh", "-c", 'ulimit -v 40000; exec "$0" songs "$1"', ZEMHOST, path], capture_output=True,
                               check=False)
        self.assertEqual((ended.returncode, ended.stdout, ended.stderr.decode()),
                         (1, b"", f"zemhost: {path}: out of memory\n"))


if __name__ == "__main__":
    unittest.main()
