"""A plain reader of lists of pictures and of pictures, written from a description of the files alone: small steps and
big tables."""

import functools
import math
import os
import struct

# Number, width, height and form of a picture; bytes of a row and of a slot where they are not those of the pixels.
KNOWN = """
1005 80 80 565 | 1007 480 864 565 | 1009 42 30 565 | 1010 240 240 565 | 1013 220 176 turned | 1013 50 50 565
1015 130 88 565 | 1015 58 58 565 | 1016 140 140 565 | 1016 57 57 565 116 | 1017 56 56 565 | 1019 720 480 uyvy
1020 176 220 turned | 1023 176 132 565be | 1024 320 240 565 | 1027 100 100 565 | 1028 100 100 565
1029 200 200 565 | 1031 42 42 565 | 1032 42 37 565 | 1036 50 41 565 | 1055 128 128 565 | 1056 128 128 565
1060 320 320 565 | 1061 56 55 565 | 1061 56 56 565 | 1066 64 64 565 | 1067 720 480 i420 0 691200
1068 128 128 565 | 1071 240 240 565 | 1073 240 240 565 | 1074 50 50 565 | 1078 80 80 565 | 1079 80 80 565
1081 640 480 jpeg | 1083 240 320 565 | 1084 240 240 565 | 1085 88 88 565 | 1087 384 384 565 | 1089 58 58 565
1092 80 80 565 | 1093 512 512 565 | 2002 50 50 565be | 2003 150 150 565be | 3001 256 256 quarters
3002 128 128 quarters | 3003 64 64 quarters | 3004 56 55 555 | 3005 320 320 555 | 3006 56 56 555 0 8192
3007 88 88 555 0 16384 | 3008 640 480 555 | 3009 160 120 555 | 3011 80 79 555
"""
LARGEST = 16 << 20


class Format:
    def __init__(self, number, width, height, form, row=0, slot=0):
        self.number, self.width, self.height, self.form = int(number), int(width), int(height), form
        self.row, self.slot = int(row) or 2 * self.width, int(slot)

    def pixel_bytes(self):
        """None for a format in which no picture can be."""
        w, h, plain = self.width, self.height, self.row == 2 * self.width
        possible = {"uyvy": w % 2 == 0 and h % 2 == 0 and plain, "i420": w % 2 == 0 and h % 2 == 0 and plain,
                    "quarters": w == h and bin(w).count("1") == 1 and plain, "turned": plain}
        if w == 0 or h == 0 or not possible.get(self.form, self.row >= 2 * w) or self.row * h > LARGEST:
            return None
        return w * h * 3 // 2 if self.form == "i420" else self.row * h

    def fits(self, size):
        if self.form == "jpeg":
            return 1 <= size <= LARGEST
        return self.pixel_bytes() is not None and size in (self.pixel_bytes(), max(self.slot, self.pixel_bytes()))


TABLE = [Format(*one.split()) for one in KNOWN.replace("\n", "|").split("|") if one.strip()]


