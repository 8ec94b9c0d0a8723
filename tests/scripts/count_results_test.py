#!/usr/bin/env python3
"""tools/count-results: every case counts once, in a program of its own or among others."""

import os
import subprocess
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "count-results")
RAN = "[==========] {} tests from 2 test suites ran. (5 ms total)\n[  PASSED  ] {} tests.\n"
SKIPPED = "[  SKIPPED ] {} tests.\n"


class CountResults(unittest.TestCase):
    def counts(self, *tests):
        """Passed, failed, skipped; each test is its status, what it printed, and perhaps why it was skipped."""
        with tempfile.NamedTemporaryFile("w", suffix=".xml") as file:
            file.write("<testsuite>")
            for status, output, *why in tests:
                skipped = f'<skipped message="{why[0]}"/>' if why else ""
                file.write(f'<testcase name="x" status="{status}">{skipped}<system-out>{output}</system-out></testcase>')
            file.write("</testsuite>")
            file.flush()
            printed = subprocess.run([TOOL, file.name], stdout=subprocess.PIPE, check=True, text=True).stdout
        return tuple(map(int, printed.split()))

    def test_each_test_counts_by_its_status(self):
        self.assertEqual(self.counts(("run", "ok"), ("run", ""), ("fail", "no"), ("notrun", "", "SKIP_RETURN_CODE=77"),
                                     ("disabled", ""), ("notrun", "", "Unable to find executable")), (2, 2, 2))

    def test_cases_of_a_program_count_each(self):
        self.assertEqual(self.counts(("run", RAN.format(7, 7)), ("run", RAN.format(5, 2) + SKIPPED.format(3))), (9, 0, 3))

    def test_cases_that_fail_in_a_program_count_each(self):
        self.assertEqual(self.counts(("fail", RAN.format(7, 5))), (5, 2, 0))

    def test_a_program_that_fails_after_its_cases_has_failed(self):
        self.assertEqual(self.counts(("fail", RAN.format(7, 7) + "a leak")), (7, 1, 0))

    def test_a_program_that_ends_in_the_middle_has_failed(self):
        self.assertEqual(self.counts(("fail", "[ RUN      ] A.B\n")), (0, 1, 0))


if __name__ == "__main__":
    unittest.main()
