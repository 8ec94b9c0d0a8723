"""Rescues that are interrupted: what is there is complete, and the same command goes on to the end."""

import fcntl
import hashlib
import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

from program import Terminal, run, start, wait_until
from rescued_player import REPORTS, Player, files_below

BROKEN_CALLS = os.environ["BROKEN_CALLS_LIBRARY"]
BROKEN_DISK = os.environ["BROKEN_DISK_LIBRARY"]
CONTINUE = "run the same command again to continue"


def partials(folder):
    """The files and folders of what is not complete yet, or that a killed rescue left."""
    return [name for name in os.listdir(folder) if name.startswith(".zemhost-")]


def parts(folder):
    """How many copies wait for their names."""
    return sum(len(os.listdir(os.path.join(folder, name))) for name in partials(folder))


class InterruptedRescue(unittest.TestCase):
    def setUp(self):
        # Each copy is brought to the disk, which takes long for thousands of tiny files; in memory it does not.
        memory = "/dev/shm"
        folder = tempfile.TemporaryDirectory(dir=memory if os.access(memory, os.W_OK) else None)
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.destination = os.path.join(self.folder, "music")

    def copied(self):
        """The songs that are there, after a look at each: no half file under a final name."""
        names = files_below(self.destination) - {*REPORTS, "Some.m3u8", *partials(self.destination)}
        for name in names:
            path = os.path.join(self.destination, name)
            with open(path, "rb") as file:
                content = file.read()
            self.assertEqual((content, int(os.stat(path).st_mtime)), self.player.contents[name], name)
        return len(names)

    def rescue(self):
        return run("rescue", self.player.root, self.destination)

    def expect_complete(self, before):
        ended = self.rescue()
        self.assertEqual((ended.status, ended.message), (0, ""))
        total = len(self.player.contents)
        self.assertEqual(self.copied(), total)
        self.assertEqual(partials(self.destination), [])
        summary = ended.text.splitlines()[total - before:]
        self.assertTrue(summary[0].startswith(f"{total - before} songs copied, "), summary)
        there = [f"{before} songs are already there"] if before > 0 else []
        self.assertEqual(summary[1:], [*there, "1 playlist written"])

    def start_and_stop(self, after, done=None, **options):
        """A running rescue that stands still after it has copied some songs; they need not have their names yet."""
        done = done or (lambda: parts(self.destination) + len(files_below(self.destination)))
        process = start("rescue", self.player.root, self.destination, **options)
        self.addCleanup(process.kill)
        self.addCleanup(lambda: [stream.close() for stream in (process.stdout, process.stderr) if stream])
        wait_until(lambda: os.path.isdir(self.destination) and done() > after)
        process.send_signal(signal.SIGSTOP)
        return process

    def test_full_disk_goes_on_when_there_is_room(self):
        os.mkdir(self.destination)
        mount = ["mount", "-t", "tmpfs", "-o", "size=50m", "none", self.destination]
        if os.geteuid() != 0 or subprocess.run(mount, stderr=subprocess.DEVNULL, check=False).returncode != 0:
            self.skipTest("no file system can be mounted here")
        self.addCleanup(subprocess.run, ["umount", self.destination], check=True)
        self.player = Player(self.folder, 20_000)
        refused = self.rescue()
        before = self.copied()
        self.assertEqual(refused.status, 1)
        self.assertRegex(refused.message, rf"\Azemhost: {self.destination}: No space left on device; "
                                          rf"{before} of 20000 songs are there; {CONTINUE}\n\Z")
        self.assertTrue(0 < before < 20_000)
        self.assertEqual(partials(self.destination), [])
        subprocess.run(["mount", "-o", "remount,size=300m", self.destination], check=True)
        self.expect_complete(before)

    def test_too_little_room_is_told_before(self):
        os.mkdir(self.destination)
        mount = ["mount", "-t", "tmpfs", "-o", "size=64k", "none", self.destination]
        if os.geteuid() != 0 or subprocess.run(mount, stderr=subprocess.DEVNULL, check=False).returncode != 0:
            self.skipTest("no file system can be mounted here")
        self.addCleanup(subprocess.run, ["umount", self.destination], check=True)
        self.player = Player(self.folder, 60, size=5000)
        refused = self.rescue()
        self.assertEqual(refused.status, 1)
        self.assertRegex(refused.message.splitlines()[0],
                         r": [0-9.]+ kB are still to be copied and only [0-9.]+ kB are free; ")

    def kill_one(self, count):
        """Kills a rescue when some songs have their names and others do not; returns how many have."""
        self.player = Player(self.folder, count)
        process = self.start_and_stop(300, lambda: len(files_below(self.destination)))
        process.kill()
        process.wait()
        return self.copied()

    def test_a_killed_one_goes_on_and_leaves_nothing(self):
        before = self.kill_one(3000)
        self.assertEqual(len(partials(self.destination)), 1)
        self.expect_complete(before)

    def test_what_a_killed_one_left_is_named_where_no_lock_shows_that_it_is_over(self):
        self.kill_one(3000)
        left = os.path.join(self.destination, *partials(self.destination))
        environment = {**os.environ, "LD_PRELOAD": BROKEN_CALLS, "BROKEN_CALLS": " flock "}
        ended = run("rescue", self.player.root, self.destination, env=environment)
        self.assertEqual(ended.status, 0)
        self.assertIn(f"1 remark:\n- {left}: an interrupted run may have left it; it can go if no other is at work\n",
                      ended.text)
        self.assertTrue(os.path.isdir(left))

    def test_what_is_in_use_or_not_of_its_making_stays(self):
        self.player = Player(self.folder, 3)
        os.mkdir(self.destination)
        used = os.path.join(self.destination, ".zemhost-0123456789abcdef.part")
        kept = [os.path.join(self.destination, name) for name in (".zemhost-0123456789ABCDEF.part", "zemhost-1.part")]
        for name in (used, *kept):
            os.mkdir(name)
            with open(os.path.join(name, "1.part"), "wb") as file:
                file.write(b"a part")
        os.symlink(self.player.root, os.path.join(self.destination, ".zemhost-fedcba9876543210.part"))
        lock = os.open(used, os.O_RDONLY)
        fcntl.flock(lock, fcntl.LOCK_EX)
        ended = self.rescue()
        self.assertEqual(ended.status, 0)
        self.assertIn("1 remark:\n- " + os.path.join(self.destination, ".zemhost-fedcba9876543210.part"), ended.text)
        self.assertTrue(all(os.path.exists(os.path.join(name, "1.part")) for name in (used, *kept)))
        os.close(lock)
        self.rescue()
        self.assertFalse(os.path.exists(used))
        self.assertTrue(all(os.path.exists(os.path.join(name, "1.part")) for name in kept))
        self.assertTrue(os.path.isdir(os.path.join(self.player.root, "iPod_Control")))

    def test_what_cannot_be_brought_to_the_disk_is_no_copy(self):
        self.player = Player(self.folder, 3)
        environment = {**os.environ, "LD_PRELOAD": BROKEN_CALLS, "BROKEN_CALLS": " syncfs "}
        refused = run("rescue", self.player.root, self.destination, env=environment)
        self.assertEqual((refused.status, refused.message),
                         (1, f"zemhost: {self.destination}: Input/output error; 0 of 3 songs are there; {CONTINUE}\n"))
        self.assertEqual([name for name in files_below(self.destination) if name.endswith(".mp3")], [])
        self.assertEqual(partials(self.destination), [])

    def test_signals_leave_nothing_half_and_say_how_to_go_on(self):
        for number, word in ((signal.SIGINT, "interrupted"), (signal.SIGTERM, "terminated")):
            self.player = Player(tempfile.mkdtemp(dir=self.folder), 2000)
            self.destination = tempfile.mkdtemp(dir=self.folder)
            process = self.start_and_stop(100)
            process.send_signal(number)
            process.send_signal(signal.SIGCONT)
            _, err = process.communicate(timeout=20)
            self.assertEqual((process.returncode, err.decode()), (-number, f"zemhost: {word}; {CONTINUE}\n"))
            self.assertEqual(partials(self.destination), [])
            self.expect_complete(self.copied())

    def test_a_player_that_is_gone_is_said_to_be(self):
        self.player = Player(self.folder, 2000)
        process = self.start_and_stop(100)
        control = os.path.join(self.player.root, "iPod_Control")
        os.rename(control, self.player.root + " unplugged")
        process.send_signal(signal.SIGCONT)
        _, err = process.communicate(timeout=20)
        before = self.copied()
        self.assertEqual(process.returncode, 1)
        self.assertRegex(err.decode(), rf"\Azemhost: the player is gone: {self.player.root}/iPod_Control/iTunes: .*; "
                                       rf"{before} of 2000 songs are there; {CONTINUE}\n\Z")
        os.rename(self.player.root + " unplugged", control)
        self.expect_complete(before)

    def test_only_one_at_a_time_writes_to_a_place(self):
        self.player = Player(self.folder, 2000)
        process = self.start_and_stop(100)
        refused = self.rescue()
        self.assertEqual((refused.status, refused.message),
                         (1, f"zemhost: {self.destination}: another rescue is writing here\n"))
        process.send_signal(signal.SIGCONT)
        process.communicate(timeout=60)
        self.assertEqual(process.returncode, 0)
        self.assertEqual(self.copied(), 2000)

    def test_two_at_once_without_locks_leave_no_wrong_file_and_lose_none(self):
        for broken in (" flock ", " flock renameat2 ", " flock renameat2 linkat "):
            # They want the same names for songs of the same size and time.
            players = [Player(os.path.join(self.folder, word), 300, 5000, word) for word in ("song", "tune")]
            environment = {**os.environ, "LD_PRELOAD": BROKEN_CALLS, "BROKEN_CALLS": broken}
            self.destination = tempfile.mkdtemp(dir=self.folder)
            running = [start("rescue", player.root, self.destination, env=environment) for player in players]
            ended = [(process.communicate(timeout=200)[1], process.returncode) for process in running]
            self.assertEqual(ended, [(b"", 0)] * 2)
            wanted = sorted(content for player in players for content, _ in player.contents.values())
            found = []
            for name in files_below(self.destination):
                if name.endswith(".mp3"):
                    with open(os.path.join(self.destination, name), "rb") as file:
                        found.append(file.read())
            self.assertEqual(sorted(found), wanted)
            self.assertEqual(partials(self.destination), [])
            for player in players:
                shutil.rmtree(os.path.dirname(player.root))

    def test_what_is_lost_when_a_file_is_closed_is_no_copy(self):
        self.player = Player(self.folder, 3)
        environment = {**os.environ, "LD_PRELOAD": BROKEN_CALLS, "BROKEN_CALLS": " close "}
        refused = run("rescue", self.player.root, self.destination, env=environment)
        self.assertEqual((refused.status, refused.message),
                         (1, f"zemhost: {self.destination}: No space left on device; 0 of 3 songs are there; "
                             f"{CONTINUE}\n"))
        self.assertEqual(files_below(self.destination), set())

    def test_a_terminal_shows_a_line_that_changes(self):
        self.player = Player(self.folder, 2000)
        with Terminal(100) as terminal:
            process = self.start_and_stop(100, stdout=terminal.theirs)
            terminal.started()
            time.sleep(0.7)  # a rate and the time left are shown after half a second
            process.send_signal(signal.SIGCONT)
            lines = terminal.read_all().split("\r")
        self.assertEqual(process.wait(), 0)
        bars = [line for line in lines if line.startswith("[")]
        self.assertTrue(all(len(line) < 100 for line in bars), bars)
        self.assertTrue(any(re.fullmatch(r"\[#+\.*\] \d+ %  \d+ of 2000 songs  [0-9.]+ k?B/s  \d+:\d\d left *", line)
                            for line in bars), bars)
        self.assertTrue(bars[-1].startswith("[####################] 100 %  2000 of 2000 songs"), bars[-1])
        summary = next(i for i, line in enumerate(lines) if line.startswith("2000 songs copied, "))
        self.assertEqual(lines[summary - 1].strip(" "), "")  # taken away before the summary
        self.assertGreater(len(lines[summary - 1]), 50)

    def test_an_interruption_ends_the_changing_line(self):
        self.player = Player(self.folder, 2000)
        with Terminal() as terminal:
            process = self.start_and_stop(200, stdout=terminal.theirs)
            terminal.started()
            process.send_signal(signal.SIGINT)
            process.send_signal(signal.SIGCONT)
            _, err = process.communicate(timeout=20)
        self.assertEqual(err.decode(), f"\nzemhost: interrupted; {CONTINUE}\n")


