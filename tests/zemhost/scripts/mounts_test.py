#!/usr/bin/env python3
"""Commands without PATH, in a view of the file system of their own in which players are mounted."""

import os
import shutil
import subprocess
import tempfile
import unittest

from program import PLAYER, SAMPLES, ZEMHOST, Outcome, run

PLAYER_PLACE = "/mnt/zemhost-test"


def unshare():
    """The command that makes such a view, with or without the superuser's rights; None where none does."""
    for command in (["unshare", "--mount"], ["unshare", "--map-root-user", "--mount"]):
        script = "mount -t tmpfs tmpfs /mnt && mkdir /mnt/a && mount --bind /usr /mnt/a"
        done = subprocess.run([*command, "sh", "-c", script], check=False, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL)
        if done.returncode == 0:
            return command
    return None


class Mounts(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.unshare = unshare() if shutil.which("unshare") else None
        if cls.unshare is None:
            raise unittest.SkipTest("no file system may be mounted here")

    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = temporary.name

    def run_mounted(self, places, *arguments, options="bind"):
        """Runs it where the sample player is mounted in these places."""
        script = "mount -t tmpfs tmpfs /mnt\n" + "".join(
            f"mkdir -p '{place}' && mount -o bind '{player}' '{place}' && mount -o remount,{options} '{place}' || exit 99\n"
            for place, player in places.items()) + 'exec "$@"'
        done = subprocess.run([*self.unshare, "sh", "-c", script, "sh", ZEMHOST, *arguments], check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=100)
        self.assertNotEqual(done.returncode, 99, done.stderr)
        return Outcome(done.returncode, done.stdout, done.stderr)

    def test_every_command_takes_the_one_that_is_mounted(self):
        place = {PLAYER_PLACE: PLAYER}
        for arguments in (["songs"], ["playlists"], ["plays", "--top", "3"], ["duplicates"], ["export", "--format", "csv"],
                          ["playlist", "Night Drives"], ["songs", "--columns", "title"]):
            done = self.run_mounted(place, *arguments)
            self.assertEqual((done.status, done.message), (0, f"zemhost: the player at {PLAYER_PLACE}\n"), arguments)
            expected = run(arguments[0], PLAYER, *arguments[1:]).text
            self.assertEqual(done.text, expected.replace(os.path.realpath(PLAYER), PLAYER_PLACE))
        self.assertEqual(self.run_mounted(place, "check").status, 3)
        self.assertIn(f"Database   {PLAYER_PLACE}/iPod_Control", self.run_mounted(place, "info").text)
        done = self.run_mounted(place, "compare", os.path.join(SAMPLES, "big-endian.library"))
        self.assertEqual(done.text.split("\n")[0], f"A  {PLAYER_PLACE}: 29 songs, 29 different songs")
        # On a disk of its own, since the player lies on this machine's.
        rescued = self.run_mounted(place, "rescue", "/mnt/music")
        self.assertEqual(rescued.status, 3, rescued.message)
        self.assertIn("\nMira Solvang/Northern Ferries/02 Salt on the Rail.m4a\n", rescued.text)
        self.assertEqual(self.run_mounted(place, "covers", "/mnt/covers").status, 0)

    def test_path_goes_before_what_is_mounted(self):
        done = self.run_mounted({PLAYER_PLACE: PLAYER}, "info", os.path.join(SAMPLES, "nano"))
        self.assertEqual((done.status, done.message), (0, ""))
        self.assertIn("Volume     nano\n", done.text)

    def test_several_are_listed(self):
        done = self.run_mounted({"/mnt/b": PLAYER, "/mnt/a": os.path.join(SAMPLES, "nano")}, "songs")
        self.assertEqual((done.status, done.text), (2, ""))
        self.assertTrue(done.message.startswith("zemhost: PATH: several players are mounted; give the PATH of one: "
                                                "/mnt/a /mnt/b\n"), done.message)

    def test_none_is_said(self):
        for arguments in (["songs"], ["rescue", self.folder], ["playlist", "1"], ["export", "--format", "csv"]):
            done = self.run_mounted({}, *arguments)
            self.assertEqual((done.status, done.text), (2, ""))
            self.assertTrue(done.message.startswith("zemhost: PATH: no player is mounted; "), done.message)
        for arguments, text in ((["rescue"], "DEST is required"), (["playlist"], "PLAYLIST is required"),
                                (["compare"], "B is required"), (["call"], "PATH is required")):
            done = self.run_mounted({PLAYER_PLACE: PLAYER}, *arguments)
            self.assertEqual((done.status, done.text), (2, ""))
            self.assertIn(text, done.message)

    def test_read_only_mount_is_explained(self):
        for arguments in (["songs"], ["info"]):
            done = self.run_mounted({PLAYER_PLACE: PLAYER}, *arguments, options="bind,ro")
            self.assertEqual(done.status, 0)
            self.assertIn(", read-only, which is enough for zemhost", done.message)
        self.assertIn("read-only, which is enough for zemhost",
                      self.run_mounted({PLAYER_PLACE: PLAYER}, "info", PLAYER_PLACE, options="bind,ro").text)


if __name__ == "__main__":
    unittest.main()
