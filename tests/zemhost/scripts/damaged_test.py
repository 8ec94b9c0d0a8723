"""Players whose disk fails: what can be read is there, and what cannot is named."""

import errno
import hashlib
import json
import os
import re
import shutil
import subprocess
import tempfile
import unittest

from program import PLAYER, run
from rescued_player import Player

BROKEN_DISK = os.environ["BROKEN_DISK_LIBRARY"]
SIZE = 1_000_000
FOREVER = 10 ** 9


class DamagedPlayer(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = os.path.realpath(folder.name)
        self.destination = os.path.join(self.folder, "music")
        self.player = Player(self.folder, 3, SIZE)
        self.names = sorted(self.player.contents)

    def source(self, place):
        return os.path.join(self.player.root, "iPod_Control", "Music", f"F{place:02}", f"S{place:05}.mp3")

    def run_broken(self, *arguments, faults=()):
        environment = {**os.environ, "LD_PRELOAD": BROKEN_DISK, "BROKEN_DISK": "\n".join(faults)}
        return run(*arguments, env=environment)

    def rescue(self, *options, faults=()):
        return self.run_broken("rescue", self.player.root, self.destination, *options, faults=faults)

    def copy(self, name):
        with open(os.path.join(self.destination, name), "rb") as file:
            return file.read()

    def is_there(self, name):
        return os.path.exists(os.path.join(self.destination, name))

    def report(self):
        with open(os.path.join(self.destination, "rescue-report.json"), encoding="utf-8") as file:
            text = file.read()
        report = json.loads(text)
        self.assertEqual(text, json.dumps(report, indent=2, ensure_ascii=False) + "\n")
        return report

    def expect_sums(self):
        checked = subprocess.run(["sha256sum", "-c", "--strict", "--quiet", "SHA256SUMS"], cwd=self.destination,
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        self.assertEqual((checked.returncode, checked.stdout), (0, b""))

    def damaged_name(self, place):
        return self.names[place].replace(".mp3", " (damaged).mp3")

    def test_errors_that_pass_leave_whole_copies(self):
        # Two of three tries fail; and a piece comes only when all else has been read.
        for times in (1, 2, 4):
            self.destination = os.path.join(self.folder, f"music {times}")
            ended = self.rescue("--verify", faults=[f"read {self.source(1)} 300000 100 {times}"])
            self.assertEqual((ended.status, ended.message), (0, ""))
            for name, (content, _) in self.player.contents.items():
                self.assertEqual(self.copy(name), content)
            self.assertIn("3 copies were read back, and the same\n", ended.text)
            self.expect_sums()

    def test_what_cannot_be_read_is_zero_and_named_by_its_place(self):
        faults = [f"read {self.source(1)} 300000 5000 {FOREVER}", f"read {self.source(1)} 600000 1 {FOREVER}"]
        ended = self.rescue(faults=faults)
        self.assertEqual(ended.status, 3)
        self.assertFalse(self.is_there(self.names[1]))
        content = bytearray(self.player.contents[self.names[1]][0])
        gaps = [(4096 * 73, 4096 * 2), (4096 * 146, 4096)]  # the pieces that hold these bytes
        for offset, size in gaps:
            content[offset:offset + size] = bytes(size)
        self.assertEqual(self.copy(self.damaged_name(1)), content)
        self.assertIn("1 song is damaged, with zeros for what cannot be read:\n"
                      f"- song 1 \"Song 1\" by Artist 0: {self.source(1)}: 8192 bytes at 299008, 4096 bytes at 598016 "
                      f"cannot be read; the copy is {self.damaged_name(1)}\n", ended.text)
        report = self.report()
        self.assertEqual(report["outcome"], "incomplete")
        song = next(song for song in report["songs"] if song["file"] == self.damaged_name(1))
        self.assertEqual(song["unread"], [{"offset": offset, "bytes": size} for offset, size in gaps])
        self.assertEqual(song["sha256"], hashlib.sha256(content).hexdigest())
        self.expect_sums()
        with open(os.path.join(self.destination, "Some.m3u8"), encoding="utf-8") as playlist:
            self.assertNotIn("damaged", playlist.read())  # it has the songs 0 and 2
        again = self.rescue(faults=faults)
        self.assertEqual(again.status, 3)
        self.assertIn("0 songs copied, 0 B\n3 songs are already there\n", again.text)
        self.assertEqual(sorted(os.listdir(os.path.dirname(os.path.join(self.destination, self.names[1])))),
                         sorted(os.path.basename(name)
                                for name in (self.names[0], self.damaged_name(1), self.names[2])))

    def test_song_that_can_be_read_again_gets_its_copy_beside_the_damaged_one(self):
        self.rescue(faults=[f"read {self.source(1)} 0 1 {FOREVER}"])
        ended = self.rescue()
        self.assertEqual(ended.status, 0)
        self.assertEqual(self.copy(self.names[1]), self.player.contents[self.names[1]][0])
        self.assertTrue(self.is_there(self.damaged_name(1)))
        self.assertEqual(self.report()["outcome"], "complete")
        self.expect_sums()

    def test_damaged_songs_can_be_left_out(self):
        ended = self.rescue("--skip-damaged", faults=[f"read {self.source(1)} 300000 1 {FOREVER}"])
        self.assertEqual(ended.status, 3)
        self.assertFalse(self.is_there(self.names[1]) or self.is_there(self.damaged_name(1)))
        self.assertIn(f"- song 1 \"Song 1\" by Artist 0: {self.source(1)}: 4096 bytes at 299008 cannot be read; "
                      "the song is left out\n", ended.text)
        self.assertTrue(self.is_there(self.names[0]) and self.is_there(self.names[2]))

    def test_song_of_which_nothing_can_be_read_is_no_copy(self):
        ended = self.rescue(faults=[f"read {self.source(0)} 0 {SIZE * 2} {FOREVER}"])
        self.assertEqual(ended.status, 3)
        self.assertFalse(self.is_there(self.names[0]) or self.is_there(self.damaged_name(0)))
        self.assertIn(f"1 problem:\n- song 0 \"Song 0\" by Artist 0: {self.source(0)}: Input/output error\n"
                      .replace("1 problem", "2 problems"), ended.text)  # and the list that lacks it

    def test_player_that_comes_back_within_a_moment_loses_nothing(self):
        for reads in range(8, 16):  # somewhere in the songs
            self.destination = os.path.join(self.folder, f"music {reads}")
            ended = self.rescue(faults=[f"gone {self.player.root} {reads} 2"])
            self.assertEqual((ended.status, ended.message), (0, ""), ended.text)
            for name, (content, _) in self.player.contents.items():
                self.assertEqual(self.copy(name), content)

    def test_player_that_is_gone_after_the_songs_leaves_them_with_a_report(self):
        ended = self.rescue(faults=[f"gone {self.player.root} 20 {FOREVER}"])
        self.assertEqual(ended.status, 3)
        self.assertIn("3 songs copied, ", ended.text)
        self.assertRegex(ended.text, r"1 problem:\n- .*iTunesDB: Input/output error; playlists are missing\n")
        self.assertEqual(self.report()["outcome"], "incomplete")
        self.expect_sums()

    def test_player_that_stays_away_ends_the_run_and_the_next_goes_on(self):
        ended = self.rescue(faults=[f"gone {self.player.root} 9 {FOREVER}"])
        self.assertEqual(ended.status, 1)
        self.assertRegex(ended.message, r"\Azemhost: the player is gone: .*/iPod_Control/iTunes: .*; [012] of 3 songs "
                                        r"are there; run the same command again to continue\n\Z")
        self.assertFalse([name for _, _, files in os.walk(self.destination) for name in files
                          if "damaged" in name or name.startswith(".zemhost")])
        self.assertEqual(self.report()["outcome"], "stopped")
        self.assertIn("the player is gone", self.report()["stopped"])
        self.assertEqual(self.rescue().status, 0)
        for name, (content, _) in self.player.contents.items():
            self.assertEqual(self.copy(name), content)
        self.expect_sums()

    def test_check_names_what_cannot_be_read_and_goes_on(self):
        folder = os.path.dirname(self.source(0))
        checked = self.run_broken("check", self.player.root, faults=[f"open {self.source(1)} {errno.EACCES}",
                                                                    f"open {folder} {errno.EIO}"])
        self.assertEqual((checked.status, checked.message), (3, ""))
        self.assertIn(f"- song 1 \"Song 1\" by Artist 0: its file cannot be read: {self.source(1)}: Permission denied\n"
                      f"- {folder} cannot be read: Input/output error\n", checked.text)
        self.assertIn("3 of 3 songs have theirs", checked.text)

    def test_check_reads_files_to_their_ends_when_asked_to(self):
        folder = os.path.dirname(self.source(0))
        unnamed = os.path.join(folder, "UNNAMED.mp3")
        with open(unnamed, "wb") as file:
            file.write(bytes(SIZE))
        faults = [f"read {self.source(1)} 300000 5000 {FOREVER}", f"read {unnamed} 0 1 {FOREVER}",
                  f"read {self.source(2)} 500000 100 1"]  # that passes
        found = [f"- song 1 \"Song 1\" by Artist 0: {self.source(1)}: 8192 bytes at 299008 cannot be read\n",
                 f"- {unnamed}: 4096 bytes at 0 cannot be read\n"]
        checked = self.run_broken("check", self.player.root, "--read", faults=faults)
        self.assertEqual((checked.status, checked.message), (3, ""))
        text = re.sub(r"\n +", " ", checked.text)
        self.assertIn("".join(found), text)
        self.assertIn("; all were read to their ends\n", text)
        unread = self.run_broken("check", self.player.root, faults=faults)
        self.assertEqual(unread.status, 3)  # for the file that no song names
        self.assertNotIn("cannot be read", unread.text)
        self.assertIn("; --read reads them to their ends\n", re.sub(r"\n +", " ", unread.text))
        report = json.loads(self.run_broken("check", self.player.root, "--read", "--json", faults=faults).text)
        self.assertEqual((report["files"]["read"], report["finding_counts"]["unreadable"]), (True, 2))

    def test_songs_that_a_damaged_database_lost_are_no_success(self):
        self.player.root = os.path.join(self.folder, "sample")
        shutil.copytree(PLAYER, self.player.root)
        path = os.path.join(self.player.root, "iPod_Control", "iTunes", "iTunesDB")
        with open(path, "r+b") as file:
            data = file.read()
            second = data.index(b"mhit", data.index(b"mhit") + 1)
            file.seek(second)
            file.write(b"XXXX")
        ended = self.rescue()
        self.assertEqual(ended.status, 3)
        found = rf"{path}: the file is damaged: 28 of 29 songs and \d+ playlists were found by salvage"
        self.assertRegex(ended.message, rf"\Azemhost: {found}; to see what is wrong run: zemhost check .*\n")
        self.assertRegex(ended.text, rf"problems:\n- {found}\n")
        self.assertEqual(self.report()["outcome"], "incomplete")
        self.assertIn("1 music file that no song names belongs into Unnamed\n", ended.text)

    def test_rescue_names_a_song_that_cannot_be_opened(self):
        ended = self.rescue(faults=[f"open {self.source(1)} {errno.EACCES}"])
        self.assertEqual(ended.status, 3)
        self.assertIn(f"- song 1 \"Song 1\" by Artist 0: {self.source(1)}: Permission denied\n", ended.text)
        self.assertTrue(self.is_there(self.names[2]))

    def test_folder_that_cannot_be_listed_is_named_where_a_song_has_another_case(self):
        folder = os.path.dirname(self.source(0))
        os.rename(self.source(0), os.path.join(folder, "s00000.MP3"))
        ended = self.rescue(faults=[f"open {folder} {errno.EIO}"])
        self.assertEqual(ended.status, 3)
        self.assertIn(f"its file cannot be read: {folder}: Input/output error\n", ended.text)
        self.assertEqual(self.rescue().status, 0)


if __name__ == "__main__":
    unittest.main()
