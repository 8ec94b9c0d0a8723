#!/usr/bin/env python3
"""Listings and exports in another encoding hold the same texts, and say what had no place in it."""

import csv
import io
import os
import tempfile
import unicodedata
import unittest

from program import PLAYER, SHARED, run, without_free_room

LISTINGS = [["songs", PLAYER], ["playlists", PLAYER], ["playlist", PLAYER, "Podcasts"], ["info", PLAYER]]


def published_table():
    """Shift_JIS as its published mapping has it; nothing when that is not here."""
    path = os.path.join(SHARED, "data", "shift_jis_mapping.tsv")
    table = {}
    if os.path.exists(path):
        with open(path, encoding="ascii") as lines:
            for line in lines:
                words = line.split("#")[0].split()
                if len(words) >= 2 and words[0].startswith("0x"):
                    code = int(words[0], 16)
                    table[chr(int(words[1].removeprefix("U+"), 16))] = code.to_bytes(2 if code > 0xFF else 1, "big")
    return table


class Encodings(unittest.TestCase):
    def both(self, command, encoding):
        plain = run(*command)
        other = run(*command, "--encoding", encoding)
        self.assertEqual((plain.status, plain.message, other.status), (0, "", 0))
        return plain.text, other.out, other.message

    def test_unicode_holds_the_same_text(self):
        for command in [*LISTINGS, ["export", PLAYER, "--format", "csv"], ["export", PLAYER, "--format", "m3u8"]]:
            for name, codec, mark in (("UTF-16", "utf-16-le", b"\xff\xfe"), ("UTF-16BE", "utf-16-be", b""),
                                      ("UTF-32", "utf-32-le", b"\xff\xfe\0\0"), ("GB18030", "gb18030", b"")):
                text, other, message = self.both(command, name)
                self.assertEqual((other[:len(mark)], message), (mark, ""))
                decoded = other[len(mark):].decode(codec)
                self.assertEqual(without_free_room(decoded.encode()), without_free_room(text.encode()))
                self.assertEqual(decoded.encode(codec), other[len(mark):])

    def test_loss_is_shown_and_told(self):
        text, other, message = self.both(["export", PLAYER, "--format", "csv", "--fields", "title,artist"], "ISO-8859-1")
        rows = list(csv.reader(io.StringIO(text, newline="")))
        rows = [[unicodedata.normalize("NFC", field) for field in row] for row in rows]
        fields = [field for row in rows for field in row]
        lost = [sum(ord(c) > 0xFF for c in field) for field in fields]
        self.assertEqual(list(csv.reader(io.StringIO(other.decode("latin-1"), newline=""))),
                         [["".join("?" if ord(c) > 0xFF else c for c in field) for field in row] for row in rows])
        self.assertGreater(sum(lost), 50)
        self.assertEqual(message, f"zemhost: {sum(lost)} characters in {sum(map(bool, lost))} texts have no place in "
                                  "ISO-8859-1 and are shown as '?'\n")

    def test_tables_stay_in_line(self):
        """A replacement takes one place where the character took two."""
        _, other, _ = self.both(["songs", PLAYER], "ISO-8859-1")
        lines = other.decode("latin-1").split("\n")
        place = lines[0].index("Artist")
        self.assertTrue(all(line[place - 2:place] == "  " and line[place] != " " for line in lines[1:15]))

    def test_shift_jis_is_the_published_table(self):
        table = published_table()
        if not table:
            self.skipTest("the published mapping is not here")
        # What the plug-in's table leaves out on purpose; ASCII stands for itself.
        table = {c: code for c, code in table.items() if c >= "\u0100" and c != "\uffe5"}
        table.update({chr(i): bytes([i]) for i in range(0x80)})
        text, other, message = self.both(["export", PLAYER, "--format", "csv", "--fields", "title,artist,album"],
                                         "Shift_JIS")
        self.assertEqual(other, b"".join(table.get(c, b"?") for c in text))
        self.assertIn("have no place in Shift_JIS", message)
        self.assertIn("雨のプラットホーム".encode("shift_jis"), other)

    def test_file_in_another_encoding(self):
        with tempfile.TemporaryDirectory() as folder:
            name = os.path.join(folder, "songs.csv")
            done = run("export", PLAYER, "--format", "csv", "--encoding", "UTF-16", "-o", name)
            self.assertEqual((done.status, done.message), (0, ""))
            with open(name, encoding="utf-16", newline="") as file:
                self.assertEqual(file.read(), run("export", PLAYER, "--format", "csv").text)

    def test_unknown_encoding_is_an_error(self):
        for command in LISTINGS:
            done = run(*command, "--encoding", "Klingon")
            self.assertEqual((done.status, done.text), (1, ""))
            self.assertTrue(done.message.startswith('zemhost: no encoding is named "Klingon"; there are UTF-8'))


if __name__ == "__main__":
    unittest.main()
