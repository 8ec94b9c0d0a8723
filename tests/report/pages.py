"""What the tests of the page share: a browser, pages with libraries in them, and what is seen there."""

import os
import pathlib
import unittest

from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select

import made_library
from browser import Browser

TEMPLATE = pathlib.Path(os.environ["PAGE"]).read_text(encoding="ascii")
PICTURES = pathlib.Path(os.environ["PICTURES"])


class PageTest(unittest.TestCase):
    """Tests of one page in one browser. Each test ends with a silent console, and with no request but for files and data."""

    @staticmethod
    def library():
        return made_library.small()

    @classmethod
    def setUpClass(cls):
        cls.made = cls.library()
        cls.browser = Browser()
        cls.addClassCleanup(cls.browser.close)
        cls.address = cls.browser.page(made_library.fill(TEMPLATE, cls.made))

    def setUp(self):
        self.addCleanup(self.check_silence)

    def check_silence(self):
        said, asked = self.browser.logs()
        self.assertEqual(said, [])
        self.assertEqual([address for address in asked if not address.startswith(("file:", "data:"))], [])

    def open(self, hash=""):
        self.browser.open(self.address, hash)

    def go(self, hash):
        """Follows a link within the page."""
        self.browser.go(hash)

    def hash(self):
        return self.browser.run("return location.hash")

    # The library as this side knows it.

    def column(self, name):
        """A column of every song; the words of one of words."""
        values = self.made["songs"][name]
        if name in made_library.WORDS and values is not None:
            return [self.made["words"][name][value] for value in values]
        return values

    def titles(self, songs):
        return [self.made["songs"]["title"][song] for song in songs]

    def songs_with(self, name, wanted):
        return [song for song, value in enumerate(self.column(name)) if wanted(value)]

    # What the page shows.

    def rows(self, column="title"):
        """The texts of a column of the table, scrolled from its beginning to its end."""
        return self.browser.run("""
            const scroller = document.querySelector('.scroller');
            const texts = [];
            for (let top = 0; ; top += scroller.clientHeight / 2) {
              scroller.scrollTop = top;
              scroller.dispatchEvent(new Event('scroll'));
              for (const row of document.querySelectorAll('.songs tbody tr')) {
                texts[row.getAttribute('aria-rowindex') - 2] = row.querySelector(`.${arguments[0]}`)?.textContent ?? null;
              }
              if (top > scroller.scrollHeight) break;
            }
            return texts;""", column)

    def status(self):
        return self.browser.texts(".status")[0]

    def assert_shows(self, songs):
        """The table shows these songs, in whichever order."""
        self.assertEqual(sorted(self.rows()), sorted(self.titles(songs)))
        count = self.browser.one("table.songs").get_attribute("aria-rowcount")
        self.assertEqual(int(count), len(songs) + 1)

    # What a person does.

    def follow(self, link):
        """Presses a link. The page follows it once the browser has gone there."""
        link.click()
        self.browser.settle()

    def search(self, text):
        field = self.browser.one("input[type=search]")
        field.clear()
        field.send_keys(text or " " + Keys.BACKSPACE)

    def field(self, label):
        for node in self.browser.all("label.field"):
            if node.text.split("\n")[0] == label:
                return Select(node.find_element("css selector", "select"))
        raise AssertionError(f"no field {label}")

    def choose(self, label, text):
        field = self.field(label)
        field.select_by_index([option.text.strip() for option in field.options].index(text))

    def press(self, *keys):
        for key in keys:
            self.browser.driver.switch_to.active_element.send_keys(key)

    def focused(self):
        return self.browser.run("return document.activeElement.textContent || document.activeElement.localName")


def main():
    unittest.main(verbosity=2)
