#!/usr/bin/env python3
"""Of damaged databases the salvage finds the songs and entries whose bytes are intact, and none that never were; what
it makes of them is a sound database. Where they stand is said by a plain model of the undamaged file."""

import json
import os
import subprocess
import tempfile
import unittest

from printer import scaled
from salvage_model import records
from songs_test import RandomFiles, real_files

SAMPLES = os.environ["SAMPLES"]
DAMAGES = 40  # of each kind, for each file
RANDOM_FILES = scaled(60)


def measure(path, damages, seed):
    """For each kind of damage what was there and what was found, as measure_salvage counts it."""
    with open(path, "rb") as file:
        found = records(file.read())
    with tempfile.NamedTemporaryFile("w") as list_of_records:
        list_of_records.writelines(f"{kind} {data_set} {begin} {end}\n" for kind, data_set, begin, end in found)
        list_of_records.flush()
        program = os.path.join(os.environ["PRINTERS"], "measure_salvage")
        done = subprocess.run([program, path, list_of_records.name, *[str(damages)] * 3, str(seed)],
                              stdout=subprocess.PIPE, check=True)
    return json.loads(done.stdout)


class Salvage(unittest.TestCase):
    def assert_salvaged(self, path, seed):
        intact = 0
        for kind, tally in measure(path, DAMAGES, seed).items():
            with self.subTest(f"{os.path.basename(path)}, {kind}, seed {seed}"):
                self.assertEqual(tally["damages"], DAMAGES)
                for name in ("invented_songs", "invented_entries", "invented_lists", "unsound_files"):
                    self.assertEqual(tally[name], 0, tally["first_fault"])
                self.assertGreaterEqual(tally["found_songs"], 0.99 * tally["intact_songs"], tally["first_fault"])
                self.assertGreaterEqual(tally["found_entries"], 0.99 * tally["intact_entries"], tally["first_fault"])
                intact += tally["intact_songs"]
        return intact

    def test_sample_and_real_files(self):
        paths = [os.path.join(SAMPLES, "player", "iPod_Control", "iTunes", "iTunesDB"),
                 os.path.join(SAMPLES, "big-endian.library"), *real_files()]
        for seed, path in enumerate(paths):
            intact = self.assert_salvaged(path, seed)
            self.assertTrue(intact or "empty" in path, path)

    def test_random_files(self):
        intact = 0
        with tempfile.TemporaryDirectory() as folder:
            for seed in range(RANDOM_FILES):
                files = RandomFiles(seed)
                files.LENGTHS, files.shortest, files.ENCODINGS = [0x9C, 0xE0, 0xF4, 0x184, 0x270], 0x9C, [1]
                data, songs = files.database()
                path = os.path.join(folder, "database")
                with open(path, "wb") as file:
                    file.write(data)
                intact += self.assert_salvaged(path, seed)
        self.assertGreater(intact, RANDOM_FILES * DAMAGES)


if __name__ == "__main__":
    unittest.main()
