"""What the scripts share: running the built program, and waiting for what it does.

Each script is called as SCRIPT ZEMHOST PLAYER, with the built program and the sample player.
"""

import os
import subprocess
import sys
import time
import unittest

ZEMHOST, PLAYER = sys.argv[1:3] if len(sys.argv) >= 3 else ("zemhost", "player")


def start(*arguments, **options):
    """The running program, its output and errors in pipes unless `options` say otherwise."""
    options.setdefault("stdout", subprocess.PIPE)
    options.setdefault("stderr", subprocess.PIPE)
    return subprocess.Popen([ZEMHOST, *map(str, arguments)], **options)


def run(*arguments, **options):
    """Runs it to its end: status, output, errors, both as text."""
    process = start(*arguments, **options)
    out, err = process.communicate(timeout=100)
    return process.returncode, (out or b"").decode(), (err or b"").decode()


def wait_until(what, seconds=20):
    """Waits until `what` answers something true, and returns it."""
    end = time.monotonic() + seconds
    while not (found := what()):
        if time.monotonic() > end:
            raise AssertionError("waited in vain")
        time.sleep(0.002)
    return found


def compressed(database, level=6):
    """The compressed form of a player's database, made by another writer than the one under test knows."""
    import struct
    import zlib

    header = struct.unpack_from("<I", database, 4)[0]
    body = zlib.compress(database[header:], level)
    out = bytearray(database[:header])
    struct.pack_into("<I", out, 8, header + len(body))
    return bytes(out) + body


def database_of(player):
    with open(os.path.join(player, "iPod_Control", "iTunes", "iTunesDB"), "rb") as file:
        return file.read()


def main():
    unittest.main(argv=[sys.argv[0], "-v"])
