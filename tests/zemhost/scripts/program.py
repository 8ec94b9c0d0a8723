"""Runs the built program as a person or a script would, and waits for what it does."""

import os
import pty
import re
import resource
import subprocess
import sys
import termios
import time

ZEMHOST = os.environ["ZEMHOST"]
SAMPLES = os.environ["SAMPLES"]
SHARED = os.environ["SHARED"]
SOURCE = os.environ["SOURCE"]
WRITE_GENERATED = os.environ["WRITE_GENERATED"]

PLAYER = os.path.join(SAMPLES, "player")
DESKTOP = os.path.join(SAMPLES, "big-endian.library")

# A sanitizer's search for leaks would fail runs for the string that stays with the host by contract. To note where each
# piece of memory was asked for takes half of a short run.
os.environ["ASAN_OPTIONS"] = "detect_leaks=0:malloc_context_size=1"


class Outcome:
    """Its exit status, below zero for the signal that ended it, and what it wrote, as bytes."""

    def __init__(self, status, out, err):
        self.status, self.out, self.err = status, out, err

    @property
    def text(self):
        return self.out.decode("utf-8")

    @property
    def message(self):
        return self.err.decode("utf-8")


def start(*arguments, **options):
    """The running program, its output and errors in pipes unless `options` say otherwise."""
    options.setdefault("stdout", subprocess.PIPE)
    options.setdefault("stderr", subprocess.PIPE)
    return subprocess.Popen([ZEMHOST, *map(str, arguments)], **options)


def run(*arguments, file_size=None, **options):
    """Runs it to its end. `file_size` limits the bytes of a file, as a full disk would."""
    if file_size is not None:
        options["preexec_fn"] = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (file_size, file_size))
    with start(*arguments, **options) as process:
        out, err = process.communicate(timeout=200)
    return Outcome(process.returncode, out or b"", err or b"")


def without_free_room(text):
    """The bytes of a listing without their line on the free room of the disk, to which others write meanwhile."""
    return re.sub(rb"^Free .*\n", b"", text, flags=re.MULTILINE)


class Terminal:
    """A terminal of 24 lines for the output of a program that is watched while it runs."""

    def __init__(self, width=100):
        self.ours, self.theirs = pty.openpty()
        termios.tcsetwinsize(self.theirs, (24, width))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for end in (self.ours, self.theirs):
            if end is not None:
                os.close(end)

    def started(self):
        """The program has its end now."""
        os.close(self.theirs)
        self.theirs = None

    def read_all(self):
        """What it wrote, once it has ended."""
        shown = b""
        while True:
            try:
                shown += os.read(self.ours, 65536)
            except OSError:  # the other side is closed
                return shown.decode()


def wait_until(what, seconds=20):
    """Waits until `what` answers something true, and returns it."""
    end = time.monotonic() + seconds
    while not (found := what()):
        if time.monotonic() > end:
            raise AssertionError("nothing came within the time")
        time.sleep(0.002)
    return found


def generated(path, songs, playlists=3, entries=50, variant="little"):
    subprocess.run([WRITE_GENERATED, path, str(songs), str(playlists), str(entries), variant], check=True)
    return path


def real_files():
    """The real databases that the tests know and that can be read; others beside them are named as untested."""
    folder = os.path.join(SHARED, "data", "real")
    with open(os.path.join(SOURCE, "tests", "support", "RealFiles.cpp"), encoding="utf-8") as source:
        known = re.findall(r'\{"([^"]+\.(?:itunesdb|library))"', source.read())
    for name in sorted(os.listdir(folder)) if os.path.isdir(folder) else []:
        if name not in known and not name.endswith(".md"):
            print("untested:", name, file=sys.stderr)
    paths = [os.path.join(folder, name) for name in sorted(known) if not name.startswith("encrypted")]
    return [path for path in paths if os.path.exists(path)]
