#!/usr/bin/env python3
"""The check of host code finds the faults that are planted here, and runs the dialect as the environment does."""

import os
import tempfile
import unittest

from basic.checker import Checker
from basic.libraries import make_libraries
from basic.library import Library
from basic.parser import parse
from basic.runtime import Runtime, Scope
from basic.session import Session

FRAME = """```vb
Sub Example(f As FolderItem)
  Dim db As New ZemiTunesDB
  If Not db.Load(f) Then
    Return
  End If
  // The block stands here.
End Sub
```

"""


class WithSession(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls._folder = tempfile.TemporaryDirectory()
        folder = os.path.realpath(cls._folder.name)
        make_libraries(os.environ["SAMPLES"], folder)
        cls.session = Session(os.environ["HOST_SESSION"], os.environ["PLUGIN"], {"Samples": folder})

    @classmethod
    def tearDownClass(cls):
        with cls.session, cls._folder:
            pass


class PlantedFaults(WithSession):
    def faults(self, code, frame=FRAME, after=""):
        with tempfile.NamedTemporaryFile("w", suffix=".md", encoding="utf-8") as page:
            page.write(f"{frame}```vb\n{code}\n```\n{after}")
            page.flush()
            checker = Checker(self.session, {})
            checker.check(page.name)
        return "\n".join(checker.faults)

    def test_a_sound_block_has_none(self):
        self.assertEqual(self.faults("Print Str(db.CountSongs)", after="\n```\n29\n```\n"), "")
        self.assertEqual(self.faults("// Two(db) gives 2.\nFunction Two(db As ZemiTunesDB) As Integer\nReturn 2\nEnd Function"), "")

    def test_wrong_output_is_found(self):
        self.assertIn("prints other lines", self.faults("Print Str(db.CountSongs)", after="\n```\n28\n```\n"))

    def test_wrong_statement_of_a_comment_is_found(self):
        code = "// Two(db) gives {}.\nFunction Two(db As ZemiTunesDB) As Integer\nReturn 2\nEnd Function"
        for value in ("3", '"2"', "True"):
            self.assertIn("gives 2 on player", self.faults(code.format(value)))
        self.assertIn("cannot be read", self.faults(code.format("two")))
        self.assertIn("there is no moon", self.faults(code.format("2 on moon")))

    def test_unknown_names_are_found_where_nothing_runs_too(self):
        for line, fault in (("Print Str(cound)", "cound is not known"), ("Print db.GetTitel(0)", "no gettitel of 1"),
                            ("Print db.GetTitle(0, 1, 2)", "no gettitle of 3"), ("db.Error = 1", "no property error"),
                            ("Prind 5", "prind is not known"), ("Dim x As Integr", "no class integr")):
            self.assertIn(fault, self.faults(f"If db.CountSongs = 0 Then\n{line}\nEnd If"))

    def test_what_is_incomplete_is_found(self):
        self.assertIn("left out", self.faults('Print "a" ...'))
        self.assertIn("'next' is missing", self.faults("Dim i As Integer\nFor i = 0 To 1\nPrint Str(i)"))
        self.assertIn("two never runs", self.faults("Sub Two()\nEnd Sub"))

    def test_failures_are_found(self):
        for line, fault in (("db.GetTitle(0)", "a result is not used"), ("song = 1", "song is no variable"),
                            ('Print "1" + 1', "is no"), ("Print db.GetFolderItem(-1).Name", "of Nil"),
                            ("Dim db As Integer", "declared twice"), ("Dim s As String\ns = 5", "is no string")):
            self.assertIn(fault, self.faults(line))

    def test_methods_that_prose_names_and_nobody_has_are_found(self):
        self.assertIn("there is no GetTitel", self.faults('Print "a"', after="\nSee `GetTitel(0)`.\n"))


class Dialect(WithSession):
    def printed(self, code):
        library = Library(self.session)
        Runtime(parse(code), library).run(parse(code).statements, Scope())
        return library.output

    def test_integers_have_32_bits(self):
        self.assertEqual(self.printed("Print Str(&hFFFFFFFF)\nPrint Str(2147483647 + 1)\nPrint Str(0 - 7 \\ 2)\nPrint Str(-7 Mod 4)"),
                         ["-1", "-2147483648", "-3", "-3"])
        self.assertEqual(self.printed("Print Str(-1 + 4294967296.0)"), ["4294967295"])

    def test_bits_move_as_in_unsigned_numbers(self):
        self.assertEqual(self.printed("Print Str(Bitwise.ShiftRight(-1, 24))\nPrint Str(Bitwise.ShiftLeft(255, 24))"),
                         ["255", "-16777216"])

    def test_strings_are_equal_whatever_their_case(self):
        self.assertEqual(self.printed('If "Home" = "hOME" Then\nPrint "same"\nEnd If'), ["same"])

    def test_bytes_keep_their_encoding(self):
        code = 'Dim s As String\ns = ConvertEncoding("Füße", Encodings.MacRoman)\nPrint Str(LenB(s)) + s\nPrint MidB(s, 2, 2)'
        self.assertEqual(self.printed(code), ["4Füße", "üß"])

    def test_dates_count_from_1904(self):
        self.assertEqual(self.printed("Dim d As New Date\nd.TotalSeconds = 86400\nPrint d.SQLDateTime"), ["1904-01-02 00:00:00"])

    def test_both_sides_of_and_are_looked_at(self):
        with self.assertRaisesRegex(Exception, "of Nil"):
            self.printed("Dim f As FolderItem\nIf f <> Nil And f.Exists Then\nEnd If")


if __name__ == "__main__":
    unittest.main()
