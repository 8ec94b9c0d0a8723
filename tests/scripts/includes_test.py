#!/usr/bin/env python3
"""The table of folders in CONTRIBUTING.md names every folder, and the sources include only what it lets them use.

The last column of a row names folders or single headers in backquotes, or says "nothing here" or "anything"."""

import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCES = {".h", ".cpp", ".c"}


def read_table(page):
    """What each folder may use: a list of folders and headers, or None for anything."""
    rules = {}
    lines = page.splitlines()
    start = lines.index("| folder | holds | may use |") + 2
    for line in lines[start:]:
        if not line.startswith("|"):
            break
        folder, _, uses = [cell.strip() for cell in line.strip("|").split("|")]
        names = re.findall(r"`([^`]+)`", uses)
        words = re.sub(r"`[^`]+`|[, ]|\band\b", "", uses)
        if not ((names and not words) or (not names and uses in ("nothing here", "anything"))):
            raise ValueError(f"not understood: {line}")
        for name in re.findall(r"`([^`]+)`", folder):
            rules[name.rstrip("/")] = None if uses == "anything" else [used.rstrip("/") for used in names]
    return rules


def is_allowed(folder, header, rules):
    uses = rules[folder]
    return uses is None or any(header == used or header.startswith(used + "/") for used in [folder, *uses])


def faults(tree, files):
    """What is wrong between the table of a tree and those of its files, one a line."""
    rules = read_table((tree / "CONTRIBUTING.md").read_text())
    folders = {file.split("/")[0] for file in files if "/" in file and not file.startswith(".")}
    found = [f"the table lacks {folder}/" for folder in sorted(folders - set(rules))]
    found += [f"the table names {folder}/, which is not there" for folder in sorted(set(rules) - folders)]
    for file in files:
        folder = file.split("/")[0]
        if pathlib.PurePath(file).suffix not in SOURCES or folder not in rules:
            continue
        for header in re.findall(r'^\s*#\s*include\s*"([^"]+)"', (tree / file).read_text(), re.M):
            if header.split("/")[0] not in folders:
                found.append(f"{file} includes {header}: not by its path from the top of the tree")
            elif not is_allowed(folder, header, rules):
                found.append(f"{file} includes {header}: not allowed")
    return found


def tracked_files(tree):
    """The files of the tree that git knows or would know; all of them where there is no repository."""
    done = subprocess.run(["git", "-C", tree, "ls-files", "--cached", "--others", "--exclude-standard"],
                          capture_output=True, text=True)
    if done.returncode == 0:
        files = done.stdout.splitlines()
    else:
        files = [str(path.relative_to(tree)) for path in tree.rglob("*") if path.is_file()]
    return sorted(file for file in files if not file.startswith("build/") and (tree / file).is_file())


class Includes(unittest.TestCase):
    def setUp(self):
        self.files = tracked_files(ROOT)

    def copy(self):
        """A copy of the sources and of the table, to spoil."""
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        tree = pathlib.Path(temporary.name)
        for file in self.files:
            (tree / file).parent.mkdir(parents=True, exist_ok=True)
            if pathlib.PurePath(file).suffix in SOURCES or file == "CONTRIBUTING.md":
                shutil.copy(ROOT / file, tree / file)
        return tree

    def test_sources_include_what_the_table_allows(self):
        self.assertGreater(sum(pathlib.PurePath(file).suffix in SOURCES for file in self.files), 100)
        self.assertEqual(faults(ROOT, self.files), [])

    def test_the_parser_of_the_command_line_is_included_in_one_place(self):
        users = [file for file in self.files if pathlib.PurePath(file).suffix in SOURCES and
                 re.search(r"^#include <CLI/", (ROOT / file).read_text(), re.M)]
        self.assertEqual(users, ["zemhost/options/Parts.h"])

    def test_include_that_the_table_does_not_allow_is_named(self):
        tree, expected = self.copy(), []
        for folder, header in (("db", "platform/FileReference.h"), ("player", "host/Host.h"),
                               ("player", "platform/carbon/CarbonFiles.h"), ("host", "zemhost/output/Table.h"),
                               ("zemhost", "db/CiTunesDB.h"), ("plugin", "host/Host.h"), ("unicode", "db/ByteOrder.h")):
            file = next(file for file in self.files if file.startswith(folder + "/") and file.endswith(".cpp"))
            with (tree / file).open("a") as source:
                source.write(f'#include "{header}"\n')
            expected.append(f"{file} includes {header}: not allowed")
        self.assertCountEqual(faults(tree, self.files), expected)

    def test_include_by_another_path_is_named(self):
        tree = self.copy()
        with (tree / "db/Loader.cpp").open("a") as source:
            source.write('#include "ByteOrder.h"\n')
        self.assertEqual(faults(tree, self.files),
                         ["db/Loader.cpp includes ByteOrder.h: not by its path from the top of the tree"])

    def test_folder_that_the_table_lacks_is_named(self):
        tree = self.copy()
        page = tree / "CONTRIBUTING.md"
        page.write_text(re.sub(r"^\| `player/` .*\n", "| `gone/` | nothing | nothing here |\n", page.read_text(), flags=re.M))
        self.assertEqual(faults(tree, self.files)[:2],
                         ["the table lacks player/", "the table names gone/, which is not there"])


unittest.main()
