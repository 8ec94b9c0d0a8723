"""Counts the instructions of a load and of one call of each kind under callgrind, and compares them with the
committed counts: fails when one has grown by more than 5 %, or when four times the songs take much more than
four times the instructions.

usage: count_instructions.py PROGRAM COUNTS [--update]
PROGRAM is the built bench/instructions, COUNTS the file of lines "count name"; --update writes it anew."""

import pathlib
import re
import subprocess
import sys
import tempfile

ALLOWED_GROWTH = 0.05
FOUR_TIMES = ", 4 times the songs"  # what such a name counts may be 4 times what it counts without, and a little


def measure(program):
    """Instructions by the name of the work, in the order of the program."""
    with tempfile.TemporaryDirectory() as folder:
        out = pathlib.Path(folder) / "counts"
        run = subprocess.run(
            ["setarch", "--addr-no-randomize", "valgrind", "--tool=callgrind", "--collect-atstart=no", f"--callgrind-out-file={out}", program],
            capture_output=True, text=True)
        if run.returncode != 0 or run.stdout != "done\n":
            sys.exit(f"{program} did not run under callgrind:\n{run.stderr}")
        counts = {}
        for part in sorted(out.parent.glob("counts.*"), key=lambda path: int(path.suffix[1:])):
            text = part.read_text()
            name = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.M)
            if name:
                counts[name[1]] = int(re.search(r"^totals: (\d+)$", text, re.M)[1])
        return counts


def read(path):
    """The committed counts by name."""
    lines = [line.split(maxsplit=1) for line in path.read_text().splitlines() if not line.startswith("#")]
    return {name: int(count) for count, name in lines}


def main():
    program, path = sys.argv[1], pathlib.Path(sys.argv[2])
    counts = measure(program)
    if sys.argv[3:] == ["--update"]:
        head = [line for line in path.read_text().splitlines() if line.startswith("#")]
        path.write_text("\n".join(head + [f"{count:>10} {name}" for name, count in counts.items()]) + "\n")
        return 0
    committed = read(path)
    wrong = []
    for name in list(committed) + [name for name in counts if name not in committed]:
        if name not in committed or name not in counts:
            wrong.append(f"{name}: {'not counted' if name in committed else 'not committed'}")
            continue
        growth = counts[name] / committed[name] - 1
        print(f"{counts[name]:>10} {100 * growth:+6.1f} %  {name}")
        if growth > ALLOWED_GROWTH:
            wrong.append(f"{name}: {counts[name]} instructions, more than 5 % over {committed[name]}")
    for name, count in counts.items():
        if name.endswith(FOUR_TIMES) and count > 4.2 * counts[name.removesuffix(FOUR_TIMES)]:
            wrong.append(f"{name}: {count} instructions, more than 4.2 times those of the songs")
    for line in wrong:
        print(line, file=sys.stderr)
    return 1 if wrong else 0


sys.exit(main())
