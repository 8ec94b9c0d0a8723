#!/usr/bin/env python3
"""one_folder_test.py BUILD: `./test FOLDER` builds all that the tests of the folder run, and no other folder's tests."""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
SUITES = sorted([path.parent.name for path in (ROOT / "tests").glob("*/CMakeLists.txt")] + ["fuzz", "bench"])


def made_for(target):
    """The objects, programs and shared libraries that ninja makes for a target; none when it knows no such target."""
    done = subprocess.run(["ninja", "-C", BUILD, "-t", "commands", target], capture_output=True, text=True)
    return set(re.findall(r" -o (\S+)", done.stdout))


class Targets(unittest.TestCase):
    def test_target_of_a_folder_builds_what_its_tests_run(self):
        done = subprocess.run(["ctest", "--test-dir", BUILD, "--show-only=json-v1"], check=True, capture_output=True,
                              text=True)
        used = {}
        for test in json.loads(done.stdout)["tests"]:
            folder = test["name"].split(".")[0]
            if folder not in SUITES:
                self.assertRegex(test["name"], r"_NOT_BUILT$", "a test's name begins with its folder's")
                continue
            for word in test.get("command", []):
                if word.startswith(f"{BUILD}/") and os.access(word, os.X_OK) and pathlib.Path(word).is_file():
                    used.setdefault(folder, set()).add(str(pathlib.Path(word).relative_to(BUILD)))
        self.assertIn("scripts", used)
        for folder, programs in used.items():
            self.assertEqual(programs - made_for(f"tests_{folder}"), set(), folder)

    def test_target_of_a_folder_builds_no_other_folders_tests(self):
        for folder in SUITES:
            for path in made_for(f"tests_{folder}"):
                other = re.match(r"tests/(\w+)/\w+_tests?$", path)
                self.assertTrue(other is None or other[1] == folder, f"{folder} builds {path}")

    def test_tests_of_db_need_no_host(self):
        made = made_for("tests_db")
        self.assertIn("tests/db/db_test", made)
        self.assertEqual([path for path in made if path.startswith(("host/", "zemhost/"))], [])


class Script(unittest.TestCase):
    """A copy of ./test, with tools in its path that do nothing but note what they are asked."""

    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.tree = pathlib.Path(temporary.name) / "tree"
        self.tools = pathlib.Path(temporary.name) / "tools"
        self.asked = pathlib.Path(temporary.name) / "asked"
        for file in ("test", "tools/common.sh", "packages.txt", "CMakePresets.json", "tests/db/CMakeLists.txt",
                     "tests/report/CMakeLists.txt"):
            (self.tree / file).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / file, self.tree / file)
        self.tools.mkdir()
        self.tool("dpkg-query", f'echo "dpkg-query $*" >>{self.asked}; for name; do echo "$name installed"; done')
        self.tool("cmake", f'echo "cmake $*" >>{self.asked}')
        self.tool("ctest", f'echo "ctest ($ZEM_TEST_SCALE) $*" >>{self.asked}')

    def tool(self, name, line):
        (self.tools / name).write_text(f"#!/bin/sh\n{line}\n")
        (self.tools / name).chmod(0o755)

    def ask(self, *arguments, scale=""):
        """The lines that build and that test, the second with the percentage of random files."""
        self.asked.unlink(missing_ok=True)
        subprocess.run([self.tree / "test", *arguments], capture_output=True,
                       env={**os.environ, "PATH": f"{self.tools}:{os.environ['PATH']}", "ZEM_TEST_SCALE": scale})
        lines = self.asked.read_text().splitlines()
        return (next(line for line in lines if line.startswith("cmake --build")),
                next(line for line in lines if line.startswith("ctest")))

    def test_folder_and_what_begins_with_one_build_that_folder(self):
        for pattern, tests in (("db", r"^db\."), ("^db", r"^db\."), ("db.Loader", "^db.Loader"),
                               (r"^db\.Loader.*", r"^db\.Loader.*"), ("fuzz", r"^fuzz\.")):
            built, tested = self.ask(pattern)
            folder = re.match(r"\^?([a-z]+)", pattern)[1]
            self.assertTrue(built.endswith(f"--target tests_{folder}"), built)
            self.assertTrue(tested.endswith(f"--tests-regex {tests}"), tested)

    def test_other_patterns_build_everything(self):
        for pattern in ("Loader", "db|plugin", "dbx.y", "db.Loader|plugin"):
            built, tested = self.ask(pattern)
            self.assertNotIn("--target", built)
            self.assertTrue(tested.endswith(f"--tests-regex {pattern}"), tested)

    def test_browser_is_installed_where_its_tests_run(self):
        for arguments, wanted in ((["report"], True), (["--all"], True), (["--preset", "release", "Loader"], True), (["db"], False),
                                  ([], False), (["--preset", "clang"], False)):
            self.ask(*arguments)
            packages = " ".join(self.asked.read_text().split())
            self.assertIn(" ninja-build ", packages)
            self.assertEqual(" chromium " in packages, wanted, arguments)

    def test_no_pattern_builds_everything_and_tests_all_but_what_takes_long(self):
        built, tested = self.ask()
        self.assertNotIn("--target", built)
        self.assertNotIn("--tests-regex", tested)
        self.assertIn("--label-exclude long", tested)

    def test_what_takes_long_is_tested_where_it_is_asked_for(self):
        for arguments in (["--all"], ["report"], ["db.Loader|plugin"]):
            self.assertNotIn("--label-exclude", self.ask(*arguments)[1])

    def test_all_random_files_are_tried_by_release_where_all_or_one_folder_is_asked_for(self):
        for arguments, scale in ((["--all"], ""), (["property"], ""), (["Loader"], ""), ([], "40"), (["--preset", "asan"], "40"),
                                 (["--preset", "asan", "Loader"], "40"), (["--preset", "i386"], "40"),
                                 (["--preset", "powerpc", "db"], "10")):
            self.assertTrue(self.ask(*arguments)[1].startswith(f"ctest ({scale}) "), arguments)
            self.assertTrue(self.ask(*arguments, scale="70")[1].startswith("ctest (70) "), arguments)


unittest.main()
