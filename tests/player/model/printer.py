"""Runs the program that prints what the readers make of files, and tells how many random files to try."""

import json
import os
import subprocess


def printed(kind, files):
    """What the reader of this kind makes of each file, in order."""
    done = subprocess.run([os.path.join(os.environ["PRINTERS"], "print_player"), kind],
                          input="\n".join(files).encode(), stdout=subprocess.PIPE, check=True)
    return [json.loads(line) for line in done.stdout.splitlines()]


def scaled(usual):
    """How many of these many random files to try: ZEM_TEST_SCALE percent, all when it is not set or empty."""
    return max(1, usual * int(os.environ.get("ZEM_TEST_SCALE") or 100) // 100)
