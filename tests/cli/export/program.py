"""Runs the built program, and gets from it, one call at a time, what the class answers."""

import os
import re
import resource
import subprocess

ZEMHOST = os.environ["ZEMHOST"]
SAMPLES = os.environ["SAMPLES"]
SHARED = os.environ["SHARED"]
SOURCE = os.environ["SOURCE"]
WRITE_GENERATED = os.environ["WRITE_GENERATED"]

PLAYER = os.path.join(SAMPLES, "player")
DESKTOP = os.path.join(SAMPLES, "big-endian.library")

# A sanitizer's search for leaks would fail runs for the string that stays with the host by contract.
os.environ["ASAN_OPTIONS"] = "detect_leaks=0"


class Outcome:
    def __init__(self, status, out, err):
        self.status, self.out, self.err = status, out, err

    @property
    def text(self):
        return self.out.decode("utf-8")

    @property
    def message(self):
        return self.err.decode("utf-8")


def run(*arguments, file_size=None, **options):
    """Standard output and error as bytes; `file_size` limits the bytes of a file, as a full disk would."""

    def limit():
        if file_size is not None:
            resource.setrlimit(resource.RLIMIT_FSIZE, (file_size, file_size))

    options.setdefault("stdout", subprocess.PIPE)
    done = subprocess.run([ZEMHOST, *map(str, arguments)], stderr=subprocess.PIPE, preexec_fn=limit,
                          check=False, **options)
    return Outcome(done.returncode, done.stdout, done.stderr)


def generated(path, songs, playlists=3, entries=50, variant="little"):
    subprocess.run([WRITE_GENERATED, path, str(songs), str(playlists), str(entries), variant], check=True)
    return path


def real_files():
    folder = os.path.join(SHARED, "data", "real")
    names = sorted(os.listdir(folder)) if os.path.isdir(folder) else []
    return [os.path.join(folder, name) for name in names
            if name.endswith((".itunesdb", ".library")) and not name.startswith("encrypted")]


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
