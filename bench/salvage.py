#!/usr/bin/env python3
"""Measures what the salvage finds of damaged databases, and what it costs.

    python3 bench/salvage.py [--damages N] BUILD DATABASE...

BUILD is a folder with the built tests, build/release. Each database is cut off at N places, 512 bytes are wiped at N,
and filled with random ones at N. Prints a table, a row for each database: of the songs whose bytes are intact after a
damage, summed over all, how many were found; how many were invented; and the processor time of `zemhost songs` on a
damaged file over that on the sound one, the median of 15 damages."""

import argparse
import json
import os
import random
import resource
import statistics
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "tests", "player", "model"))
from salvage_model import records  # noqa: E402


def seconds(program, path):
    """The processor time of listing a database, the best of five runs."""
    times = []
    for _ in range(5):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        subprocess.run([program, "songs", path], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        times.append(after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
    return min(times)


def time_ratio(program, data, folder):
    path = os.path.join(folder, "database")

    def listed(content):
        with open(path, "wb") as file:
            file.write(content)
        return seconds(program, path)

    sound, numbers, damaged = listed(data), random.Random(1), []
    for number in range(15):
        at = numbers.randrange(len(data))
        fill = [b"", bytes(512), numbers.randbytes(512)][number % 3]
        damaged.append(listed((data[:at] + fill + data[at + len(fill):] if fill else data[:at])[:len(data)]))
    return statistics.median(damaged) / sound


def main():
    options = argparse.ArgumentParser()
    options.add_argument("--damages", type=int, default=1000)
    options.add_argument("build")
    options.add_argument("databases", nargs="+")
    arguments = options.parse_args()
    measure = os.path.join(arguments.build, "tests", "player", "measure_salvage")
    program = os.path.join(arguments.build, "zemhost", "zemhost")
    print("| database | bytes | songs | damages | intact songs found | intact entries found | songs, entries, lists invented"
          " | time |\n|---|---|---|---|---|---|---|---|")
    with tempfile.TemporaryDirectory() as folder:
        for path in arguments.databases:
            with open(path, "rb") as file:
                data = file.read()
            found = records(data)
            list_of_records = os.path.join(folder, "records")
            with open(list_of_records, "w", encoding="utf-8") as out:
                out.writelines(" ".join(map(str, record)) + "\n" for record in found)
            done = subprocess.run([measure, path, list_of_records, *[str(arguments.damages)] * 3, "1"],
                                  stdout=subprocess.PIPE, check=True)
            tallies = json.loads(done.stdout).values()

            def total(name):
                return sum(tally[name] for tally in tallies)

            def share(kind):
                intact = total("intact_" + kind)
                return f"{100 * total('found_' + kind) / intact:.3f} % of {intact:,}" if intact else "none there"

            print(f"| {os.path.basename(path)} | {len(data):,} | {sum(kind == 'S' for kind, *_ in found):,} | "
                  f"{total('damages'):,} | {share('songs')} | {share('entries')} | {total('invented_songs')}, "
                  f"{total('invented_entries')}, {total('invented_lists')} | {time_ratio(program, data, folder):.2f} x |",
                  flush=True)
            for tally in tallies:
                if tally["first_fault"]:
                    print(f"{path}: {tally['first_fault']}", file=sys.stderr)


if __name__ == "__main__":
    main()
