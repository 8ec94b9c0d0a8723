"""Strings of host code: bytes that know their encoding."""

from dataclasses import dataclass

from .lexer import BasicError

UTF8 = 0x08000100
# What Python calls the encodings that host code can name, by their Mac OS codes.
CODECS = {UTF8: "utf-8", 0x0100: "utf-16-be", 0x0600: "ascii", 0x0000: "mac-roman", 0x0201: "latin-1", 0x0A01: "shift-jis"}


@dataclass(frozen=True)
class Text:
    data: bytes
    encoding: int | None  # none: bytes of which the host does not know what they mean

    @staticmethod
    def of(characters):
        return Text(characters.encode("utf-8"), UTF8)

    def characters(self):
        """As Python's text. Throws BasicError for bytes that are no text in the encoding."""
        if not self.data:
            return ""
        try:
            return self.data.decode(CODECS[self.encoding])
        except (KeyError, UnicodeDecodeError) as error:
            raise BasicError(f"{self.data!r} of the encoding {self.encoding} is no text: {error}") from error

    def joined(self, other):
        if not self.data or not other.data or self.encoding == other.encoding:
            return Text(self.data + other.data, self.encoding if self.data else other.encoding)
        return Text.of(self.characters() + other.characters())

    def same(self, other):
        """What `=` says: case does not count."""
        if self.encoding == other.encoding and self.data == other.data:
            return True
        return self.characters().casefold() == other.characters().casefold()