def format_of(number, size, stated=()):
    for one in [*stated, *TABLE]:
        if one.number == number and one.fits(size):
            return one
    side = math.isqrt(size // 2)
    square = Format(number, side, side, "565")
    return square if square.fits(size) else None


def stated_formats(formats):
    """Of dictionaries as a property list holds them."""
    forms = {"4C353635": "565", "42353635": "565be", "4C353535": "555", "79343230": "i420", "32767579": "uyvy"}
    found = []
    for one in formats:
        step = one.get("RowBytesAlignment", 0)
        row = 2 * one["RenderWidth"]
        row = -(-row // step) * step if step else row
        form = Format(one["FormatId"], one["RenderWidth"], one["RenderHeight"], forms[one["PixelFormat"]], row)
        if form.pixel_bytes() is not None:
            found.append(form)
    return found


@functools.cache
def colour565(value):
    r, g, b = value >> 11, value >> 5 & 63, value & 31
    return bytes((r << 3 | r >> 2, g << 2 | g >> 4, b << 3 | b >> 2))


@functools.cache
def colour555(value):
    return bytes((part & 31) << 3 | (part & 31) >> 2 for part in (value >> 10, value >> 5, value))


@functools.cache
def colour_yuv(y, u, v):
    def level(number):
        return min(max((number + 500) // 1000, 0), 255)
    y, u, v = 1164 * (y - 16), u - 128, v - 128
    return bytes((level(y + 1596 * v), level(y - 813 * v - 391 * u), level(y + 2018 * u)))


def quarters(pixels):
    """Rows of a square whose quarters follow each other: top left, bottom left, top right, bottom right."""
    if len(pixels) == 1:
        return [list(pixels)]
    n = len(pixels) // 4
    a, b, c, d = (quarters(pixels[i * n:(i + 1) * n]) for i in range(4))
    return [left + right for left, right in zip(a, c)] + [left + right for left, right in zip(b, d)]


def rows_of(data, form):
    """The colours of a slot, row by row; None when there are too few bytes."""
    w, h = form.width, form.height
    if len(data) < form.pixel_bytes():
        return None
    if form.form in ("565", "565be", "555"):
        order = ">" if form.form == "565be" else "<"
        colour = colour555 if form.form == "555" else colour565
        return [[colour(value) for value in struct.unpack_from(f"{order}{w}H", data, y * form.row)] for y in range(h)]
    if form.form == "turned":  # the first row stored is the last column seen
        stored = [struct.unpack_from(f">{h}H", data, 2 * h * i) for i in range(w)]
        return [[colour565(stored[w - 1 - x][y]) for x in range(w)] for y in range(h)]
    if form.form == "quarters":
        return quarters([colour555(value) for value in struct.unpack_from(f"<{w * h}H", data)])
    if form.form == "uyvy":
        lines = [data[2 * w * i:2 * w * (i + 1)] for i in range(h)]
        lines = [lines[y // 2 if y % 2 == 0 else h // 2 + y // 2] for y in range(h)]
        return [[colour_yuv(line[2 * x + 1], line[x // 2 * 4], line[x // 2 * 4 + 2]) for x in range(w)] for line in lines]
    y_plane, u_plane, v_plane = data[:w * h], data[w * h:w * h * 5 // 4], data[w * h * 5 // 4:]
    return [[colour_yuv(y_plane[y * w + x], u_plane[y // 2 * (w // 2) + x // 2], v_plane[y // 2 * (w // 2) + x // 2])
             for x in range(w)] for y in range(h)]


def seen_range(slot, size, padding):
    """The first row or column to be seen, and the one behind the last."""
    if padding < 0 or size == 0:
        return 0, slot
    if padding == 0:
        return 0, min(size, slot)
    if abs(size + padding - slot) <= 1:
        return (padding, slot - padding) if 2 * padding < slot else (0, slot)
    return (padding, size) if padding < size <= slot else (0, slot)


def seen_of(rows, part):
    vertical, horizontal, height, width = part
    top, bottom = seen_range(len(rows), height, vertical)
    left, right = seen_range(len(rows[0]), width, horizontal)
    return [row[left:right] for row in rows[top:bottom]]


def picture(rows):
    """Width, height and bytes, as the reader's printer gives them."""
    if not rows:
        return [0, 0, ""]
    return [len(rows[0]), len(rows), b"".join(b"".join(row) for row in rows).hex()]


class ImageList:
    """images: lists of id, song and pictures; albums: lists of name, whether it holds all, and ids; broken: whether
    something was left out. None of them for a file that is no list."""

    def __init__(self, data):
        self.images, self.albums, self.broken, self.data = [], [], False, data
        jump = self.word(4) if len(data) >= 8 else 0
        self.is_list = data[:4] == b"mhfd" and 12 <= jump <= 0x1000
        if not self.is_list:
            return
        if len(data) >= 12 and self.word(8) > len(data):
            self.broken = True
        for at, end in self.children(jump, len(data)):
            if data[at:at + 4] == b"mhsd":
                self.read_set(at, end)

    def word(self, at):
        return struct.unpack_from("<I", self.data, at)[0]

    def children(self, at, end):
        """Where each chunk begins and ends, up to one that is none or too long."""
        while at < end:
            if end - at < 12 or self.data[at:at + 2] != b"mh":
                self.broken = True
                return
            jump, length = self.word(at + 4), self.word(at + 8)
            if self.data[at:at + 4] == b"mhsd" and length > end - at:
                self.broken, length = True, end - at
            if jump < 12 or jump > length or length > end - at:
                self.broken = True
                return
            yield at, at + length
            at += length

    def read_set(self, at, end):
        at += self.word(at + 4)
        if end - at < 8 or self.data[at:at + 3] != b"mhl" or not 12 <= self.word(at + 4) <= end - at:
            self.broken = True
            return
        for record, record_end in self.children(at + self.word(at + 4), end):
            if self.data[record:record + 4] == b"mhii":
                self.images.append(self.read_image(record, record_end))
            if self.data[record:record + 4] == b"mhba":
                self.albums.append(self.read_album(record, record_end))

    def field(self, at, offset, form):
        """Of a chunk's header; 0 where that is too short."""
        if offset + struct.calcsize(form) > self.word(at + 4):
            return 0
        return struct.unpack_from("<" + form, self.data, at + offset)[0]

    def kind(self, at, end):
        if self.data[at:at + 4] != b"mhod" or end - at < 16:
            return 0
        return struct.unpack_from("<H", self.data, at + 12)[0]

    def read_image(self, at, end):
        pictures = []
        for one, one_end in self.children(at + self.word(at + 4), end):
            kind = self.kind(one, one_end)
            if kind in (2, 5):
                for inner, inner_end in self.children(one + self.word(one + 4), one_end):
                    if self.data[inner:inner + 4] == b"mhni":
                        pictures.append(self.read_picture(inner, inner_end, kind == 5))
        return [self.field(at, 0x10, "I"), self.field(at, 0x14, "Q"), pictures]

    def read_picture(self, at, end, whole):
        name = b""
        for one, one_end in self.children(at + self.word(at + 4), end):
            if self.kind(one, one_end) == 3:
                name = self.text(one, one_end)
        numbers = [self.field(at, offset, form) for offset, form in
                   ((0x10, "I"), (0x14, "I"), (0x18, "I"), (0x1C, "h"), (0x1E, "h"), (0x20, "H"), (0x22, "H"))]
        return [*numbers, name.hex(), whole]

    def read_album(self, at, end):
        name, photos = b"", []
        for one, one_end in self.children(at + self.word(at + 4), end):
            if self.kind(one, one_end) == 1:
                name = self.text(one, one_end)
            if self.data[one:one + 4] == b"mhia":
                photos.append(self.field(one, 0x10, "I"))
        return [name.hex(), self.field(at, 0x1E, "B") == 1, photos]

    def text(self, at, end):
        if end - at < 0x24:
            return b""
        length = self.word(at + 0x18)
        if length > end - at - 0x24 or length > 4096:
            return b""
        body = self.data[at + 0x24:at + 0x24 + length]
        if self.data[at + 0x1C] != 2:
            return body
        text = body[:len(body) & ~1].decode("utf-16-le", "surrogatepass")
        return "".join("\uFFFD" if 0xD800 <= ord(one) < 0xE000 else one for one in text).encode()

    def has_cover(self, image, persistent_id, mark):
        """Of a song by what its header says; None when it says nothing."""
        if not image and not persistent_id and mark is None:
            return None
        if mark is False:
            return False
        for number, song, pictures in self.images:
            if (number == image) if image else (persistent_id and song == persistent_id):
                return bool(pictures)
        return False


def covers_of(player):
    """The list of covers of a player; None of a database by itself."""
    path = os.path.join(player, "iPod_Control", "Artwork", "ArtworkDB")
    if not os.path.exists(path):
        return None
    with open(path, "rb") as file:
        return ImageList(file.read())
