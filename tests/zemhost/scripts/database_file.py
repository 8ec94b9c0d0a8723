"""Reads a database file by itself, sharing nothing with the program under test: the texts that the class hands on
unconverted, and the bytes of the words whose meaning the exports settle."""

import struct


class File:
    """tracks: a list of {"words": bytes of the header, "texts": {type: text}}; playlists: their names."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self.data = file.read()
        self.big = self.data[:4] == b"hdfm"
        self.tracks, self.playlists = [], []
        self._walk()

    def word(self, at):
        return struct.unpack_from(">I" if self.big else "<I", self.data.ljust(at + 4, b"\0"), at)[0]

    def _walk(self):
        at, list_type, target = self.word(4), 0, None
        while at + 16 <= len(self.data):
            code = self.data[at + 2:at + 4] if not self.big else {
                b"hdsm": b"sd", b"htim": b"it", b"hpim": b"yp", b"hptm": b"ip", b"hohm": b"od",
            }.get(self.data[at:at + 4], b"")
            step = self.word(at + 4)
            if code == b"sd":
                list_type = self.word(at + 12)
            elif code == b"it":
                target = {"words": self.data[at:at + 0x40], "texts": {}}
                self.tracks.append(target)
            elif code == b"yp" and list_type == 2:
                target = {"name": None}
                self.playlists.append(target)
            elif code in (b"ip", b"yp"):
                target = None
            elif code == b"od":
                step = self.word(at + 8)
                if target is not None and self.word(at + 0x14) == 0:
                    self._take(target, self.data[at:at + step])
            if step == 0:
                break
            at += step

    def _take(self, target, body):
        kind, encoding, length = (struct.unpack_from(">I" if self.big else "<I", body.ljust(0x20, b"\0"), at)[0]
                                  for at in (12, 0x18, 0x1c))
        if encoding == 1:
            text = body[0x28:].decode("utf-16-be" if self.big else "utf-16-le", "replace")
        elif "texts" in target and kind in (15, 16) and not self.big:
            text = body[0x18:].decode("utf-8")
        else:
            characters = body[0x28:0x28 + length] if "texts" in target else body[0x28:]
            text = characters.decode("utf-8" if encoding == 2 else "mac-roman", "replace")
        if "texts" in target:
            target["texts"][kind] = target["texts"].get(kind, "") + text
        elif kind == (100 if self.big else 1):
            target["name"] = text

    def text(self, track, name):
        number = {"title": (1, 2), "album": (3, 3), "artist": (4, 4), "genre": (5, 5),
                  "composer": (12, 12)}[name][1 if self.big else 0]
        return self.tracks[track]["texts"].get(number) or None
