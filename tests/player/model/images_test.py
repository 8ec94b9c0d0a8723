#!/usr/bin/env python3
"""What the reader makes of lists of pictures and of pictures is, field by field and pixel by pixel, what a plain model
makes of them: on sound, real and damaged ones."""

import os
import random
import struct
import tempfile
import unittest

from image_model import TABLE, ImageList, format_of, picture, rows_of, seen_of, stated_formats
from printer import printed, scaled

SAMPLES = os.environ["SAMPLES"]
COVERS = os.path.join(os.environ["SHARED"], "data", "players", "classic-covers")
RANDOM_LISTS = scaled(500)


def content(path):
    with open(path, "rb") as file:
        return file.read()


def chunk(tag, jump, body, word=0, count=None):
    header = tag + struct.pack("<III", jump, jump + len(body) if count is None else count, word)
    return header.ljust(jump, b"\0")[:max(jump, 16)] + body


class RandomList:
    """A list of pictures with headers of usual and odd lengths."""

    def __init__(self, seed):
        self.random = random.Random(seed)

    def text(self, kind):
        units = self.random.choice([":F1028_1.ithmb", "", "S\u00e8te", "\U0001F600", "x" * 3000])
        form = self.random.choice([0, 1, 2, 2])
        data = units.encode("utf-16-le" if form == 2 else "utf-8") + self.random.choice([b"", b"", b"\xd8", b"\x00\xd8"])
        length = self.random.choice([len(data)] * 9 + [len(data) + 40])
        return chunk(b"mhod", 0x18, struct.pack("<III", length, form, 0) + data, kind)

    def header(self, tag, usual, fields, body):
        jump = self.random.choice([usual] * 8 + [0x10, 0x1A, usual - 2, usual + 8])
        header = bytearray(chunk(tag, jump, b"", self.random.getrandbits(32)))
        for offset, form in fields:
            if offset + struct.calcsize(form) <= jump:
                size = struct.calcsize(form)
                value = self.random.choice([0, 1, 5, self.random.getrandbits(8 * size)])
                header[offset:offset + size] = value.to_bytes(size, "little")
        return self.sized(bytes(header) + body)

    @staticmethod
    def sized(data):
        return data[:8] + struct.pack("<I", len(data)) + data[12:]

    def image(self):
        sizes = b""
        for _ in range(self.random.randrange(4)):
            fields = [(0x10, "I"), (0x14, "I"), (0x18, "I"), (0x1C, "h"), (0x1E, "h"), (0x20, "H"), (0x22, "H")]
            names = b"".join(self.text(self.random.choice([3, 3, 3, 1])) for _ in range(self.random.randrange(3)))
            inner = self.header(b"mhni", 0x4C, fields, names)
            sizes += chunk(b"mhod", 0x18, inner, self.random.choice([2, 2, 2, 5, 6]))
        return self.header(b"mhii", 0x98, [(0x10, "I"), (0x14, "Q")], sizes)

    def album(self):
        body = self.text(1) + b"".join(self.header(b"mhia", 0x28, [(0x10, "I")], b"")
                                       for _ in range(self.random.randrange(4)))
        return self.header(b"mhba", 0x94, [(0x1E, "B")], body)

    def file(self):
        images = b"".join(self.image() for _ in range(self.random.randrange(6)))
        albums = b"".join(self.album() for _ in range(self.random.randrange(3)))
        sets = chunk(b"mhsd", 0x60, chunk(b"mhli", 0x5C, images, count=5), 1)
        sets += chunk(b"mhsd", 0x60, chunk(b"mhla", 0x5C, albums, count=2), 2)
        return chunk(b"mhfd", 0x84, sets)

    def damaged(self, data):
        data = bytearray(data)
        for _ in range(self.random.randrange(1, 6)):
            at = self.random.randrange(len(data))
            what = self.random.random()
            if what < 0.5:
                data[at] = self.random.choice([0, 1, 0xFF, self.random.randrange(256)])
            elif what < 0.8:
                data[at:at + 4] = struct.pack("<I", self.random.choice([0, 12, 16, 0x98, len(data), 0xFFFFFFFF]))
            else:
                del data[max(at, 8):]
        return bytes(data)


