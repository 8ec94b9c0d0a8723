#!/usr/bin/python3
"""Pages that the program writes, in a browser: their rows are what its export says, for the sample player, for real libraries
where there are some, and for 100,000 songs."""

import json
import os
import pathlib
import subprocess
import tempfile
import unittest

import pages
from browser import Browser

ZEMHOST = os.environ["ZEMHOST"]
PLAYER = pathlib.Path(os.environ["SAMPLES"]) / "player"
REAL = pathlib.Path(os.environ["SHARED"]) / "data" / "real"


def clock(milliseconds):
    """The length of a song as the page writes it, nothing for none."""
    seconds = milliseconds // 1000
    hours, minutes = seconds // 3600, seconds // 60 % 60
    if milliseconds == 0:
        return ""
    return f"{hours}:{minutes:02}:{seconds % 60:02}" if hours else f"{minutes}:{seconds % 60:02}"


def size(count):
    if count < 1000:
        return f"{count} B" if count else ""
    return f"{count / 1000:.1f} kB" if count < 999950 else f"{count / 1e6:.1f} MB"


def stars(rating):
    full = round((rating or 0) / 20)
    return "★" * full + "☆" * (5 - full) if rating else ""


def row_of(song):
    """What the table is to show of a song of the export, by column."""
    def text(name):
        return song.get(name) or ""

    def count(name):
        return "" if song.get(name) is None else f"{song[name]:,}"
    return {
        "title": text("title") or "Untitled", "artist": text("artist"), "album": text("album"), "genre": text("genre"),
        "composer": text("composer"), "album_artist": text("album_artist"), "comment": text("comment"),
        "kind": text("file_type"), "duration": clock(song["duration_ms"]), "year": str(song["year"] or ""),
        "rating": stars(song.get("rating")), "plays": count("play_count"), "skips": count("skip_count"),
        "last_played": text("last_played")[:10], "added": text("date_added")[:10],
        "track": f"{song['track']:,}" if song["track"] else "",
        "bit_rate": f"{song['bit_rate_kbps']:,}" if song["bit_rate_kbps"] else "", "size": size(song["size_bytes"])}


class Written(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()
        cls.addClassCleanup(cls.browser.close)

    def report(self, library, *options):
        """Writes the page of a library and opens it; what the export says of the library."""
        target = self.browser.folder / f"{self.id()}.html"
        subprocess.run([ZEMHOST, "report", library, "-o", target, *options], check=True, stderr=subprocess.DEVNULL)
        done = subprocess.run([ZEMHOST, "export", library, "--format", "json"], check=True, capture_output=True)
        self.address = target.as_uri()
        self.browser.open(self.address)
        return json.loads(done.stdout)

    def shown(self, steps=10 ** 6):
        """Rows of the table by their place: those seen at so many stops from its beginning to its end."""
        return self.browser.run("""
            const scroller = document.querySelector('.scroller');
            const rows = {};
            const heads = [...document.querySelectorAll('.songs th')].map((e) => e.classList[0]);
            const travel = scroller.scrollHeight - scroller.clientHeight;
            const steps = Math.min(arguments[0], Math.ceil(travel / (scroller.clientHeight / 2)) + 1);
            for (let step = 0; step <= steps; step++) {
              scroller.scrollTop = travel * step / steps;
              scroller.dispatchEvent(new Event('scroll'));
              for (const row of document.querySelectorAll('.songs tbody tr')) {
                rows[row.getAttribute('aria-rowindex') - 2] = Object.fromEntries(
                  [...row.children].map((cell, at) => [heads[at], cell.textContent]));
              }
            }
            return rows""", steps)

    def check_lists(self, export, steps=10 ** 6):
        """The lists of the page hold what the lists of the export hold, in their order."""
        rows_seen = 0
        for at, playlist in enumerate(export["playlists"]):
            with self.subTest(playlist["name"]):
                self.browser.go(f"playlists?list={at}")
                entries = [entry["song_index"] for entry in playlist["entries"]]
                if playlist["kind"] == "folder" and not entries:
                    continue
                self.assertEqual(self.browser.one("h2").text, playlist["name"] or "No name")
                count = int(self.browser.one("table.songs").get_attribute("aria-rowcount")) - 1
                self.assertEqual(count, len(entries))
                shown = self.shown(steps)
                rows_seen += len(shown)
                for place, row in shown.items():
                    song = entries[int(place)]
                    if song is None:
                        continue
                    wanted = {name: text for name, text in row_of(export["songs"][song]).items() if name in row}
                    self.assertEqual({name: row[name] for name in wanted}, wanted)
        said, asked = self.browser.logs()
        self.assertEqual(said, [])
        self.assertEqual([address for address in asked if not address.startswith(("file:", "data:"))], [])
        return rows_seen

    def test_sample_player_is_as_the_export_says(self):
        export = self.report(PLAYER)
        self.assertEqual(self.browser.driver.title, "Sample Player")
        self.assertEqual(self.browser.texts("#summary span")[1:], ["29 songs", "9 playlists", "3:43:33", "135.0 kB"])
        self.assertEqual(self.check_lists(export), 58)
        self.browser.open(self.address, "#albums")
        pictures = self.browser.run("return [...document.images].map((i) => [i.complete, i.naturalWidth])")
        self.assertGreaterEqual(len(pictures), 5)
        self.assertEqual([one for one in pictures if not one[0] or one[1] < 32], [])
        self.browser.open(self.address, "#playlists?list=7")
        self.assertIn("Rating is at least 4 stars", self.browser.one(".rules").text)
        self.browser.open(self.address, "#player")
        self.assertIn("Lost Reel by Idris Calloway", self.browser.one("main").text)

    def test_picture_of_the_sample_player_is_small(self):
        self.report(PLAYER)
        self.browser.look(width=920, height=520)
        self.browser.open(self.address, "#albums?sort=plays")
        path = pages.PICTURES / "report.png"
        self.browser.picture(path)
        self.browser.look()
        self.assertLess(path.stat().st_size, 150_000)

    @unittest.skipUnless(REAL.is_dir(), "no real libraries here")
    def test_real_libraries_are_as_the_export_says(self):
        seen = 0
        for library in sorted(REAL.glob("*.itunesdb")):
            with self.subTest(library.name):
                seen += self.check_lists(self.report(library))
        self.assertGreater(seen, 1000)

    def test_hundred_thousand_songs_are_as_the_export_says(self):
        with tempfile.TemporaryDirectory() as folder:
            library = pathlib.Path(folder) / "large.library"
            subprocess.run([os.environ["WRITE_GENERATED"], library, "100000", "3", "100000", "little"], check=True)
            export = self.report(library)
        self.assertIn("100,000 songs", self.browser.one("#summary").text)
        self.browser.one("th.size button").click()
        sizes = [row["size"] for row in self.shown(20).values()]
        largest = sorted((song["size_bytes"] for song in export["songs"]), reverse=True)
        self.assertEqual(sizes[0], size(largest[0]))
        self.assertGreater(self.check_lists(export, steps=40), 500)


if __name__ == "__main__":
    pages.main()
