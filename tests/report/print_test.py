#!/usr/bin/python3
"""The page on paper: every song of the list, the columns that fit, and nothing that only a screen can use."""

import base64
import re

import made_library
import pages


class Paper(pages.PageTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        long = made_library.Library("Long")
        for at in range(6000):
            long.add(f"Song {at}", artist="Artist", album=f"Album {at // 3}", duration=200000)
        cls.long = cls.browser.page(made_library.fill(pages.TEMPLATE, long.written()))

    def paper(self, hash, dark=False):
        """Shows the page as paper does, 180 mm wide."""
        self.browser.look(width=680, height=900, dark=dark, media="print")
        self.addCleanup(self.browser.look)
        self.open(hash)
        self.browser.run("dispatchEvent(new Event('beforeprint'))")
        self.addCleanup(self.browser.run, "dispatchEvent(new Event('afterprint'))")

    def test_every_song_is_printed_within_the_width_of_the_paper(self):
        self.paper("")
        self.assertEqual(len(self.browser.all(".songs tbody tr")), 60)
        wide, hidden = self.browser.run("""const cells = [...document.querySelectorAll('.songs tbody td:not(.extra)')];
            return [cells.filter((e) => e.getBoundingClientRect().right > innerWidth + 1).map((e) => e.textContent),
              cells.filter((e) => !e.checkVisibility() || e.scrollWidth > e.clientWidth + 1).map((e) => e.textContent)]""")
        self.assertEqual((wide, hidden), ([], []))
        self.assertEqual(self.browser.run("return document.documentElement.scrollWidth <= innerWidth"), True)
        self.assertGreater(self.browser.run("return document.documentElement.scrollHeight"), 900)
        for text in self.browser.texts(".songs thead th:not(.extra)"):
            self.assertIn(text, ["Title", "Artist", "Album", "Time", "Genre", "Year", "Stars", "Plays"])

    def test_controls_are_left_out_and_the_head_stays(self):
        self.paper("#songs?plays=never")
        shown = self.browser.run("""return [...document.querySelectorAll('input, select, nav a, .taken button, summary')]
            .filter((e) => e.checkVisibility()).map((e) => e.outerHTML)""")
        self.assertEqual(shown, [])
        for part in ("Ann's player", "60 songs", "22 November 2026"):
            self.assertIn(part, self.browser.one("header").text)

    def test_dark_screens_print_black_on_white(self):
        self.paper("", dark=True)
        colours = self.browser.run("""return [...new Set([...document.querySelectorAll('.songs td, h1')]
            .filter((e) => e.checkVisibility()).map((e) => getComputedStyle(e).color))]""")
        self.assertLessEqual(set(colours), {"rgb(0, 0, 0)", "rgb(51, 51, 51)"})
        self.assertEqual(self.browser.run("return getComputedStyle(document.body).backgroundColor"), "rgb(255, 255, 255)")

    def test_long_lists_say_how_much_of_them_is_printed(self):
        address, self.address = self.address, self.long
        self.addCleanup(setattr, self, "address", address)
        self.paper("")
        self.assertEqual(len(self.browser.all(".songs tbody tr")), 5000)
        self.assertIn("The first 5,000 of 6,000 songs", self.browser.one(".more").text)
        self.paper("#albums")
        self.assertEqual(len(self.browser.all(".wall li")), 2000)

    def test_printing_draws_the_list_and_the_screen_has_its_rows_again(self):
        self.open()
        before = len(self.browser.all(".songs tbody tr"))
        self.browser.run("""window.rows = [];
            addEventListener('beforeprint', () => rows.push(document.querySelectorAll('.songs tbody tr').length))""")
        pdf = base64.b64decode(self.browser.command("Page.printToPDF", paperWidth=8.27, paperHeight=5.83)["data"])
        self.assertTrue(pdf.startswith(b"%PDF-"))
        self.assertGreaterEqual(len(re.findall(rb"/Type\s*/Page\b", pdf)), 2)
        pages.PICTURES.mkdir(parents=True, exist_ok=True)
        (pages.PICTURES / "songs.pdf").write_bytes(pdf)
        self.browser.settle()
        self.assertEqual(self.browser.run("return window.rows"), [60])
        self.assertEqual(len(self.browser.all(".songs tbody tr")), before)
        self.assertLess(before, 60)


if __name__ == "__main__":
    pages.main()