class Work(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = os.path.realpath(folder.name)
        self.destination = os.path.join(self.folder, "music")

    def test_each_song_is_looked_up_and_opened_once_and_each_folder_a_few_times(self):
        player = Player(self.folder, 480)  # in 40 albums
        log = os.path.join(self.folder, "log")
        environment = {**os.environ, "LD_PRELOAD": BROKEN_DISK, "BROKEN_DISK": f"log {log}"}
        self.assertEqual(run("rescue", player.root, self.destination, env=environment).status, 0)
        with open(log, encoding="utf-8") as file:
            lines = file.read().splitlines()
        songs = sorted(line for line in lines if line.endswith(".mp3"))
        names = [os.path.join(player.root, "iPod_Control", "Music", f"F{place % 50:02}", f"S{place:05}.mp3")
                 for place in range(480)]
        self.assertEqual(songs, sorted(f"{word} {name}" for word in ("look", "open") for name in names))
        albums = [line for line in lines if re.search(r"music/Artist \d+/Album \d+$", line)]
        self.assertTrue(40 <= len(albums) <= 4 * 40, len(albums))  # before they are made, then, and afterwards

    def test_sums_are_those_of_the_songs_whatever_their_sizes(self):
        block = 256 * 1024
        sizes = [0, 1, block - 1, block, block + 1, 4 * block - 1, 4 * block, 4 * block + 1, 5 * block, 9_000_000]
        player = Player(self.folder, len(sizes))
        wanted = set()
        for place, size in enumerate(sizes):
            content = os.urandom(size)
            wanted.add(hashlib.sha256(content).hexdigest())
            with open(os.path.join(player.root, "iPod_Control", "Music", f"F{place:02}", f"S{place:05}.mp3"), "wb") as file:
                file.write(content)
        ended = run("rescue", player.root, self.destination, "--verify")
        self.assertIn("10 copies were read back, and the same\n", ended.text)
        with open(os.path.join(self.destination, "SHA256SUMS"), encoding="utf-8") as file:
            self.assertEqual({line.split()[0] for line in file}, wanted)
        subprocess.run(["sha256sum", "-c", "--quiet", "SHA256SUMS"], cwd=self.destination, check=True)

    def test_few_descriptors_are_enough(self):
        player = Player(self.folder, 200)
        few = {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (32, 32))}
        ended = run("rescue", player.root, self.destination, **few)
        self.assertEqual((ended.status, ended.message), (0, ""))
        self.assertIn("200 songs copied, ", ended.text)


if __name__ == "__main__":
    unittest.main()
