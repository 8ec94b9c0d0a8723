#!/usr/bin/env python3
"""Measures copying music off a player against `cp -r`.

    python3 bench/rescue.py [--quick] [--rounds N] ZEMHOST FOLDER

Makes players of 20,000 files of 4 KB and of 2,000 files of 5 MB in FOLDER (the first alone with --quick; the second needs
room for 30 GB), and copies each alternately with `cp -r` and with `zemhost rescue`, N times. Before each copying the
player's files are dropped from the system's memory, as those of a player that was just connected are not in it.
`rescue` ends when its copies are on the disk, `cp -r` before; so its time is also taken with `sync -f` behind it. Prints
the median rates as ratios; all that was made is removed. Wait five minutes before another run: for that long ext4 without
a journal passes over the places of removed files, and whatever makes files then takes several times as long."""

import argparse
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "tests", "zemhost", "scripts"))
sys.dont_write_bytecode = True
from database_writer import library  # noqa: E402

FOLDERS = 50


def write_player(root, count, size):
    """A player whose songs have files of this size, each with a content of its own. Returns the files."""
    block, songs, files = os.urandom(max(size, 1 << 16)), [], []
    for place in range(count):
        path = f"F{place % FOLDERS:02}/S{place:05}.mp3"
        file = os.path.join(root, "iPod_Control", "Music", path)
        os.makedirs(os.path.dirname(file), exist_ok=True)
        with open(file, "wb") as out:
            out.write(b"%016d" % place + block[:size - 16])
        album = place // 12
        songs.append({"title": f"Song {place}", "album": f"Album {album}", "artist": f"Artist {album % 97}",
                      "path": ":iPod_Control:Music:" + path.replace("/", ":"), "size": size, "track": place % 12 + 1})
        files.append(file)
    os.makedirs(os.path.join(root, "iPod_Control", "iTunes"))
    with open(os.path.join(root, "iPod_Control", "iTunes", "iTunesDB"), "wb") as out:
        out.write(library(songs))
    return files


def forget(files):
    """Drops the files, which are on the disk, from the system's memory."""
    for name in files:
        file = os.open(name, os.O_RDONLY)
        os.posix_fadvise(file, 0, 0, os.POSIX_FADV_DONTNEED)
        os.close(file)


def seconds(*command):
    start = time.perf_counter()
    subprocess.run(command, stdout=subprocess.DEVNULL, check=True)
    return time.perf_counter() - start


def expect_all(destination, count, size):
    """What was measured must be the copying of all of it."""
    found = [os.path.getsize(os.path.join(at, name)) for at, _, names in os.walk(destination) for name in names
             if name.endswith(".mp3")]
    if found != [size] * count:
        sys.exit(f"bench/rescue.py: {destination} holds {len(found)} songs, not {count} of {size} bytes")


def measure(zemhost, folder, count, size, rounds, keep):
    """Rows of the table: what, ratio. With `keep` nothing is removed before the end."""
    root = os.path.join(folder, "player")
    files = write_player(root, count, size)
    subprocess.run(["sync", "-f", folder], check=True)
    plain, synced, rescued = [], [], []
    for number in range(rounds):
        copy, music = (os.path.join(folder, f"{name}-{number}") for name in ("copy", "music"))
        forget(files)
        plain.append(seconds("cp", "-r", root, copy))
        synced.append(plain[-1] + seconds("sync", "-f", copy))
        expect_all(copy, count, size)
        if not keep:
            shutil.rmtree(copy)
            subprocess.run(["sync", "-f", folder], check=True)
        forget(files)
        rescued.append(seconds(zemhost, "rescue", root, music))
        expect_all(music, count, size)
        if not keep:
            shutil.rmtree(music)
            subprocess.run(["sync", "-f", folder], check=True)
    what = f"{count} files of {size} bytes"
    times = [statistics.median(times) for times in (plain, synced, rescued)]
    print(f"{what}: cp -r {times[0]:.1f} s, with sync -f {times[1]:.1f} s, rescue {times[2]:.1f} s", file=sys.stderr)
    return [(f"rescue over cp -r and sync -f, {what}", times[1] / times[2]),
            (f"rescue over cp -r alone, {what}", times[0] / times[2])]


def ratios(zemhost, folder, quick, rounds=3):
    """The rate of rescue over that of cp -r, by what was copied; above 1 rescue is the faster."""
    rows = []
    for count, size, keep in ((20_000, 4096, True), (2_000, 5_000_000, False))[:1 if quick else 2]:
        with tempfile.TemporaryDirectory(dir=folder) as place:
            rows += measure(zemhost, place, count, size, rounds, keep)
    return rows


def main():
    options = argparse.ArgumentParser()
    options.add_argument("--quick", action="store_true")
    options.add_argument("--rounds", type=int, default=3)
    options.add_argument("zemhost")
    options.add_argument("folder")
    arguments = options.parse_args()
    for what, ratio in ratios(arguments.zemhost, arguments.folder, arguments.quick, arguments.rounds):
        print(f"{what}: {ratio:.2f} x")


if __name__ == "__main__":
    main()
