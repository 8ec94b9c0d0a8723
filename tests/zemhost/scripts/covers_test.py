"""Covers where the disk is full, and where nobody reads what is printed."""

import os
import signal
import tempfile
import unittest

from program import PLAYER, run, start

BROKEN_CALLS = os.environ["BROKEN_CALLS_LIBRARY"]
CONTINUE = "run the same command again to continue"


class Covers(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.destination = os.path.join(folder.name, "covers")

    def covers(self, **options):
        return run("covers", PLAYER, self.destination, **options)

    def expect_whole(self):
        """Whatever happened before, the same command goes on to the end."""
        ended = self.covers()
        self.assertEqual((ended.status, ended.message), (0, ""))
        names = os.listdir(self.destination)
        self.assertEqual(len(names), 8)
        for name in names:
            with open(os.path.join(self.destination, name), "rb") as file:
                content = file.read()
            self.assertTrue(content.startswith(b"\x89PNG") and content.endswith(b"IEND\xaeB`\x82"), name)

    def test_full_disk_is_named_and_nothing_stays(self):
        for command, options in (("covers", []), ("rescue", ["--covers"])):
            environment = {**os.environ, "LD_PRELOAD": BROKEN_CALLS, "BROKEN_CALLS": " close "}
            stopped = run(command, PLAYER, self.destination, *options, env=environment)
            self.assertEqual(stopped.status, 1, stopped.message)
            self.assertIn("No space left on device", stopped.message)
            self.assertIn(CONTINUE, stopped.message)
            self.assertEqual([name for name in os.listdir(self.destination) if name.endswith((".png", ".part"))], [])
        for name in os.listdir(self.destination):
            os.unlink(os.path.join(self.destination, name))
        self.expect_whole()

    def test_full_standard_output_is_named(self):
        with open("/dev/full", "wb") as full:
            ended = self.covers(stdout=full)
        self.assertEqual(ended.status, 1)
        self.assertIn("standard output: No space left on device", ended.message)
        self.expect_whole()

    def test_closed_output_leaves_no_part_of_a_picture(self):
        read, write = os.pipe()
        os.close(read)
        with start("covers", PLAYER, self.destination, stdout=write) as process:
            os.close(write)
            _, err = process.communicate(timeout=200)
        self.assertEqual((process.returncode, err), (-signal.SIGPIPE, b""))
        self.assertEqual([name for name in os.listdir(self.destination) if not name.endswith(".png")], [])
        self.expect_whole()


if __name__ == "__main__":
    unittest.main()
