#!/usr/bin/env python3
"""What the reader knows of newest nanos is, field by field, what a plain model reads: on sound, real and damaged
ones."""

import glob
import os
import random
import shutil
import sqlite3
import tempfile
import unittest

from nano_model import Nano
from printer import printed, scaled

SAMPLE = os.path.join(os.environ["SAMPLES"], "nano")
REAL = os.path.join(os.environ["SHARED"], "data", "players", "nano-7")
FOLDER = os.path.join("iPod_Control", "iTunes", "iTunes Library.itlp")
VARIANTS = scaled(100)


def expected(path):
    try:
        nano = Nano(path)
    except ValueError:
        return None
    return {"version": nano.version, "has_counts": nano.has_counts, "categories": nano.categories, "songs": nano.songs,
            "lists": nano.lists}


class Damage:
    """Makes a nano a worse one, in some ways that players and disks have, and some that nobody has."""

    VALUES = [None, 0, 1, -1, 2, 255, 70000, 2**31, 2**32, 2**63 - 1, 0.5, 1e300, "", "text", b"bytes", b"\xff\x00",
              -3061152000, -662774399, 1233815295, 1233815296]

    def __init__(self, seed, folder):
        self.random = random.Random(seed)
        self.folder = folder
        self.files = sorted(glob.glob(os.path.join(glob.escape(folder), "*.itdb")))

    def make(self):
        """The names of what was done."""
        steps = [self.values, self.column, self.table, self.rows, self.missing_file, self.truncate, self.bytes, self.page,
                 self.text]
        done = []
        for step in self.random.choices(steps, weights=[4, 3, 1, 2, 1, 1, 2, 2, 2], k=self.random.randrange(1, 5)):
            try:
                done.append(step(self.random.choice(self.files)))
            except (sqlite3.Error, OSError, IndexError, ValueError):
                pass  # already too much damaged for it
        return done

    def sql(self, path, statement, *values):
        handle = sqlite3.connect(path)
        try:
            handle.execute(statement, values)
            handle.commit()
        finally:
            handle.close()

    def names(self, path):
        handle = sqlite3.connect(path)
        try:
            table = self.random.choice([row[0] for row in handle.execute("SELECT name FROM sqlite_schema WHERE type = "
                                                                          "'table' ORDER BY name")])
            columns = [row[1] for row in handle.execute(f'PRAGMA table_info("{table}")')]
            return table, self.random.choice(columns)
        finally:
            handle.close()

    def values(self, path):
        table, column = self.names(path)
        value = self.random.choice(self.VALUES)
        self.sql(path, f'UPDATE OR IGNORE "{table}" SET "{column}" = ? WHERE abs(random()) % 3 = 0', value)
        return f"{table}.{column} = {value!r}"

    def text(self, path):
        table, column = self.names(path)
        value = bytes(self.random.choice(b"aZ\xc3\xa4\xe2\x82\xac\xf0\xff\x80/:") for _ in range(9)).hex()
        self.sql(path, f"UPDATE OR IGNORE \"{table}\" SET \"{column}\" = CAST(x'{value}' AS TEXT) WHERE rowid % 4 = 1")
        return f"{table}.{column} = {value}"

    def column(self, path):
        table, column = self.names(path)
        self.sql(path, f'ALTER TABLE "{table}" DROP COLUMN "{column}"')
        return f"without {table}.{column}"

    def table(self, path):
        table, _ = self.names(path)
        self.sql(path, f'DROP TABLE "{table}"')
        return f"without {table}"

    def rows(self, path):
        table, _ = self.names(path)
        self.sql(path, f'DELETE FROM "{table}" WHERE rowid % 5 = {self.random.randrange(5)}')
        return f"less of {table}"

    def missing_file(self, path):
        os.remove(path)
        return f"no {os.path.basename(path)}"

    def truncate(self, path):
        os.truncate(path, self.random.randrange(os.path.getsize(path)))
        return f"short {os.path.basename(path)}"

    def bytes(self, path):
        with open(path, "r+b") as file:
            for _ in range(self.random.randrange(1, 30)):
                file.seek(self.random.randrange(os.path.getsize(path)))
                file.write(self.random.randbytes(self.random.randrange(1, 4)))
        return f"other bytes in {os.path.basename(path)}"

    def page(self, path):
        with open(path, "r+b") as file:
            file.seek(4096 * self.random.randrange(os.path.getsize(path) // 4096))
            file.write(self.random.choice([bytes(4096), self.random.randbytes(4096)]))
        return f"another page in {os.path.basename(path)}"


class NanoModel(unittest.TestCase):
    maxDiff = 3000

    def compare(self, path):
        """The result, which is the same of both."""
        got, want = printed("nano", [path])[0], expected(path)
        self.assertEqual(got is None, want is None)
        if got is None:
            return None
        for song in got["songs"] + want["songs"]:
            song["texts"].sort()
        self.assertEqual(len(got["songs"]), len(want["songs"]))
        for one, other in zip(got["songs"], want["songs"]):
            self.assertEqual(one, other)
        for one, other in zip(got["lists"], want["lists"]):
            self.assertEqual(one, other)
        self.assertEqual(got, want)
        return got

    def test_sample(self):
        got = self.compare(os.path.join(SAMPLE, FOLDER, "Library.itdb"))
        self.assertEqual((len(got["songs"]), len(got["lists"]), got["has_counts"]), (29, 9, True))
        self.assertEqual([got["songs"][0][name] for name in ("plays", "rating", "title", "path")],
                         [33, 80, "Harbour Lights at Five", ":iPod_Control:Music:F00:QHLA.m4a"])

    @unittest.skipUnless(os.path.isdir(REAL), "no real files")
    def test_real(self):
        got = self.compare(os.path.join(REAL, "Library.itdb"))
        self.assertEqual((len(got["songs"]), len(got["lists"]), got["has_counts"]), (1377, 2, True))

    @unittest.skipUnless(os.path.isdir(REAL), "no real files")
    def test_real_locations(self):
        """The table of files is another player's: the songs get its IDs first."""
        with tempfile.TemporaryDirectory() as folder:
            shutil.copy(os.path.join(REAL, "Library.itdb"), folder)
            locations = os.path.join(folder, "Locations.itdb")
            shutil.copy(os.path.join(REAL, "Locations-of-another-player.itdb"), locations)
            for path in (os.path.join(folder, "Library.itdb"), locations):
                os.chmod(path, 0o644)
            handle = sqlite3.connect(os.path.join(folder, "Library.itdb"))
            pids = [row[0] for row in handle.execute("SELECT pid FROM item ORDER BY physical_order")]
            handle.close()
            handle = sqlite3.connect(locations)
            rows = [row[0] for row in handle.execute("SELECT item_pid FROM location ORDER BY location")]
            handle.executemany("UPDATE location SET item_pid = ? WHERE item_pid = ?", zip(pids, rows))
            handle.commit()
            handle.close()
            got = self.compare(os.path.join(folder, "Library.itdb"))
            self.assertEqual(sum(bool(song["path"] and song["size"] and song["added"]) for song in got["songs"]), 1377)

    def test_damaged_variants(self):
        """The same on what is worse than any: and enough of them are still shown in part."""
        shown = refused = 0
        for seed in range(VARIANTS):
            with tempfile.TemporaryDirectory() as folder:
                nano = os.path.join(folder, "iTunes Library.itlp")
                if seed % 4 == 3 and os.path.isdir(REAL):
                    os.mkdir(nano)
                    shutil.copyfile(os.path.join(REAL, "Library.itdb"), os.path.join(nano, "Library.itdb"))
                    shutil.copyfile(os.path.join(REAL, "Play Counts"), os.path.join(folder, "Play Counts"))
                else:
                    shutil.copytree(os.path.join(SAMPLE, FOLDER), nano)
                    shutil.copy(os.path.join(SAMPLE, FOLDER, "..", "Play Counts"), folder)
                done = Damage(seed, nano).make()
                library = os.path.join(nano, "Library.itdb")
                if not os.path.exists(library):
                    refused += 1
                    continue
                with self.subTest(seed=seed, done=done):
                    if self.compare(library) is None:
                        refused += 1
                    else:
                        shown += 1
        self.assertGreater(shown, VARIANTS // 2)
        self.assertGreater(refused, VARIANTS // 50)


if __name__ == "__main__":
    unittest.main()