class Images(unittest.TestCase):
    maxDiff = 2000

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def place(self, name, data):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(data)
        return path

    def assert_list(self, data, got):
        model = ImageList(data)
        if not model.is_list:
            self.assertIsNone(got)
            return
        self.assertEqual(got, {"images": model.images, "albums": model.albums, "broken": model.broken})

    def assert_pictures(self, cases, stated=()):
        """`cases` are format, offset, bytes, the part that is seen, and the file's content."""
        plist = self.place("stated", plist_of(stated)) if stated else ""
        lines = []
        for i, (number, offset, size, part, data) in enumerate(cases):
            lines.append(" ".join(map(str, ["picture", number, offset, size, *part, self.place(f"p{i}", data), plist])))
        for case, got in zip(cases, printed("images", lines), strict=True):
            number, offset, size, part, data = case
            form = format_of(number, size, stated_formats(stated))
            with self.subTest(format=number, size=size, part=part):
                if form is None:
                    self.assertIsNone(got)
                elif form.form != "jpeg":
                    rows = rows_of(data[offset:offset + size], form)
                    self.assertTrue(got["slot"] == picture(rows), "pixels differ")
                    self.assertTrue(got["seen"] == picture(seen_of(rows, part) if rows else rows), "parts differ")

    def test_sample_and_real_lists_and_their_pictures(self):
        folders = [os.path.join(SAMPLES, "player", "iPod_Control", "Artwork")]
        if os.path.isdir(COVERS):
            folders.append(COVERS)
        else:
            print("the real covers are not there")
        for folder in folders:
            data = content(os.path.join(folder, "ArtworkDB"))
            got = printed("images", ["list " + self.place("list", data)])[0]
            self.assert_list(data, got)
            self.assertFalse(got["broken"])
            cases = [(number, offset, size, part, content(os.path.join(folder, bytes.fromhex(name).decode()[1:])))
                     for _, _, pictures in got["images"]
                     for number, offset, size, *part, name, _ in pictures]
            self.assertGreaterEqual(len(cases), 16)
            self.assert_pictures(cases)
            print(f"{folder}: {len(got['images'])} images, {len(cases)} pictures")

    def test_random_and_damaged_lists(self):
        files = []
        for seed in range(RANDOM_LISTS):
            one = RandomList(seed)
            data = one.file()
            files.append(data if seed % 2 == 0 else one.damaged(data))
        found = printed("images", ["list " + self.place(f"list{i}", data) for i, data in enumerate(files)])
        for i, (data, got) in enumerate(zip(files, found, strict=True)):
            with self.subTest(seed=i):
                self.assert_list(data, got)
        # Without these the comparison could pass over nothing.
        lists = [got for got in found if got]
        self.assertGreater(sum(got["broken"] for got in lists), RANDOM_LISTS // 8)
        self.assertGreater(sum(len(image[2]) for got in lists for image in got["images"]), RANDOM_LISTS)
        self.assertGreater(sum(len(got["albums"]) for got in lists), RANDOM_LISTS // 4)

    def test_random_pictures_of_every_form(self):
        some = random.Random(7)
        cases = []
        for form in TABLE:
            if form.form == "jpeg":
                continue
            sizes = {form.pixel_bytes(), form.slot or form.pixel_bytes()}
            for size in sorted(sizes):
                data = some.randbytes(size + 10)
                part = [some.choice([0, 0, 1, 4, -2]), some.choice([0, 0, 3, 9]),
                        some.choice([form.height, form.height - 1, form.height - 4, 1, 0]),
                        some.choice([form.width, form.width - 9, form.width + 50, 0])]
                cases.append((form.number, some.choice([0, 2, 10]), size, part, data))
        for number, size in ((4711, 5000), (1055, 5000), (4711, 5002), (4711, 0), (1055, 32767), (1016, 6612)):
            cases.append((number, 0, size, [0, 0, 10, 10], some.randbytes(size)))
        cases.append((1055, 0, 32768, [0, 0, 128, 128], some.randbytes(32767)))  # cut off
        self.assert_pictures(cases)

    def test_forms_that_the_player_states(self):
        some = random.Random(8)
        stated = [{"FormatId": 1055, "RenderWidth": 64, "RenderHeight": 256, "PixelFormat": "4C353535"},
                  {"FormatId": 1016, "RenderWidth": 33, "RenderHeight": 10, "PixelFormat": "4C353635",
                   "RowBytesAlignment": 16},
                  {"FormatId": 7, "RenderWidth": 6, "RenderHeight": 4, "PixelFormat": "79343230"},
                  {"FormatId": 8, "RenderWidth": 6, "RenderHeight": 4, "PixelFormat": "32767579"},
                  {"FormatId": 9, "RenderWidth": 5, "RenderHeight": 3, "PixelFormat": "32767579"},
                  {"FormatId": 10, "RenderWidth": 5, "RenderHeight": 3, "PixelFormat": "42353635"}]
        cases = [(number, 0, size, [0, 0, 0, 0], some.randbytes(size)) for number, size in
                 ((1055, 32768), (1016, 800), (1016, 660), (7, 36), (8, 48), (9, 30), (10, 30), (1028, 20000))]
        self.assert_pictures(cases, stated)


def plist_of(formats):
    text = ""
    for one in formats:
        text += "<dict>" + "".join(
            f"<key>{key}</key>" + (f"<integer>0{value}</integer>" if isinstance(value, int) else
                                   f"<string>{value}</string>") for key, value in one.items()) + "</dict>"
    return f'<?xml version="1.0"?><plist><dict><key>AlbumArt</key><array>{text}</array></dict></plist>'.encode()


if __name__ == "__main__":
    unittest.main()
