"""Prints the ratios we hold ourselves to, from the results of one `bench/run`."""

import json
import os
import pathlib
import statistics
import subprocess
import sys
import time

import rescue


def medians(path):
    """Median nanoseconds of processor time for each item (or iteration) by benchmark name."""
    scale = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    times = {}
    for row in json.loads(path.read_text())["benchmarks"]:
        if row.get("aggregate_name") != "median":
            continue
        manual = row["run_name"].endswith("/manual_time")
        time = row["real_time" if manual else "cpu_time"] * scale[row["time_unit"]]
        if "items_per_second" in row:
            time = 1e9 / row["items_per_second"]
        if "bytes_per_second" in row:
            times[row["run_name"] + " B/s"] = row["bytes_per_second"]
        times[row["run_name"].replace("/iterations:2", "").replace("/manual_time", "")] = time
    return times


def first(program, name):
    """Nanoseconds of processor time that a benchmark's first run in a process takes: the median of 40 processes."""
    times = []
    for _ in range(40):
        done = subprocess.run([program, f"--benchmark_filter=^{name}", "--benchmark_min_time=0.000001",
                               "--benchmark_format=json"], capture_output=True, check=True)
        run, = json.loads(done.stdout)["benchmarks"]
        times.append(run["real_time"])
    return statistics.median(times)


def seconds(*command):
    """The best of three times that a command takes."""
    best = None
    for _ in range(3):
        start = time.perf_counter()
        subprocess.run(command, stdout=subprocess.DEVNULL, check=True)
        took = time.perf_counter() - start
        best = took if best is None else min(best, took)
    return best


def peak(*command):
    """Megabytes of memory that a command takes at most."""
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    return os.wait4(process.pid, 0)[2].ru_maxrss // 1000


