#!/usr/bin/env python3
"""What an export leaves on the disk when all goes well, when it fails, and when it is killed."""

import contextlib
import csv
import io
import json
import os
import re
import signal
import sqlite3
import subprocess
import tempfile
import time
import unittest

from database_writer import library
from program import PLAYER, generated, run, start

FORMATS = ["csv", "json", "ndjson", "m3u8", "sqlite"]
OLD = b"what was there before\n"


def options(form):
    """Every generated library is on no player, so that only the device's paths name its songs."""
    return ["--format", form] + (["--paths", "device"] if form == "m3u8" else [])


def snapshot(folder):
    return {os.path.join(root, name): os.stat(os.path.join(root, name)).st_mtime_ns
            for root, folders, files in os.walk(folder) for name in ["."] + folders + files}


class Files(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.made = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.made.cleanup)
        cls.library = generated(os.path.join(cls.made.name, "library.itunesdb"), 20000, 3, 20000)

    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.folder = self.temporary.name
        self.out = os.path.join(self.folder, "out")

    def refused(self, status, text, *arguments):
        done = run("export", PLAYER, *arguments)
        self.assertEqual((done.status, done.text), (status, ""), arguments)
        self.assertIn(text, done.message)
        self.assertTrue(done.message.startswith("zemhost: "))
        self.assertEqual(os.listdir(self.folder), [])

    def test_wrong_options_are_named(self):
        self.refused(2, "--format: it is required where --output names no file")
        self.refused(2, "xml not in {csv,tsv,json,ndjson,m3u8,xspf,sqlite,listenbrainz}", "--format", "xml")
        self.refused(1, 'no field is named "titel"; there are: song_index, track_id, title, ', "--format", "csv",
                     "--fields", "title,titel", "-o", self.out)
        self.refused(1, 'the field "title" is asked for twice', "--format", "csv", "--fields", "title,year,title")
        self.refused(2, "--fields: a list has no fields to choose", "--format", "m3u8", "--fields", "title")
        self.refused(2, "--paths: only m3u8 and xspf have paths to choose", "--format", "csv", "--paths", "host")
        self.refused(2, "--paths", "--format", "m3u8", "--paths", "here")
        for form in ("json", "ndjson", "sqlite"):
            self.refused(2, f"--encoding: {form} is always UTF-8", "--format", form, "--encoding", "UTF-16", "-o",
                         self.out)
        self.refused(2, "--output: sqlite needs a file to write", "--format", "sqlite")
        self.refused(2, "--output: the name is empty", "--format", "csv", "-o", "")
        self.refused(1, 'no encoding is named "Klingon"', "--format", "csv", "--encoding", "Klingon", "-o", self.out)
        self.refused(1, 'no playlist is named "Polka"', "--format", "csv", "--playlist", "Polka", "-o", self.out)

    def test_wrong_outputs_are_named(self):
        inner = os.path.join(self.folder, "inner")
        os.mkdir(inner)
        os.symlink("nowhere", os.path.join(inner, "link"))
        for form in FORMATS:
            for name, reason in {inner: "Is a directory", os.path.join(inner, "link"): "symbolic link",
                                 "/dev/null": "not a regular file",
                                 os.path.join(inner, "none", "out"): "No such file or directory"}.items():
                done = run("export", PLAYER, "--format", form, "-o", name)
                self.assertEqual((done.status, done.text), (1, ""))
                self.assertIn(f"zemhost: {name}: ", done.message)
                self.assertIn(reason, done.message)
        self.assertEqual(os.listdir(inner), ["link"])

    def test_file_holds_what_standard_output_shows(self):
        for form in FORMATS[:4]:
            shown = run("export", PLAYER, "--format", form)
            self.assertEqual((shown.status, shown.message), (0, ""))
            self.assertGreater(len(shown.out), 1000)
            self.assertEqual(run("export", PLAYER, "--format", form, "-o", "-").out, shown.out)
            with open(self.out, "wb") as file:
                file.write(OLD)
            done = run("export", PLAYER, "--format", form, "-o", self.out)
            self.assertEqual((done.status, done.text, done.message), (0, "", ""))
            with open(self.out, "rb") as file:
                self.assertEqual(file.read(), shown.out)
            self.assertEqual(os.listdir(self.folder), ["out"])

    def test_player_is_left_alone(self):
        before = snapshot(PLAYER)
        for form in FORMATS:
            done = run("export", PLAYER, "--format", form, "-o", self.out, cwd=PLAYER)
            self.assertEqual(done.status, 0, done.message)
        self.assertEqual(snapshot(PLAYER), before)

    def test_fields_are_those_asked_for_in_their_order(self):
        fields = ["year", "title", "track_id"]
        chosen = ["--fields", ",".join(fields)]
        rows = list(csv.reader(io.StringIO(run("export", PLAYER, "--format", "csv", *chosen).text, newline="")))
        self.assertEqual(rows[:2], [fields, ["2003", "Harbour Lights at Five", "100"]])
        songs = json.loads(run("export", PLAYER, "--format", "json", *chosen).text)["songs"]
        self.assertEqual(list(songs[0].items()),
                         [("year", 2003), ("title", "Harbour Lights at Five"), ("track_id", 100)])
        # A database needs the keys that its entries refer to.
        self.assertEqual(run("export", PLAYER, "--format", "sqlite", "-o", self.out, "--fields", "title").status, 0)
        with contextlib.closing(sqlite3.connect(self.out)) as database:
            names = [row[1] for row in database.execute("PRAGMA table_info(songs)")]
        self.assertEqual(names, ["song_index", "track_id", "title"])

    def test_full_disk_is_named_and_nothing_stays(self):
        for form in FORMATS:
            for old in (None, OLD):
                if old is not None:
                    with open(self.out, "wb") as file:
                        file.write(old)
                done = run("export", self.library, *options(form), "-o", self.out, file_size=300_000)
                self.assertEqual((done.status, done.text, done.message), (1, "", f"zemhost: {self.out}: File too large\n"))
                self.assertEqual(os.listdir(self.folder), [] if old is None else ["out"])
                if old is not None:
                    with open(self.out, "rb") as file:
                        self.assertEqual(file.read(), old)
                    os.remove(self.out)

    def test_full_device_is_named(self):
        small = os.path.join(self.folder, "small")
        os.mkdir(small)
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=300k", "tmpfs", small], check=False,
                                 stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if mounted.returncode != 0:
            self.skipTest("mounting is not permitted")
        self.addCleanup(subprocess.run, ["umount", small], check=True)
        for form in FORMATS:
            out = os.path.join(small, "out")
            done = run("export", self.library, *options(form), "-o", out)
            self.assertEqual((done.status, done.message), (1, f"zemhost: {out}: No space left on device\n"))
            self.assertEqual(os.listdir(small), [])

    def test_full_standard_output_is_named(self):
        for form in FORMATS[:4]:
            with open("/dev/full", "wb") as full:
                done = run("export", PLAYER, "--format", form, stdout=full)
            self.assertEqual((done.status, done.message), (1, "zemhost: standard output: No space left on device\n"))

    def test_reader_that_has_enough_is_no_error(self):
        for form in FORMATS[:4]:
            with start("export", self.library, *options(form)) as process:
                self.assertEqual(len(process.stdout.read(100)), 100)
                process.stdout.close()
                self.assertEqual(process.stderr.read(), b"")
                self.assertEqual(process.wait(), -signal.SIGPIPE)

    def end_in_the_middle(self, form, number):
        """Ends an export once it has written some of its file; False when it was done before."""
        with start("export", self.library, *options(form), "-o", self.out) as process:
            while process.poll() is None:
                names = [name for name in os.listdir(self.folder) if name != "out"]
                with contextlib.suppress(FileNotFoundError):
                    if names and os.path.getsize(os.path.join(self.folder, names[0])) > 0:
                        process.send_signal(number)
                        return process.wait() == -number
                time.sleep(0.001)
        return False

    def test_killed_in_the_middle_leaves_no_half_file_under_the_name(self):
        for form in FORMATS:
            with open(self.out, "wb") as file:
                file.write(OLD)
            self.assertTrue(self.end_in_the_middle(form, signal.SIGKILL), form)
            with open(self.out, "rb") as file:
                self.assertEqual(file.read(), OLD)
            os.remove(self.out)
            self.assertTrue(self.end_in_the_middle(form, signal.SIGKILL), form)
            self.assertFalse(os.path.exists(self.out))
            # The next one is not in the way of what a killed one left.
            self.assertEqual(run("export", PLAYER, "--format", form, "-o", self.out).status, 0)
            self.assertGreater(os.path.getsize(self.out), 1000)

    def test_terminated_in_the_middle_leaves_nothing(self):
        for form in FORMATS:
            self.assertTrue(self.end_in_the_middle(form, signal.SIGTERM), form)
            self.assertEqual(os.listdir(self.folder), [])

    @unittest.skipIf("SANITIZED" in os.environ, "the sanitizers need memory of their own")
    def test_large_library_needs_little_memory_of_its_own(self):
        def peak(*arguments):
            process = start(*arguments, stdout=subprocess.DEVNULL, stderr=None)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            self.assertEqual(process.returncode, 0)
            return usage.ru_maxrss

        loaded = peak("info", self.library)
        for form in FORMATS:
            more = peak("export", self.library, *options(form), "-o", self.out) - loaded
            # The 20,000 songs are 27 MB as JSON text, and several times that as a tree in memory.
            self.assertLess(more, 12_000, f"kilobytes for {form}")

    def test_awkward_texts_break_no_format(self):
        titles = ['a,"b"', "two\r\nlines\nand\rmore", " blanks ", "\t\x01\x1b[2J\x7f", "\ud83c alone", "alone \udf19",
                  "\u2028\u202e\ufeff", "'; DROP TABLE songs; --", "=1+1", "\\u0041", "🌙", "null"]
        # Half a pair is no character: every format has U+FFFD in its place.
        expected = [re.sub("[\ud800-\udfff]", "\ufffd", title) for title in titles]
        file = os.path.join(self.folder, "library.itunesdb")
        with open(file, "wb") as out:
            out.write(library([{"title": title, "artist": title} for title in titles]))
        for form in FORMATS:
            done = run("export", file, *options(form), "-o", self.out)
            self.assertEqual((done.status, done.message.count("\n")), (3, 2) if form == "m3u8" else (0, 0), done.message)
            if form == "sqlite":
                with contextlib.closing(sqlite3.connect(self.out)) as database:
                    got = [row[0] for row in database.execute("SELECT title FROM songs ORDER BY song_index")]
            else:
                if form == "m3u8":  # these songs have no path, and are left out
                    self.assertIn(": kept as it was: the new list would be empty", done.message)
                    continue
                with open(self.out, encoding="utf-8", newline="") as text:
                    if form == "csv":
                        got = [row["title"] for row in csv.DictReader(text, strict=True)]
                    elif form == "json":
                        got = [song["title"] for song in json.load(text)["songs"]]
                    else:
                        got = [json.loads(line)["title"] for line in text.read().split("\n")[:-1]]
            self.assertEqual(got, expected, form)

    def test_entries_without_a_song_are_told(self):
        with open(os.path.join(PLAYER, "iPod_Control", "iTunes", "iTunesDB"), "rb") as sample:
            library = bytearray(sample.read())
        start = library.rindex(b"mhyp")  # the last playlist: give its first entry an ID that no song has
        entry = library.index(b"mhip", start)
        library[entry + 0x18:entry + 0x1C] = (123456).to_bytes(4, "little")
        file = os.path.join(self.folder, "library.itunesdb")
        with open(file, "wb") as out:
            out.write(library)
        done = run("export", file, "--format", "csv", "--playlist", "7")
        self.assertEqual(done.status, 0)
        self.assertEqual(done.message,
                         f"zemhost: {file}: the playlist has 1 entry whose track ID no song carries\n")
        whole = json.loads(run("export", file, "--format", "json").text)
        self.assertEqual(whole["playlists"][7]["entries"][0],
                         {"position": 0, "song_index": None, "track_id": 123456, "play": True, "flags": 0,
                          "podcast": None})


if __name__ == "__main__":
    unittest.main()
