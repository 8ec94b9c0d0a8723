"""What the environment offers to host code, as far as the pages use it. Names are in small letters."""

import datetime
import os
import shutil
import struct

from .lexer import BasicError
from .session import FolderItem
from .text import CODECS, UTF8, Text

ENCODINGS = {"utf8": UTF8, "utf16": 0x0100, "ascii": 0x0600, "macroman": 0x0000, "isolatin1": 0x0201, "shiftjis": 0x0A01}


def wrapped(number):
    """An Integer has 32 bits."""
    return (number + 2**31) % 2**32 - 2**31


class TextEncoding:
    def __init__(self, code):
        self.code = code


class Date:
    """Counts seconds from 1904, as a number that is never negative."""

    START = datetime.datetime(1904, 1, 1)
    WRITABLE = {"totalseconds": float}

    def __init__(self):
        self.totalseconds = 0.0

    def _moment(self):
        if self.totalseconds < 0:
            raise BasicError("a Date of negative seconds")
        return self.START + datetime.timedelta(seconds=self.totalseconds)

    def get(self, name):
        if name == "totalseconds":
            return self.totalseconds
        if name == "sqldate":
            return Text.of(self._moment().strftime("%Y-%m-%d"))
        if name == "sqldatetime":
            return Text.of(self._moment().strftime("%Y-%m-%d %H:%M:%S"))
        raise BasicError(f"a Date has no {name}")


class MemoryBlock:
    """Bytes that are read and written as 32-bit numbers, in either byte order."""

    WRITABLE = {"littleendian": bool}

    def __init__(self, size):
        self._data = bytearray(size)
        self.littleendian = True

    def _form(self, name):
        if name != "long":
            raise BasicError(f"a MemoryBlock has no {name}")
        return "<i" if self.littleendian else ">i"

    def call(self, name, arguments):
        return struct.unpack_from(self._form(name), self._data, *arguments)[0]

    def store(self, name, arguments, value):
        struct.pack_into(self._form(name), self._data, *arguments, value)


class Library:
    """The functions, and the members of folder items. `output` is what was printed."""

    def __init__(self, session):
        self.session = session
        self.output = []
        self.functions = {
            "print": (self._print, "t"),
            "msgbox": (self._print, "t"),
            "str": (lambda n: Text.of(self._number(n)), "n"),
            "format": (self._format, "nt"),
            "lenb": (lambda t: len(t.data), "t"),
            "midb": (lambda t, at, *n: Text(self._middle(t.data, at, *n), t.encoding), "ti?i"),
            "ascb": (lambda t: t.data[0], "t"),
            "instr": (lambda t, part: t.characters().casefold().find(part.characters().casefold()) + 1, "tt"),
            "nthfield": (lambda t, mark, n: Text.of((t.characters().split(mark.characters()) + [""] * n)[n - 1]), "tti"),
            "countfields": (lambda t, mark: len(t.characters().split(mark.characters())), "tt"),
            "defineencoding": (lambda t, e: Text(t.data, e.code), "te"),
            "convertencoding": (lambda t, e: session.converted(t, e.code), "te"),
            "volume": (lambda n: self.item(list(session.volumes.values())[n]), "i"),
        }
        self.modules = {"bitwise": self._bitwise, "encodings": self._encodings}
        self.classes = {"date": Date, "memoryblock": MemoryBlock}

    KINDS = {"t": Text, "n": (int, float), "i": int, "e": TextEncoding, "a": object}

    def call(self, name, arguments):
        function, kinds = self.functions[name]
        wanted = kinds.replace("?", "")
        least = kinds.index("?") if "?" in kinds else len(wanted)
        fits = least <= len(arguments) <= len(wanted) and all(
            isinstance(argument, self.KINDS[kind]) and (kind == "a" or not isinstance(argument, bool))
            for argument, kind in zip(arguments, wanted))
        if not fits:
            raise BasicError(f"{name} does not take {arguments}")
        return function(*arguments)

    def _print(self, text):
        self.output += self.session.converted(text, UTF8).characters().split("\n")

    @staticmethod
    def _number(number):
        if number != int(number):
            raise BasicError("Str of a fraction is not the same everywhere")
        return str(int(number))

    @staticmethod
    def _format(number, pattern):
        zeros = pattern.characters()
        if number < 0 or number != int(number) or set(zeros) != {"0"}:
            raise BasicError(f"Format knows no {number} by {zeros} here")
        return Text.of(str(int(number)).rjust(len(zeros), "0"))

    @staticmethod
    def _middle(whole, at, count=None):
        if at < 1:
            raise BasicError("positions begin at 1")
        return whole[at - 1:] if count is None else whole[at - 1:at - 1 + count]

    @staticmethod
    def _bitwise(name, arguments):
        a, b = (argument % 2**32 for argument in arguments)
        results = {"bitand": a & b, "bitor": a | b, "bitxor": a ^ b, "shiftleft": a << min(b, 32), "shiftright": a >> min(b, 32)}
        if name not in results:
            raise BasicError(f"Bitwise has no {name}")
        return wrapped(results[name])

    @staticmethod
    def _encodings(name, arguments):
        if name not in ENCODINGS or arguments or ENCODINGS[name] not in CODECS:
            raise BasicError(f"Encodings has no {name}")
        return TextEncoding(ENCODINGS[name])

    # Folder items

    def item(self, path):
        """The item of a path of this machine; the volume that it lies on comes first in its own path."""
        roots = {root: name for name, root in self.session.volumes.items() if path == root or path.startswith(root + "/")}
        if not roots:
            raise BasicError(f"{path} lies on no volume")
        root = max(roots, key=len)
        return FolderItem(path, roots[root] + ":" + path[len(root) + 1:].replace("/", ":"))

    def item_member(self, item, name, arguments):
        members = {
            "absolutepath": lambda: Text.of(item.mac_path),
            "name": lambda: Text.of(os.path.basename(item.path)),
            "exists": lambda: os.path.exists(item.path),
            "parent": lambda: self.item(os.path.dirname(item.path)),
            "child": lambda t: self.item(os.path.join(item.path, t.characters())),
            "copyfileto": lambda folder: shutil.copy(item.path, folder.path) and None,
        }
        if name not in members:
            raise BasicError(f"a FolderItem has no {name}")
        return members[name](*arguments)