def main():
    folder = pathlib.Path(sys.argv[1])
    load = medians(folder / "load_bench.json")
    call = medians(folder / "call_bench.json")
    jis = medians(folder / "shift_jis_bench.json")
    rows, beside = [], []

    def at_most(what, value, limit, unit="x"):
        rows.append((what, f"{value:.2f} {unit}", f"at most {limit:g} {unit}", value <= limit))

    def at_least(what, value, limit):
        rows.append((what, f"{value:.2f} x", f"at least {limit:g} x", value >= limit))

    def load_over_floor(texts, songs):
        return load[f"Load/{texts}/{songs}"] / load[f"Floor/{texts}/{songs}"]

    for songs, limit in ((10000, 2.0), (40000, 2.5), (100000, 2.5)):
        at_most(f"load over floor, {songs} songs", load_over_floor("usual", songs), limit)
    for what, name in (("2000 songs of ten objects", "ten_objects/2000"), ("the real library", "real")):
        if f"Load/{name}" in load:
            at_most(f"load over floor, {what}", load[f"Load/{name}"] / load[f"Floor/{name}"], 1.8)
        if f"Other/{name}" in load:
            at_least(f"libgpod over a load, {what}", load[f"Other/{name}"] / load[f"Load/{name}"], 5)
            # One load is what most processes do; memory is fresh there.
            once = {kind: first(folder.parent / "load_bench", f"{kind}/{name}") for kind in ("Floor", "Load", "Other")}
            at_most(f"first load of a process over its first floor, {what}", once["Load"] / once["Floor"], 1.8)
            at_least(f"libgpod over the first load of a process, {what}", once["Other"] / once["Load"], 5)
    at_most("load over floor, 100000 songs, big-endian",
            load["Load/big_endian/100000"] / load["Floor/big_endian/100000"], 2.5)
    if "Load/million/1000000" in load:
        at_most("time per song, 1000000 over 10000",
                load["Load/million/1000000"] / 100 / load["Load/usual/10000"], 1.5)
    at_most("hostile IDs: time per song, 20000 over 10000",
            load["Load/hostile/20000"] / 2 / load["Load/hostile/10000"], 1.5)
    memory = (folder / "memory.txt").read_text().split()
    at_most("peak memory of a load over the file's size", float(memory[2]), 2.0)
    for ids in ("known", "unknown", "known_after_changes", "unknown_after_changes"):
        at_most(f"FindRefIdx, {ids.replace('_', ' ')}", call[f"FindRefIdx/{ids}"], 25, "ns")
    for texts in ("missing", "distinct", "equal"):
        share = load[f"Group/{texts}/100000"] / load[f"Load/{texts}/100000"]
        at_most(f"grouping, texts {texts}, share of the load", 100 * share, 40 if texts == "distinct" else 15, "%")
    for texts in ("japanese_titles", "mixed_titles", "ascii_titles", "japanese_text", "mixed_text", "ascii_text"):
        at_least(f"Shift_JIS over iconv, {texts.replace('_', ' ')}",
                 jis[f"Ours/{texts} B/s"] / jis[f"Iconv/{texts} B/s"], 6 if texts.endswith("titles") else 2)
    for method, limit in (("Integer", 8), ("IntegerOfEntry", 8), ("IntegerOfTrackID", 8), ("Title", 60),
                          ("TitleUnconverted", 60), ("TitleInShiftJIS", 60), ("Path", 60)):
        at_most(f"method: {method}", call[method], limit, "ns")

    bare_load, bare_call = (medians(folder / f"{name}-unhardened.json") for name in ("load_bench", "call_bench"))
    at_most("hardened over not: load, 100000 songs", load["Load/usual/100000"] / bare_load["Load/usual/100000"], 1.1)
    for method in ("Integer", "Title", "Path"):
        at_most(f"hardened over not: method {method}", call[method] / bare_call[method], 1.25)

    zemhost = sys.argv[2]
    libraries = [f"{sys.argv[3]}/usual-{songs}" for songs in (10000, 100000)]
    few, many = (seconds(zemhost, "songs", library) for library in libraries)
    at_most("zemhost songs, time per song, 100000 over 10000", many / 10 / few, 1.5)
    compared = seconds(zemhost, "compare", libraries[1], libraries[1])
    at_most("zemhost compare of 100000 songs with themselves over zemhost songs", compared / many, 2.5)

    # `rescue` ends when its copies are on the disk, so cp -r has the same goal only with sync -f.
    for what, ratio in rescue.ratios(zemhost, sys.argv[3], sys.argv[4] == "1"):
        if "sync" in what:
            at_least(what, ratio, 0.9)
        else:
            beside.append(f"{what}: {ratio:.2f} x")

    pages = [pathlib.Path(f"{library}.html") for library in libraries]
    shown = [seconds(zemhost, "report", library, "-o", page) for library, page in zip(libraries, pages)]
    exported = seconds(zemhost, "export", libraries[1], "--format", "json")
    at_most("zemhost report of 100000 songs over zemhost export --format json", shown[1] / exported, 3)
    small, large = (page.stat().st_size for page in pages)
    at_most("zemhost report, bytes a song", (large - small) / 90_000, 250, "B")

    for command in (["songs"], ["export", "--format", "json"], ["check"]) if sys.argv[5] else ():
        words = [command[0], libraries[1], *command[1:]]
        ratio = seconds(zemhost, *words) / seconds(sys.argv[5], *words)
        at_most(f"zemhost {' '.join(command)} of 100000 songs over that of the other build", ratio, 1.5)
        beside.append(f"zemhost {command[0]} of 100000 songs, peak of memory: {peak(zemhost, *words)} MB, the other build "
                      f"{peak(sys.argv[5], *words)} MB")

    width = max(len(row[0]) for row in rows)
    for what, value, goal, good in rows:
        print(f"{what:<{width}}  {value:>12}  {goal:<16}  {'pass' if good else 'falls short'}")
    print(f"zemhost songs lists 100000 songs in {many:.2f} s")
    print("\n".join(beside))


main()
