#!/usr/bin/env python3
"""The figures of `stats`, counted again from the export of the same library, and its tables on terminals."""

import os
import re
import subprocess
import tempfile
import unicodedata
import unittest

from database_writer import library
from program import DESKTOP, PLAYER, Terminal, generated, real_files, run, start
from report_page import NAMES, as_json, export, figures, folded, groups, nano, report

IN_ORDER = ("year", "decade", "rating", "month")
FIELDS = {"songs": "songs", "time": "duration_ms", "size": "size_bytes", "plays": "plays"}


def width(text):
    """The cells that a text takes on a terminal."""
    return sum(0 if unicodedata.combining(c) or 0x1160 <= ord(c) <= 0x11FF else
               2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text)


class Stats(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def libraries(self):
        many = generated(os.path.join(self.folder, "generated"), 500)
        for path in (PLAYER, nano(), DESKTOP, many, *real_files()):
            with self.subTest(library=path):
                yield path

    def written(self, songs):
        path = os.path.join(self.folder, "library")
        with open(path, "wb") as file:
            file.write(library(songs))
        return path

    def on_terminal(self, *arguments, columns=80, **environment):
        with Terminal(columns) as terminal:
            with start("stats", *arguments, stdout=terminal.theirs, stderr=subprocess.DEVNULL,
                       env={"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", **environment}) as process:
                terminal.started()
                shown = terminal.read_all()
            self.assertEqual(process.returncode, 0)
        return shown.replace("\r\n", "\n").splitlines()

    def test_figures_are_those_counted_from_an_export(self):
        for path in self.libraries():
            stats, songs = as_json("stats", path, "--json"), export(path)["songs"]
            self.assertEqual(stats["all"], figures(songs))
            for by, name in NAMES.items():
                counted = {name: figures(members) for name, members in groups(songs, name).items()}
                shown = {group.pop("name"): group for group in stats["groups"][by]}
                self.assertEqual(shown, counted, by)

    def test_albums_are_those_of_the_page(self):
        for path in self.libraries():
            stats, songs, page = as_json("stats", path, "--json", "--by", "album"), export(path)["songs"], report(path).library
            members = {}
            for song, album in zip(songs, page["songs"]["album_of"] or [None] * len(songs)):
                members.setdefault(album, []).append(song)
            counted = []
            for album, songs_of in members.items():
                named = {"name": None, "artist": None} if album is None else {
                    "name": page["albums"][album]["name"], "artist": page["albums"][album]["artist"] or None}
                counted.append({**named, **figures(songs_of)})
            order = str
            self.assertEqual(sorted(stats["groups"]["album"], key=order), sorted(counted, key=order))
            # And those of one name together have the songs of that name.
            sums = {}
            for group in stats["groups"]["album"]:
                sums[folded(group["name"])] = sums.get(folded(group["name"]), 0) + group["songs"]
            by_name = groups(songs, lambda song: folded(song["album"]))
            self.assertEqual(sums, {name or "": len(of_name) for name, of_name in by_name.items()})

    def test_groups_come_from_the_highest_down_or_in_their_own_order(self):
        for path in self.libraries():
            for measure, field in FIELDS.items():
                for by, shown in as_json("stats", path, "--json", "--measure", measure)["groups"].items():
                    known = [group for group in shown if group["name"] is not None]
                    self.assertEqual(shown[:len(known)], known, "what is not known is last")
                    if by in IN_ORDER:
                        order = [int(re.sub(r"\D", "", group["name"])) for group in known]
                        self.assertEqual(order, sorted(order), by)
                    else:
                        values = [group[field] or 0 for group in known]
                        self.assertEqual(values, sorted(values, reverse=True), by)

    def test_top_keeps_the_highest(self):
        for by in ("artist", "album", "year", "month"):
            for measure, field in FIELDS.items():
                options = ["--json", "--by", by, "--measure", measure]
                everything = [group for group in as_json("stats", PLAYER, *options)["groups"][by] if group["name"]]
                top = [group for group in as_json("stats", PLAYER, *options, "--top", 3)["groups"][by] if group["name"]]
                self.assertEqual(len(top), 3)
                highest = sorted((group[field] or 0 for group in everything), reverse=True)[:3]
                self.assertEqual(sorted((group[field] or 0 for group in top), reverse=True), highest)
                self.assertEqual(top, [group for group in everything if group in top])

    def test_what_is_not_known_is_said_and_never_0(self):
        path = self.written([{"title": "a", "artist": "Known", "length": 61000}, {"title": "b", "artist": "Silent"},
                             {"title": "c", "length": 1000}])
        stats = as_json("stats", path, "--json")
        artists = {group["name"]: group["duration_ms"] for group in stats["groups"]["artist"]}
        self.assertEqual(artists, {"Known": 61000, "Silent": None, None: 1000})
        self.assertEqual((stats["all"]["size_bytes"], stats["all"]["songs_without"]["size_bytes"]), (None, 3))
        self.assertEqual([group["name"] for group in stats["groups"]["year"]], [None])
        lines = run("stats", path, "--by", "artist", "--measure", "time").text.splitlines()
        self.assertEqual([line.split("  ")[0] for line in lines[:4]], ["Artist", "Known", "Silent", "(not known)"])
        self.assertRegex(lines[2], "Silent +not known$")
        self.assertEqual(lines[5:], ["The database does not say how long 1 song is."])
        overview = run("stats", path).text
        self.assertRegex(overview, r"(?m)^Time +1:02, and not known of 1 song$")
        self.assertRegex(overview, r"(?m)^Size +not known$")
        self.assertNotRegex(overview, r"(?m)\b0 B$")

    def test_empty_library_has_no_tables(self):
        shown = run("stats", self.written([]))
        self.assertEqual((shown.status, shown.message), (0, ""))
        self.assertEqual(shown.text.splitlines()[0], "Songs    0")
        self.assertNotIn("█", shown.text)

    def test_bars_are_in_eighths_of_a_cell(self):
        lines = run("stats", PLAYER, "--by", "rating").text.splitlines()[1:]
        counts = [int(re.search(r" (\d+)  ", line)[1]) for line in lines]
        for line, count in zip(lines, counts):
            bar = line.rpartition("  ")[2]
            eighths = 8 * bar.count("█") + sum(" ▏▎▍▌▋▊▉".index(c) for c in bar if c != "█")
            self.assertEqual(eighths, round(count / max(counts) * 40 * 8), line)

    def test_tables_fit_the_terminal_with_wide_characters_aligned(self):
        for columns in (20, 40, 80, 132):
            for by in (*NAMES, "album"):
                lines = self.on_terminal(PLAYER, "--by", by, "--top", "100", columns=columns)
                self.assertLessEqual(max(map(width, lines)), columns, (by, lines))
                self.assertTrue(any("█" in line for line in lines))
                self.assertNotIn("\x1b", lines[1])
                starts = {width(line[:re.search("[█▏▎▍▌▋▊▉]", line).start()]) for line in lines if re.search("[█▏▎▍▌▋▊▉]", line)}
                self.assertEqual(len(starts), 1, f"bars begin in one column: {by}, {columns}: {lines}")

    def test_wider_terminal_has_longer_bars(self):
        longest = [max(line.count("█") for line in self.on_terminal(PLAYER, "--by", "kind", columns=columns))
                   for columns in (50, 60, 80)]
        self.assertEqual(longest[1] - longest[0], 10)
        self.assertEqual(longest[2] - longest[1], 20)

    def test_terminal_without_unicode_shows_ascii_bars(self):
        for environment in ({"LC_ALL": "C"}, {"LC_ALL": "", "LC_CTYPE": "", "LANG": "POSIX"}, {"LC_ALL": "no_SUCH.UTF-8"}):
            shown = self.on_terminal(PLAYER, "--by", "kind", **environment)
            self.assertTrue(any("##" in line for line in shown) and "█" not in "".join(shown), environment)
        self.assertIn("█", "".join(self.on_terminal(PLAYER, "--by", "kind", LC_ALL="", LC_CTYPE="C.UTF-8")))
        self.assertIn("##", run("stats", PLAYER, "--by", "kind", "--encoding", "ISO-8859-1").out.decode("latin-1"))
        # A pipe takes what every text is written in.
        self.assertIn("█", run("stats", PLAYER, "--by", "kind", env={**os.environ, "LC_ALL": "C"}).text)

    def test_wrong_options_are_refused(self):
        for options in (["--by", "colour"], ["--measure", "weight"], ["--top", "0"], ["--json", "--encoding", "Shift_JIS"]):
            self.assertEqual(run("stats", PLAYER, *options).status, 2, options)


if __name__ == "__main__":
    unittest.main()
