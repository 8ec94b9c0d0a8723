"""Tests of tools/make_shift_jis_tables.py, run as a person runs it."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
SCRIPT = ROOT / "tools" / "make_shift_jis_tables.py"
COMMITTED = ROOT / "unicode" / "ShiftJISTables.h"
MAPPING = ROOT.parent / "shared" / "data" / "shift_jis_mapping.tsv"

SMALL = "# comment\n0x41\tU+0041\n0x815F\tU+005C\n0x82A0\tU+3042\n0x82A4\tU+3046\n0x818F\tU+FFE5\n"


def run(*arguments):
    return subprocess.run([sys.executable, SCRIPT, *arguments], capture_output=True, text=True, check=False)


class MakeTables(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.mapping = Path(folder.name) / "mapping.tsv"
        self.output = Path(folder.name) / "tables.cpp"

    def make(self, text, *options):
        self.mapping.write_text(text, encoding="utf-8")
        return run(self.mapping, "-o", self.output, *options)

    def assert_refused(self, result, *words):
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "")
        self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)
        for word in words:
            self.assertIn(str(word), result.stderr)

    def test_mapping_must_be_named(self):
        result = run("-o", self.output)
        self.assertEqual(result.returncode, 2)
        self.assertIn("mapping", result.stderr)

    @unittest.skipUnless(MAPPING.exists(), "the published mapping is not there")
    def test_committed_file_is_what_the_script_writes(self):
        result = run(MAPPING, "--check")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual(run(MAPPING, "-o", self.output).returncode, 0)
        self.assertEqual(self.output.read_bytes(), COMMITTED.read_bytes())

    def test_table_runs_from_first_to_last_mapped_low_byte(self):
        self.assertEqual(self.make(SMALL).returncode, 0)
        text = self.output.read_text(encoding="utf-8")
        self.assertIn("changetoShiftJIS30[5] = {\n    0x82A0, 0x0000, 0x0000, 0x0000, 0x82A4,\n};", text)
        self.assertIn("    {changetoShiftJIS30, 0x42, 5},\n", text)
        self.assertIn("changetoShiftJIS00[1] = {\n    0x815F,\n};", text)
        self.assertNotIn("changetoShiftJISFF", text)
        self.assertEqual(text.count("    {nullptr, 0x00, 0},\n"), 255)

    def test_check_tells_an_old_file_and_leaves_it_alone(self):
        self.assertEqual(self.make(SMALL).returncode, 0)
        self.assertEqual(self.make(SMALL, "--check").returncode, 0)
        before = self.output.read_bytes()
        self.assert_refused(self.make(SMALL.replace("82A4", "82A6"), "--check"), self.output, "write it again")
        self.assertEqual(self.output.read_bytes(), before)

    def test_check_tells_a_missing_file(self):
        self.assert_refused(self.make(SMALL, "--check"), self.output)
        self.assertFalse(self.output.exists())

    def test_line_that_is_no_mapping_is_named(self):
        for line in ("0x82A0 U+3042", "0x82A\tU+3042", "82A0\t3042", "0x82A0\tU+30420", "x" * 10000):
            self.assert_refused(self.make(SMALL + line + "\n"), f"{self.mapping}:7:")
            self.assertFalse(self.output.exists())

    def test_code_or_code_point_given_twice_is_named(self):
        self.assert_refused(self.make(SMALL + "0x82A0\tU+3044\n"), f"{self.mapping}:7:", "earlier line")
        self.assert_refused(self.make(SMALL + "0x82A2\tU+3042\n"), f"{self.mapping}:7:", "earlier line")

    def test_mapping_that_cannot_be_read_is_named(self):
        self.assert_refused(run(self.mapping, "-o", self.output), self.mapping, "No such file")
        self.assert_refused(self.make("# nothing\n"), self.mapping, "no mapping")
        self.mapping.write_bytes(b"\xff\xfe")
        self.assert_refused(run(self.mapping, "-o", self.output), self.mapping, "UTF-8")

    def test_output_that_cannot_be_written_is_named(self):
        self.mapping.write_text(SMALL, encoding="utf-8")
        output = self.output / "missing" / "tables.cpp"
        self.assert_refused(run(self.mapping, "-o", output), output)


if __name__ == "__main__":
    unittest.main()
