#!/usr/bin/env python3
"""Which format an export has, which columns, where it goes, and how other programs read its tables."""

import csv
import io
import json
import os
import re
import tempfile
import threading
import unittest

from database_writer import library
from program import PLAYER, run

FORMULAS = ["=1+1", "+49 30", "-1", "@SUM(A1)", "\tx", "\rx"]


def read(path):
    with open(path, "rb") as file:
        return file.read()


class Exports(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = temporary.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def export(self, *arguments, source=PLAYER):
        done = run("export", source, *arguments)
        self.assertEqual((done.status, done.message), (0, ""), arguments)
        return done.out

    def database(self, songs):
        with open(self.path("library.itunesdb"), "wb") as file:
            file.write(library(songs))
        return file.name

    def test_ending_of_the_file_stands_for_the_format(self):
        for name, form in {"a.csv": "csv", "a.TSV": "tsv", "a.json": "json", "a.ndjson": "ndjson", "a.jsonl": "ndjson",
                           "a.b.m3u8": "m3u8"}.items():
            self.export("-o", self.path(name))
            self.assertEqual(read(self.path(name)), self.export("--format", form), name)
        for name in ("a.sqlite", "a.sqlite3", "a.db"):
            self.export("-o", self.path(name))
            self.assertTrue(read(self.path(name)).startswith(b"SQLite format 3\0"), name)

    def test_format_that_is_asked_for_goes_before_the_ending(self):
        self.export("-o", self.path("songs.csv"), "--format", "json")
        self.assertEqual(len(json.loads(read(self.path("songs.csv")))["songs"]), 29)

    def test_ending_that_stands_for_nothing_is_named(self):
        for arguments, text in ((["-o", self.path("songs.doc")], 'the ending of "' + self.path("songs.doc")),
                                (["-o", self.path("csv")], "stands for no format"),
                                (["-o", "/dev/stdout"], "--output names no file"), ([], "--output names no file")):
            done = run("export", PLAYER, *arguments)
            self.assertEqual((done.status, done.text), (2, ""), arguments)
            self.assertIn("--format: it is required", done.message)
            self.assertIn(text, done.message)
        self.assertEqual(os.listdir(self.folder), [])

    def test_standard_output_has_the_systems_names(self):
        expected = self.export("--format", "csv")
        for name in ("/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"):
            self.assertEqual(self.export("--format", "csv", "-o", name), expected)
            with open(self.path("out"), "wb") as out:
                out.write(b"before\n")
                out.flush()
                self.assertEqual(run("export", PLAYER, "--format", "csv", "-o", name, stdout=out).status, 0)
            self.assertEqual(read(self.path("out")), b"before\n" + expected)

    def test_pipe_with_a_name_is_written_and_not_replaced(self):
        pipe = self.path("songs.csv")
        os.mkfifo(pipe)
        got = []
        reader = threading.Thread(target=lambda: got.append(read(pipe)), daemon=True)
        reader.start()
        self.export("-o", pipe)
        reader.join(20)
        self.assertEqual(got, [self.export("--format", "csv")])
        self.assertEqual(os.listdir(self.folder), ["songs.csv"])

    def test_empty_list_takes_no_others_place(self):
        alone = self.path("alone.itunesdb")  # without the music
        with open(alone, "wb") as file:
            file.write(read(os.path.join(PLAYER, "iPod_Control", "iTunes", "iTunesDB")))
        out = self.path("list.m3u8")
        self.export("--playlist", "1", "-o", out)
        good = read(out)
        self.assertIn(b"#EXTINF:", good)
        for source, playlist, lines in ((alone, "1", 2), (PLAYER, "Empty for Now", 1)):
            done = run("export", source, "--playlist", playlist, "-o", out)
            self.assertEqual((done.status, done.text, done.message.count("\n")), (3, "", lines))
            self.assertIn(f"zemhost: {out}: kept as it was: the new list would be empty\n", done.message)
            self.assertEqual(read(out), good)
        self.assertEqual(sorted(os.listdir(self.folder)), ["alone.itunesdb", "list.m3u8"])

    def test_list_that_lacks_songs_is_not_complete(self):
        alone = self.database([{"title": "A", "path": ":A.mp3"}])
        out = self.path("new.m3u8")
        done = run("export", alone, "-o", out)
        self.assertEqual((done.status, read(out)), (3, b"#EXTM3U\n"))
        self.assertIn(": 1 song left out: ", done.message)
        self.assertEqual(self.export("--playlist", "Empty for Now", "--format", "m3u8"), b"#EXTM3U\n#PLAYLIST:Empty for Now\n")

    def test_empty_name_of_a_playlist_is_refused_everywhere(self):
        for arguments in (["export", PLAYER, "--format", "csv", "--playlist", ""], ["playlist", PLAYER, ""],
                          ["export", PLAYER, "--format", "m3u8", "--playlist", ""],
                          ["rescue", PLAYER, self.path("music"), "--playlist", ""],
                          ["rescue", PLAYER, self.path("music"), "--playlist", "1", "--playlist", ""]):
            done = run(*arguments)
            self.assertEqual((done.status, done.text), (2, ""), arguments)
        self.assertEqual(os.listdir(self.folder), [])

    def test_tables_have_the_columns_that_a_person_reads(self):
        usual = self.export("--format", "csv").decode().split("\r\n")[0].split(",")
        self.assertEqual(usual[:3], ["title", "artist", "album"])
        self.assertFalse({"title_encode", "prop_0", "other_texts", "path", "track_id"} & set(usual))
        self.assertEqual(self.export("--format", "tsv").decode().split("\n")[0].split("\t"), usual)
        whole = list(json.loads(self.export("--format", "ndjson").split(b"\n")[0]))
        self.assertGreater(len(whole), 3 * len(usual))
        for form in (["csv"], ["csv", "--excel"], ["tsv"]):
            heading = self.export("--format", *form, "--fields", "all").decode("utf-8-sig").splitlines()[0]
            self.assertEqual(re.split("[,\t]", heading), whole)
        for form in ("json", "ndjson"):
            self.assertEqual(self.export("--format", form, "--fields", "all"), self.export("--format", form))

    def test_columns_of_listings_are_fields_of_exports(self):
        known = lambda *arguments: run(*arguments).message.partition("there are: ")[2].strip().split(", ")
        columns = known("songs", PLAYER, "--columns", "none")
        self.assertGreater(len(columns), 20)
        self.assertLessEqual(set(columns), set(known("export", PLAYER, "--format", "csv", "--fields", "none")))
        self.assertEqual(run("songs", PLAYER, "--columns", "all").out,
                         run("songs", PLAYER, "--columns", ",".join(columns)).out)

    def test_spreadsheets_take_no_text_for_a_formula(self):
        titles = FORMULAS + ["Plain", "1-1", 'a "b", c', "two\nlines", "雨 é", "'quoted"]
        source = self.database([{"title": title} for title in titles])
        shown = self.export("--format", "csv", "--excel", "--fields", "title,volume_percent", source=source)
        self.assertTrue(shown.startswith(b"\xef\xbb\xbftitle,"))
        self.assertEqual(shown.count(b"\r\n"), len(titles) + 1)
        rows = list(csv.reader(io.StringIO(shown.decode("utf-8-sig"), newline=""), strict=True))
        self.assertEqual([row[0] for row in rows[1:]], ["'" + title for title in FORMULAS] + titles[len(FORMULAS):])
        plain = self.export("--format", "csv", "--fields", "title", source=source).decode()
        self.assertEqual([row[0] for row in csv.reader(io.StringIO(plain, newline=""))][1:], titles)

    def test_spreadsheets_get_numbers_as_they_are(self):
        with open(os.path.join(PLAYER, "iPod_Control", "iTunes", "iTunesDB"), "rb") as sample:
            bytes_ = bytearray(sample.read())
        first = bytes_.index(b"mhit")
        bytes_[first + 0x40:first + 0x44] = (-255).to_bytes(4, "little", signed=True)
        with open(self.path("quiet.itunesdb"), "wb") as file:
            file.write(bytes_)
        shown = self.export("--format", "csv", "--excel", "--fields", "volume_percent", source=file.name).decode("utf-8-sig")
        self.assertEqual(shown.split("\r\n")[1], "-100")

    def test_tabs_and_line_ends_inside_texts_are_blanks_in_tsv(self):
        titles = ["a\tb", "two\r\nlines", 'say "so"', "\u2028x\u2029y\x85", "=1+1", " blank "]
        source = self.database([{"title": title, "artist": "A"} for title in titles])
        shown = self.export("--format", "tsv", "--fields", "title,artist", source=source).decode()
        rows = list(csv.reader(io.StringIO(shown, newline=""), delimiter="\t", quoting=csv.QUOTE_NONE, strict=True))
        self.assertEqual(rows, [["title", "artist"], ["a b", "A"], ["two  lines", "A"], ['say "so"', "A"],
                                [" x y ", "A"], ["=1+1", "A"], [" blank ", "A"]])
        self.assertEqual(shown.count("\n"), len(titles) + 1)
        self.assertEqual(len(shown.splitlines()), len(titles) + 1)

    def test_encodings_of_tables(self):
        for form in ("csv", "tsv"):
            self.assertEqual(self.export("--format", form, "--encoding", "UTF-16")[2:].decode("utf-16-le"),
                             self.export("--format", form).decode())
        for arguments, text in ((["csv", "--excel", "--encoding", "UTF-16"], "csv with --excel is always UTF-8"),
                                (["json", "--excel"], "only csv has a form for spreadsheets"),
                                (["tsv", "--excel"], "only csv has a form for spreadsheets")):
            done = run("export", PLAYER, "--format", *arguments)
            self.assertEqual((done.status, done.text), (2, ""))
            self.assertIn(text, done.message)


if __name__ == "__main__":
    unittest.main()
