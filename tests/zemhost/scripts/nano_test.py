#!/usr/bin/env python3
"""The exports of a newest nano, read back: as the schema says, and the same in every format."""

import contextlib
import json
import os
import sqlite3
import tempfile
import unittest

import jsonschema

from program import PLAYER, SAMPLES, SHARED, SOURCE, run

NANO = os.path.join(SAMPLES, "nano")
REAL = os.path.join(SHARED, "data", "players", "nano-7", "Library.itdb")

with open(os.path.join(SOURCE, "docs", "export-schema.json"), encoding="utf-8") as schema_file:
    SCHEMA = json.load(schema_file)


def export(path):
    outcome = run("export", path, "--format", "json")
    assert outcome.status == 0, outcome.message
    return json.loads(outcome.text)


class NanoExports(unittest.TestCase):
    def test_json_is_as_the_schema_says(self):
        validator = jsonschema.Draft202012Validator(SCHEMA)
        for path in (NANO, REAL):
            if path == NANO or os.path.exists(path):
                self.assertEqual([error.message for error in validator.iter_errors(export(path))], [])

    def test_json_says_of_it_what_it_says_of_the_player_with_the_same_songs(self):
        ours, theirs = export(NANO), export(PLAYER)
        same = ("title", "artist", "album", "genre", "composer", "track", "disc", "year", "rating", "duration_ms",
                "chapters", "persistent_id", "media_kind", "enclosure_url")
        # What is unknown to the one is 0 where the class answers.
        self.assertEqual([{name: song[name] or None for name in same} for song in ours["songs"]],
                         [{name: song[name] or None for name in same} for song in theirs["songs"]])

    def test_sqlite_holds_what_json_does(self):
        whole = export(NANO)
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "songs.sqlite")
            self.assertEqual(run("export", NANO, "--format", "sqlite", "-o", path).status, 0)
            with contextlib.closing(sqlite3.connect(path)) as file:
                file.row_factory = sqlite3.Row
                rows = [dict(row) for row in file.execute("SELECT * FROM songs ORDER BY song_index")]
                entries = file.execute("SELECT count(*) FROM entries").fetchone()[0]
        self.assertEqual(len(rows), len(whole["songs"]))
        for row, song in zip(rows, whole["songs"]):
            for name, value in row.items():
                if isinstance(song[name], (list, dict)):
                    value = json.loads(value)
                self.assertEqual(value, song[name], name)
        self.assertEqual(entries, sum(len(playlist["entries"]) for playlist in whole["playlists"]))


if __name__ == "__main__":
    unittest.main()
