"""What the class answers to lines of host code, one call at a time."""

import re

from program import run


class FolderItem(str):
    """The answer of a method that gives a file."""


def _answer(line):
    if line in ("True", "False"):
        return line == "True"
    if line == "nil":
        return None
    if re.fullmatch(r"-?\d+", line):
        return int(line)
    match = re.fullmatch(r'(.*[")])( \([^()"]*\))?', line)
    if not match:
        raise ValueError(f"no value of host code: {line}")
    parts = re.findall(r'"((?:[^"]|"")*)"|Chr\((\d+)\)', match[1])
    text = "".join(chr(int(code)) if code else quoted.replace('""', '"') for quoted, code in parts)
    encoding = match[2]
    return FolderItem(text) if encoding in (None, " (no such file)") else text


def answers(path, lines):
    """What the class answers to these lines of host code, each with a fresh load for every thousand."""
    result = []
    for start in range(0, len(lines), 1000):
        part = lines[start:start + 1000]
        done = run("call", path, *part)
        if done.status != 0:
            raise AssertionError(done.message)
        shown = done.text.split("\n")[:-1]
        if len(shown) != len(part):
            raise AssertionError(f"{len(part)} calls and {len(shown)} answers")
        result += map(_answer, shown)
    return result
