#!/usr/bin/env python3
"""Disks and their images that are given in place of a mounted player are named for what they are."""

import os
import tempfile
import unittest

from program import run

VOLUME = " and udisksctl mount -b DEVICE, and name the folder where it is mounted"
DISK = " and udisksctl mount -b PARTITION, and name the folder where it is mounted"
MBR = b"\x55\xaa"

# What the first bytes are, by their offsets, and what is said.
IMAGES = {
    "HFS+": ({1024: b"H+\0\4"}, "a volume in HFS+; mount it"),
    "HFSX": ({1024: b"HX\0\5"}, "a volume in HFS+; mount it"),
    "HFS": ({1024: b"BD"}, "a volume in HFS; mount it"),
    "FAT32": ({0: b"\xeb\x58\x90mkfs.fat", 82: b"FAT32   ", 510: MBR}, "a volume in FAT32; mount it"),
    "FAT16": ({0: b"\xeb\x3c\x90mkfs.fat", 54: b"FAT16   ", 510: MBR}, "a volume in FAT; mount it"),
    "exFAT": ({3: b"EXFAT   ", 510: MBR}, "a volume in exFAT; mount it"),
    "MBR": ({446: bytes(16), 510: MBR}, "a whole disk with a table of partitions (MBR); mount the one"),
    "GPT": ({510: MBR, 512: b"EFI PART"}, "a whole disk with a table of partitions (GPT); mount the one"),
    "map": ({0: b"ER\2\0", 512: b"PM\0\0"}, "a whole disk with a table of partitions (an Apple partition map); mount the one"),
    "map of 2048": ({0: b"ER\x08\0", 2048: b"PM\0\0"}, "a whole disk with a table of partitions (an Apple partition map)"),
}


class Disks(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.image = os.path.join(folder.name, "disk.img")
        self.music = os.path.join(folder.name, "music")

    def write(self, parts, size=100_000):
        data = bytearray(size)
        for at, part in parts.items():
            data[at:at + len(part)] = part
        with open(self.image, "wb") as file:
            file.write(data)

    def refusal(self, *arguments):
        done = run(*arguments)
        self.assertEqual((done.status, done.text), (1, ""))
        self.assertEqual(done.message.count("\n"), 1, done.message)
        return done.message

    def test_images_are_named_with_how_to_mount_them(self):
        for name, (parts, what) in IMAGES.items():
            self.write(parts)
            end = DISK if "whole disk" in what else VOLUME
            for arguments in (("songs", self.image), ("rescue", self.image, self.music)):
                message = self.refusal(*arguments)
                self.assertTrue(message.startswith(f"zemhost: {self.image}: it is {what}"), (name, message))
                self.assertTrue(message.endswith(f", as by udisksctl loop-setup -r -f {self.image}{end}\n"), message)
        self.assertFalse(os.path.exists(self.music))

    def test_apfs_is_said_to_need_another_machine(self):
        self.write({32: b"NXSB"})
        self.assertEqual(self.refusal("info", self.image),
                         f"zemhost: {self.image}: it is a volume in APFS, which Linux cannot mount; copy its files to "
                         "another disk with a Mac\n")

    def test_other_files_are_no_disks(self):
        for parts in ({}, {0: b"PM"}, {1024: b"+H"}, {512: MBR}):
            self.write(parts)
            self.assertEqual(self.refusal("songs", self.image), f"zemhost: {self.image}: not an iTunesDB database\n")


if __name__ == "__main__":
    unittest.main()
