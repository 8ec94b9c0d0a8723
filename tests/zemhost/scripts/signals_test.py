"""Signals and memory: how the program ends when it is asked to, and what it leaves behind."""

import os
import resource
import signal
import subprocess
import tempfile
import unittest
import zlib

from database_writer import compressed
from program import PLAYER, ZEMHOST, run, start, wait_until


def database_of(player):
    with open(os.path.join(player, "iPod_Control", "iTunes", "iTunesDB"), "rb") as file:
        return file.read()


class TestInAFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.temporary = os.path.join(self.folder, "tmp")
        os.mkdir(self.temporary)
        self.environment = dict(os.environ, TMPDIR=self.temporary)

    def write(self, name, content):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(content)
        return path


class Signals(TestInAFolder):
    def slow_database(self):
        """A compressed database that takes long to inflate."""
        database = database_of(PLAYER)
        header = int.from_bytes(database[4:8], "little")
        stream = zlib.compressobj(1)
        body = stream.compress(database[header:] + os.urandom(8 << 20))
        body += b"".join(stream.compress(bytes(1 << 20)) for _ in range(400)) + stream.flush()
        return self.write("iTunesCDB", database[:header] + body)

    def end_while_inflating(self, number):
        process = start("songs", self.slow_database(), env=self.environment)
        wait_until(lambda: os.listdir(self.temporary))
        process.send_signal(number)
        out, err = process.communicate(timeout=20)
        self.assertEqual(process.returncode, -number)  # what a shell shows as 128 and the number
        self.assertEqual(out, b"")
        self.assertEqual(os.listdir(self.temporary), [])
        return err.decode()

    def test_each_signal_removes_temporary_files_and_says_one_line(self):
        self.assertEqual(self.end_while_inflating(signal.SIGINT), "zemhost: interrupted\n")
        self.assertEqual(self.end_while_inflating(signal.SIGTERM), "zemhost: terminated\n")
        self.assertEqual(self.end_while_inflating(signal.SIGHUP), "zemhost: terminated\n")

    def test_a_shell_sees_143(self):
        script = """"$0" songs "$1" & while [ -z "$(ls "$TMPDIR")" ]; do :; done; kill -TERM $!; wait $!"""
        ended = subprocess.run(["sh", "-c", script, ZEMHOST, self.slow_database()], env=self.environment,
                               capture_output=True)
        self.assertEqual(ended.returncode, 143)
        self.assertTrue(ended.stderr.startswith(b"zemhost: terminated\n"), ended.stderr)

    def test_every_command_ends_quietly_when_its_reader_goes_away(self):
        for arguments in (["songs", PLAYER], ["playlists", PLAYER], ["info", PLAYER],
                          ["call", PLAYER, "GetTitle(0)"], ["class"], ["--help"]):
            read, write = os.pipe()
            os.close(read)
            ended = run(*arguments, stdout=write)
            os.close(write)
            self.assertEqual((ended.status, ended.message), (-signal.SIGPIPE, ""), arguments)

    def test_an_ignored_signal_stays_ignored(self):
        read, write = os.pipe()
        process = start("class", stdout=write, preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        process.send_signal(signal.SIGHUP)
        os.close(write)
        with os.fdopen(read, "rb") as out:
            self.assertTrue(out.read().startswith(b"Class ZemiTunesDB"))
        self.assertEqual(process.wait(), 0)
        process.stderr.close()


class CompressedDatabase(TestInAFolder):
    def test_one_of_another_writer_answers_as_the_plain_one(self):
        plain = database_of(PLAYER)
        expected = run("songs", self.write("plain", plain)).text
        for level in range(10):
            path = self.write("compressed", compressed(plain, level))
            listed = run("songs", path, env=self.environment)
            self.assertEqual((listed.status, listed.text, listed.message), (0, expected, ""))

    def test_memory_does_not_grow_with_what_it_inflates_to(self):
        def peak():
            return resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss

        plain = database_of(PLAYER)
        run("songs", self.write("compressed", compressed(plain)), env=self.environment)
        before = peak()
        bomb = self.write("bomb", plain[:0xf4] + zlib.compress(bytes(90 << 20), 1))
        refused = run("songs", bomb, env=self.environment)
        self.assertEqual(refused.status, 1)
        self.assertIn("times its size", refused.message)
        self.assertLess(peak() - before, 8 << 10)  # kilobytes


if __name__ == "__main__":
    unittest.main()
