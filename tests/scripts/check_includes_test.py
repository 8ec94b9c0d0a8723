#!/usr/bin/env python3
"""tools/check-includes: a source that leans on what another of its group includes is found."""

import json
import os
import subprocess
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "check-includes")
WITH = "#include <string>\nstd::string first() { return {}; }\n"
WITHOUT = "std::string second() { return {}; }\n"


class CheckIncludes(unittest.TestCase):
    def check(self, second):
        with tempfile.TemporaryDirectory() as build:
            group = os.path.join(build, "Unity", "unity_0_cxx.cxx")
            os.mkdir(os.path.dirname(group))
            sources = {"first.cpp": WITH, "second.cpp": second}
            for name, text in sources.items():
                with open(os.path.join(build, name), "w", encoding="utf-8") as file:
                    file.write(text)
            with open(group, "w", encoding="utf-8") as file:
                file.writelines(f'#include "{build}/{name}"\n' for name in sources)
            subprocess.run(["clang++", "-std=c++20", "-fsyntax-only", group], check=True)  # the group compiles
            with open(os.path.join(build, "compile_commands.json"), "w", encoding="utf-8") as file:
                json.dump([{"directory": build, "file": group, "command": f"clang++ -std=c++20 -o group.o -c {group}"}], file)
            done = subprocess.run([TOOL, build], stdout=subprocess.PIPE, check=False)
        return done.returncode, done.stdout.decode()

    def test_sources_with_their_own_includes_pass(self):
        self.assertEqual(self.check(WITH.replace("first", "second")), (0, "2 sources compiled alone, 0 failed\n"))

    def test_a_source_without_its_include_is_named(self):
        status, out = self.check(WITHOUT)
        self.assertEqual(status, 1)
        self.assertIn("second.cpp:1:", out)
        self.assertTrue(out.endswith("2 sources compiled alone, 1 failed\n"), out)

    def test_a_test_without_its_include_is_named_though_the_headers_of_googletest_are_read_before(self):
        test = "#include <gtest/gtest.h>\nTEST(Second, Is%s) { EXPECT_EQ(static_cast<std::string>(%s), \"\"); }\n"
        self.assertEqual(self.check(test % ("Empty", "\"\"")), (0, "2 sources compiled alone, 0 failed\n"))
        status, out = self.check(test % ("First", "first()"))
        self.assertEqual(status, 1)
        self.assertIn("second.cpp:2:", out)


if __name__ == "__main__":
    unittest.main()
