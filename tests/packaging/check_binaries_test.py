#!/usr/bin/env python3
"""check_binaries_test.py COMPILER: tools/check-binaries names what is wrong with a program or library."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "tools" / "check-binaries"
COMPILER = sys.argv.pop(1)
HARDENED = ["-O2", "-fstack-protector-all", "-Wl,-z,relro,-z,now"]


class Folder(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)

    def library(self, name, *options):
        subprocess.run([COMPILER, "-shared", "-fPIC", "-x", "c", "-", "-o", self.folder / name, *options], check=True,
                       text=True, input="void read_it(char *text); int sum(void) { char text[9]; read_it(text); return *text; }")

    def check(self, *options):
        return subprocess.run([CHECK, *options, self.folder], capture_output=True, text=True)


class RunPaths(Folder):
    def test_path_of_the_system_or_from_the_library_passes(self):
        for path in ("/usr/lib/zem", "$ORIGIN", "$ORIGIN/../lib", "${ORIGIN}/x:/usr/lib"):
            self.library("it.so", f"-Wl,-rpath,{path}")
            self.assertEqual(self.check().returncode, 0, path)

    def test_empty_or_relative_element_is_named(self):
        for path, element in (("/usr/lib:", ""), (":/usr/lib", ""), ("/usr::/lib", ""), ("lib", "lib"),
                              ("$ORIGIN:.", "."), ("$ORIGINAL", "$ORIGINAL"), ("../lib:$ORIGIN", "../lib")):
            for tags in ("--enable-new-dtags", "--disable-new-dtags"):
                self.library("it.so", f"-Wl,-rpath,{path},{tags}")
                done = self.check()
                self.assertEqual(done.returncode, 1, path)
                self.assertIn(f"it.so: the run path {path!r} has the element {element!r}", done.stderr)

    def test_path_into_the_build_is_named(self):
        self.library("it.so", "-Wl,-rpath,/build/release/lib")
        self.assertEqual(self.check("--forbid", "/build/rel").returncode, 0)
        done = self.check("--forbid", "/build/release")
        self.assertEqual(done.returncode, 1)
        self.assertIn("names /build/release", done.stderr)

    def test_folder_without_binaries_fails(self):
        self.assertEqual(self.check().returncode, 1)


class Hardening(Folder):
    def faults(self, *options):
        self.library("it.so", *options)
        return self.check("--hardened", "it.so").stderr

    def test_unguarded_stack_is_named(self):
        self.assertIn("stacks are not guarded", self.faults(*HARDENED, "-fno-stack-protector"))
        self.assertNotIn("guarded", self.faults(*HARDENED))

    def test_late_binding_is_named(self):
        for options in (["-Wl,-z,lazy"], ["-Wl,-z,norelro"]):
            self.assertIn("bound and read-only", self.faults(*HARDENED, *options))
        self.assertNotIn("bound", self.faults(*HARDENED))

    def test_executable_stack_is_named(self):
        self.assertIn("stack is executable", self.faults(*HARDENED, "-Wl,-z,execstack"))

    def test_missing_file_is_named(self):
        self.library("it.so", *HARDENED)
        self.assertIn("holds no other.so", self.check("--hardened", "other.so").stderr)

    def test_unmarked_function_is_named_on_x86(self):
        marked = ["-fcf-protection=full"]
        if subprocess.run([COMPILER, *marked, "-x", "c", "-c", "-", "-o", self.folder / "it.o"], input="", text=True,
                          stderr=subprocess.DEVNULL).returncode != 0:
            self.skipTest("the compiler marks no jumps for this processor")
        self.assertIn("sum does not begin with the mark", self.faults(*HARDENED, "-fcf-protection=none"))
        self.assertEqual("", self.faults(*HARDENED, *marked))


class Programs(Folder):
    def faults(self, *options):
        subprocess.run([COMPILER, "-x", "c", "-", "-o", self.folder / "it", *HARDENED, *options], check=True, text=True,
                       input='#include <stdio.h>\nint main(int count, char **words) { return printf(words[0], count); }')
        return self.check("--hardened", "it").stderr

    def test_program_at_a_fixed_address_is_named(self):
        self.assertIn("one address always", self.faults("-no-pie", "-fno-pie"))
        self.assertNotIn("address always", self.faults("-pie", "-fPIE"))

    def test_unchecked_calls_of_the_c_library_are_named(self):
        checked = ["-U_FORTIFY_SOURCE", "-D_FORTIFY_SOURCE=2"]
        self.assertIn("C library are not checked", self.faults("-U_FORTIFY_SOURCE"))
        self.assertNotIn("C library", self.faults(*checked))


unittest.main()
