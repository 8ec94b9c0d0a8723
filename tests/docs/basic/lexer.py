"""Host code as tokens."""

import re
from dataclasses import dataclass


class BasicError(Exception):
    """Host code that cannot be read, or that fails when it runs."""


@dataclass(frozen=True)
class Token:
    kind: str  # number, string, name, operator, or end (of a line)
    text: str  # names in small letters, strings without their quotes
    line: int


PATTERN = re.compile(r"""
    (?P<blank>[ \t]+|//.*|'.*)
  | (?P<continued>_[ \t]*(//.*)?$)
  | (?P<number>&[hH][0-9A-Fa-f]+|\d+\.\d+|\d+)
  | "(?P<string>([^"]|"")*)"
  | (?P<name>[A-Za-z][A-Za-z0-9_]*)
  | (?P<operator><>|<=|>=|[-+*/\\^=<>(),.:])
""", re.VERBOSE)


def _tokens_of(line, number):
    at = 0
    while at < len(line):
        match = PATTERN.match(line, at)
        if not match:
            raise BasicError(f"line {number}: cannot be read from here: {line[at:]}")
        at = match.end()
        kind = match.lastgroup
        if kind == "continued":
            return
        if kind == "string":
            yield Token(kind, match["string"].replace('""', '"'), number)
        elif kind == "name":
            yield Token(kind, match["name"].lower(), number)
        elif kind != "blank":
            yield Token(kind, match[kind], number)
    yield Token("end", "", number)


def tokens(text, first_line):
    """The tokens of host code; every line that is not continued ends with one of the kind `end`."""
    result = []
    for number, line in enumerate(text.split("\n"), first_line):
        result += _tokens_of(line, number)
    return result or [Token("end", "", first_line)]
