"""What a command must not do, seen from outside: files opened, files changed, and bytes that steer a terminal."""

import ctypes
import os
import re
import stat
import struct

_LIBC = ctypes.CDLL(None, use_errno=True)
_EVENTS = {0x1: "read", 0x2: "written", 0x4: "changed", 0x20: "opened", 0x40: "moved", 0x80: "moved", 0x100: "made",
           0x200: "removed"}
_IGNORED, _OVERFLOW = 0x8000, 0x4000


class Watch:
    """Notices each opening, reading and writing of what lies in some folders."""

    def __init__(self, folders):
        self.number = _LIBC.inotify_init1(os.O_NONBLOCK | os.O_CLOEXEC)
        if self.number < 0:
            raise OSError(ctypes.get_errno(), "inotify")
        self.folders = {}
        for folder in folders:
            watch = _LIBC.inotify_add_watch(self.number, os.fsencode(folder), sum(_EVENTS))
            if watch < 0:
                raise OSError(ctypes.get_errno(), str(folder))
            self.folders[watch] = str(folder)

    def close(self):
        os.close(self.number)

    def seen(self):
        """What happened since the last call: "opened FILE"."""
        found = set()
        while True:
            try:
                events = os.read(self.number, 65536)
            except BlockingIOError:
                return sorted(found)
            while events:
                watch, mask, _, length = struct.unpack_from("iIII", events)
                name = os.fsdecode(events[16:16 + length].rstrip(b"\0"))
                events = events[16 + length:]
                if mask & _OVERFLOW:
                    found.add("too much happened to be counted")
                found |= {f"{word} {os.path.normpath(os.path.join(self.folders.get(watch, '?'), name))}"
                          for bit, word in _EVENTS.items() if mask & bit}


def manifest(folder):
    """Each file below a folder, and what changes when somebody writes it; links are not followed."""
    found = {}

    def add(name, status, target):
        found[name] = (status.st_mode, status.st_ino, status.st_size, status.st_mtime_ns, status.st_ctime_ns, target)

    top = os.fspath(folder)
    add(".", os.lstat(top), "")
    # By descriptors, since paths of hostile players are longer than a system call takes.
    for where, folders, files, descriptor in os.fwalk(top):
        for name in folders + files:
            status = os.lstat(name, dir_fd=descriptor)
            target = os.readlink(name, dir_fd=descriptor) if stat.S_ISLNK(status.st_mode) else ""
            add(os.path.normpath(os.path.join(os.path.relpath(where, top), name)), status, target)
    return found


def changes(before, after):
    """How two manifests differ: "made NAME"."""
    words = [(set(after) - set(before), "made"), (set(before) - set(after), "removed"),
             ({name for name in set(before) & set(after) if before[name] != after[name]}, "changed")]
    return [f"{word} {name}" for names, word in words for name in sorted(names)]


# What the program itself writes: styles, and the line that shows how far a rescue is.
_STYLES = re.compile("\x1b\\[(?:1|1;31|0)m")
_PROGRESS = re.compile("\r\\[[#.]{20}\\] [ -~]*|\r +\r")
_DIRECTIONS = "\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069"
_STEERING = re.compile(f"[\0-\x09\x0b-\x1f\x7f-\x9f\u2028\u2029{_DIRECTIONS}]")


def steering(shown, has_progress):
    """The first bytes of what a terminal was sent that could steer it or reorder a line; None when there are none."""
    try:
        text = shown.decode("utf-8")
    except UnicodeDecodeError as error:
        return f"{shown[max(0, error.start - 20):error.start + 20]!r} is no UTF-8"
    text = re.sub("\r{1,2}\n", "\n", _STYLES.sub("", text))  # a terminal adds one of its own
    if has_progress:
        text = _PROGRESS.sub("", text)
    found = _STEERING.search(text)
    return f"{text[max(0, found.start() - 20):found.end() + 20]!r}" if found else None
