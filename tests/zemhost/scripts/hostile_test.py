#!/usr/bin/env python3
"""tools/hostile-players reports each thing that a program must not do: shown by programs that do it."""

import os
import re
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "hostile"))
from runs import COMMANDS  # noqa: E402

TOOL = os.path.join(os.environ["SOURCE"], "tools", "hostile-players")

# A program that does nothing wrong, but for what is put into it. $1 is the command, $2 the player, $3 a destination.
SOUND = """#!/bin/sh
if [ "$1" = --help ]; then
  echo Subcommands:
  for name in COMMANDS; do echo "  $name  what it does"; done
  exit
fi
FAULT
printf 'one song, caf\\303\\251\\n'
"""

# Needs that grow with the square of a file: written, read, kept, and done.
GROWING = {
    "bytes written": "sys.stdout.write('x' * (size * size // 40000))",
    "bytes read": "[open(database, 'rb').read() for _ in range(size // 20000)]",
    "kilobytes": "kept = b'x' * (size * size // 4000)",
    "seconds": "[None for _ in iter(lambda: time.process_time() < 0.4 * (size / 400000) ** 2, False)]",
}


class HostilePlayers(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.program = os.path.join(folder.name, "zemhost")

    def run_tool(self, text, *options):
        with open(self.program, "w", encoding="utf-8") as file:
            file.write(text)
        os.chmod(self.program, 0o755)
        done = subprocess.run([TOOL, "--program", self.program, "--server", os.environ["RUN_SERVER_LIBRARY"], *options],
                              capture_output=True, text=True, check=False)
        self.assertEqual(done.stderr, "")
        return done.returncode, done.stdout

    def attack(self, fault, commands=tuple(COMMANDS), options=()):
        text = SOUND.replace("COMMANDS", " ".join(commands)).replace("FAULT", fault)
        return self.run_tool(text, "--only", "^text_dots$", *options)

    def expect(self, report, fault, **more):
        status, out = self.attack(fault, **more)
        self.assertEqual(status, 1, fault)
        self.assertRegex(out, report)

    def test_nothing_is_said_of_a_sound_program(self):
        status, out = self.attack("")
        self.assertEqual(status, 0, out)
        runs = sum(map(len, COMMANDS.values()))
        self.assertRegex(out, rf"\A1 players, 0 floods, {runs} runs, 0 faults, \d+ seconds\n\Z")

    def test_reading_outside_is_reported(self):
        self.expect(r"info {player}: outside the player: opened .*/outside/secret\.txt",
                    '[ "$1" != info ] || cat "$2/../outside/secret.txt" >/dev/null')
        self.expect("songs {player}: outside the player: opened .*/outside/F00", '[ "$1" != songs ] || ls "$2/../outside/F00"')
        self.expect("shows what stands outside the player", '[ "$1" != plays ] || cat "$2/../outside/secret.txt"')
        self.expect("shows what stands outside the player", '[ "$1" != plays ] || cat /etc/passwd')
        self.expect("text_dots: writes what stands outside the player to 'A.mp3'",
                    '[ "$1" != rescue ] || { mkdir -p "$3"; cp "$2/../outside/canary.mp3" "$3/A.mp3"; }')

    def test_writing_elsewhere_is_reported(self):
        self.expect("check {player}: on the player or beside it: made player/made", '[ "$1" != check ] || : >"$2/made"')
        self.expect("on the player or beside it: changed player/iPod_Control/iTunes/iTunesDB",
                    '[ "$1" != check ] || echo x >>"$2/iPod_Control/iTunes/iTunesDB"')
        self.expect("on the player or beside it: removed player/iPod_Control/Music/F00/A.mp3",
                    '[ "$1" != check ] || rm -f "$2/iPod_Control/Music/F00/A.mp3"')
        self.expect("beside it: made made", '[ "$1" != check ] || : >"$2/../made"')
        self.expect("outside the player: .*/outside/fifo", '[ "$1" != check ] || touch "$2/../outside/fifo"')
        self.expect(r"temporary files stay: \['x'\]", ': >"$TMPDIR/x"')
        self.expect("text_dots: beside the destination: .'elsewhere'.", ': >"$TMPDIR/../elsewhere"')

    def test_names_that_are_not_safe_are_reported(self):
        for name in (".hidden", "CON.mp3", "a:b", "a ", "\u202egpj.exe", "autorun.inf"):
            self.expect("writes a file called", f'[ "$1" != rescue ] || {{ mkdir -p "$3"; : >"$3/{name}"; }}')
        self.expect("writes 'link', which is no file", '[ "$1" != rescue ] || { mkdir -p "$3"; ln -sf / "$3/link"; }')

    def test_bytes_that_steer_a_terminal_are_reported(self):
        for text in ("\\033[2J", "\\033[31m", "\\007", "\\302\\205", "\\342\\200\\256", "\\200", "a\\rb", "\\t", "\\177"):
            self.expect("duplicates {player}: sends the terminal", f"[ $1 != duplicates ] || printf '{text}'")
        self.expect("shows a line that the player made up", "[ $1 != songs ] || echo FORGED")

    def test_styles_and_progress_are_the_programs_own(self):
        status, out = self.attack("printf '\\033[1mTitle\\033[0m\\n'; [ $1 != rescue ] || "
                                  "printf '\\r[####################] 100 %%  1 of 1 songs\\r      \\r'")
        self.assertEqual(status, 0, out)
        self.expect("sends the terminal", "[ $1 != rescue ] || printf 'a\\rb'")

    def test_bad_ends_are_reported(self):
        self.expect("call .*: ends with status 9", "[ $1 != call ] || exit 9")
        self.expect("info {player}: ends with status 3", "[ $1 != info ] || exit 3")
        self.expect("ends with signal 11", "[ $1 != call ] || kill -SEGV $$")
        self.expect("fails without a word", "[ $1 != call ] || exit 1")
        self.expect("report of a sanitizer: AddressSanitizer", "[ $1 != call ] || echo ERROR: AddressSanitizer: x")
        self.expect("report of a sanitizer: runtime error:", "[ $1 != call ] || echo x.cpp:1: runtime error: x")
        self.expect("does not end within 1 seconds", "[ $1 != call ] || exec sleep 30", options=("--seconds", "1"))

    def test_commands_that_are_not_run_are_reported(self):
        self.expect("no run of the command polish is planned", "", commands=(*COMMANDS, "polish"))
        self.expect("the program has no command songs", "", commands=[name for name in COMMANDS if name != "songs"])

    def grow(self, fault):
        return self.run_tool(f"""#!/usr/bin/env python3
import os, sys, time
if sys.argv[1] == "--help":
    sys.exit(print("Subcommands:\\n" + "".join(f"  {{name}}  x\\n" for name in {list(COMMANDS)})))
if sys.argv[1] == "check":
    database = sys.argv[2] + "/iPod_Control/iTunes/iTunesDB"
    size = os.path.getsize(database)
    {fault}
print("zemhost: well")
""", "--only", "^flood_broken_chunks$")

    def test_faster_growth_is_reported(self):
        status, out = self.grow("open(database, 'rb').read()")
        self.assertEqual(status, 0, out)
        for what, fault in GROWING.items():
            status, out = self.grow(fault)
            self.assertEqual(status, 1, what)
            self.assertTrue(re.search(f"flood broken_chunks: check: {what} grow from", out), (what, out))


if __name__ == "__main__":
    unittest.main()
