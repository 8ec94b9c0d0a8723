#!/usr/bin/python3
"""The page by the keyboard alone: every control can be reached and worked, and it is seen where one is."""

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys

import pages


class Keyboard(pages.PageTest):
    def place(self):
        """The row (from 0, -1 the heads) and the column of the cell that has the keyboard."""
        return self.browser.run("""const cell = document.activeElement.closest('td, th');
            if (!cell) return null;
            return [cell.parentNode.getAttribute('aria-rowindex') - 2, cell.getAttribute('aria-colindex') - 1]""")

    def tab_to_table(self):
        for _ in range(30):
            if self.place():
                return
            self.press(Keys.TAB)
        raise AssertionError("Tab never reaches the table")

    def visit(self):
        """Marks every element that Tab visits until it has come around."""
        self.browser.run("""document.addEventListener('focusin', (event) => { event.target.dataset.visited = ''; })""")
        stops = self.browser.run("return document.querySelectorAll('a, button, input, select, summary').length")
        ActionChains(self.browser.driver).send_keys(Keys.TAB * min(stops + 5, 400)).perform()

    def test_tab_reaches_every_control_of_every_view(self):
        for hash in ("", "#albums", "#artists", "#playlists", "#playlists?list=1", "#charts", "#player"):
            with self.subTest(hash):
                self.open(hash)
                self.browser.run("for (const e of document.querySelectorAll('details')) e.open = true")
                self.visit()
                missed = self.browser.run("""return [...document.querySelectorAll('a, button, input, select, summary')]
                    .filter((e) => e.checkVisibility() && !('visited' in e.dataset) && !e.closest('.songs')
                      && !e.closest('[aria-hidden]')).map((e) => e.outerHTML)""")
                self.assertEqual(missed, [])
                # What Tab passes over is there twice: a bar beside its link, a column above its table.
                alone = self.browser.run("""const links = new Set([...document.querySelectorAll('[data-visited]')]
                      .map((e) => e.getAttribute('href')));
                    return [...document.querySelectorAll('[aria-hidden] a, a[aria-hidden]')]
                      .filter((e) => !links.has(e.getAttribute('href')) && e.closest('.chart').querySelector('.all') === null)
                      .map((e) => [e.closest('.chart').querySelector('h3').textContent, e.getAttribute('href')])""")
                self.assertEqual(alone, [])
                if hash in ("", "#playlists?list=1"):
                    self.assertEqual(self.browser.run("return document.querySelectorAll('.songs [data-visited]').length"), 1)

    def test_focus_is_seen(self):
        self.open("#songs?plays=never")
        for _ in range(25):
            self.press(Keys.TAB)
            style = self.browser.run("""const e = document.activeElement;
                if (e === document.body) return null;
                const style = getComputedStyle(e); return [style.outlineStyle, parseFloat(style.outlineWidth)]""")
            if style is None:
                break
            self.assertEqual(style[0], "solid")
            self.assertGreaterEqual(style[1], 2)

    def test_arrows_move_from_cell_to_cell(self):
        self.open()
        self.tab_to_table()
        self.assertEqual(self.place(), [0, 0])
        for keys, place in (([Keys.ARROW_DOWN] * 3, [3, 0]), ([Keys.ARROW_RIGHT] * 2, [3, 2]), ([Keys.END], [3, 18]),
                            ([Keys.HOME], [3, 0]), ([Keys.ARROW_LEFT], [3, 0]), ([Keys.CONTROL + Keys.END], [59, 18]),
                            ([Keys.ARROW_DOWN], [59, 18]), ([Keys.CONTROL + Keys.HOME], [0, 0]), ([Keys.ARROW_UP], [-1, 0]),
                            ([Keys.ARROW_UP], [-1, 0]), ([Keys.ARROW_RIGHT], [-1, 1]), ([Keys.ARROW_DOWN], [0, 1])):
            self.press(*keys)
            self.assertEqual(self.place(), place)
            self.assert_in_view()
        self.press(Keys.PAGE_DOWN, Keys.PAGE_DOWN)
        row = self.place()[0]
        self.assertGreater(row, 20)
        self.press(Keys.PAGE_UP, Keys.PAGE_UP)
        self.assertEqual(self.place(), [0, 1])

    def assert_in_view(self):
        inside = self.browser.run("""const cell = document.activeElement.getBoundingClientRect();
            const table = document.querySelector('.scroller').getBoundingClientRect();
            return cell.top >= table.top - 1 && cell.bottom <= table.bottom + 1
              && cell.right > table.left && cell.left < table.right""")
        self.assertTrue(inside)

    def test_heads_sort_and_rows_open(self):
        self.open()
        self.tab_to_table()
        self.press(Keys.ARROW_UP, Keys.ENTER)
        self.assertEqual(self.browser.one("th.title").get_attribute("aria-sort"), "ascending")
        self.press(Keys.SPACE)
        self.assertEqual(self.browser.one("th.title").get_attribute("aria-sort"), "descending")
        self.press(Keys.ENTER, Keys.ENTER)
        self.assertFalse(self.browser.one("dialog").is_displayed())
        self.press(Keys.ARROW_DOWN, Keys.ARROW_DOWN)
        title = self.focused()
        self.press(Keys.ENTER)
        self.assertTrue(self.browser.one("dialog").is_displayed())
        self.assertEqual(self.browser.one("#song-title").text, title)
        self.press(Keys.ESCAPE)
        self.assertFalse(self.browser.one("dialog").is_displayed())
        self.assertEqual(self.place(), [1, 0])

    def test_row_scrolled_away_keeps_the_keyboards_place(self):
        self.open()
        self.tab_to_table()
        self.press(Keys.ARROW_DOWN, Keys.ARROW_DOWN)
        self.browser.run("document.querySelector('.scroller').scrollTop = 1e6")
        self.browser.settle()
        self.assertEqual(self.browser.run("return document.activeElement.className"), "scroller")
        self.press(Keys.ARROW_DOWN)
        self.assertEqual(self.place(), [3, 0])

    def test_search_and_filters_work_without_a_mouse(self):
        self.open()
        while self.browser.run("return document.activeElement.type") != "search":
            self.press(Keys.TAB)
        self.press("rain")
        found = len(self.rows())
        self.assertLess(found, 60)
        self.press(Keys.TAB, Keys.TAB, Keys.TAB)
        self.press("Folk")
        self.assertEqual(self.field("Genre").first_selected_option.text, "Folk")
        self.assertLess(len(self.rows()), found)
        self.assertIn("genre=Folk", self.hash())

    def test_number_of_matches_is_announced(self):
        self.open()
        self.assertEqual(self.browser.one(".status").get_attribute("role"), "status")
        self.search("rain")
        self.assertTrue(self.status().startswith(f"{len(self.rows())} of 60 songs"))
        self.assertEqual(int(self.browser.one("table.songs").get_attribute("aria-rowcount")), len(self.rows()) + 1)


if __name__ == "__main__":
    pages.main()
