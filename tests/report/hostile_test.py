#!/usr/bin/python3
"""A library in which every text means harm: all of it is shown as text, in every view, and nothing of it runs."""

import made_library
import pages

VIEWS = ["songs", "albums", "albums?album=0", "artists", "playlists", "podcasts", "charts", "player"]
# What a text may not hold on its way into the page: all but these is shown as it is.
UNSEEN = {*range(0x00, 0x20), *range(0x7F, 0xA0), 0x61C, 0x200E, 0x200F, *range(0x2028, 0x202F), *range(0x2066, 0x206A),
          *range(0xD800, 0xE000), 0xFEFF}
# What the page is made of. There is no picture, since the only one of this library is none.
ELEMENTS = set("a bdi body button dd details dialog div dl dt form h1 h2 h3 head header html i input label li main meta nav "
               "noscript option p script section select small span strong style summary table tbody td th thead title tr "
               "ul".split())


def shown(text):
    """What the page is to make of a text."""
    result = ""
    for c in text:
        if ord(c) in UNSEEN:
            c = chr(0x2400 + ord(c)) if ord(c) < 0x20 else f"[U+{ord(c):04X}]"
        result += c
    return result


class Hostile(pages.PageTest):
    @staticmethod
    def library():
        return made_library.hostile()

    def check_page(self):
        # A dialog of a script would stop the one that asks here.
        kinds, links, text = self.browser.run("""
            const kinds = {}; const texts = [];
            for (const e of document.querySelectorAll('*')) {
              kinds[e.localName] ??= [];
              for (const name of e.getAttributeNames()) {
                if (!kinds[e.localName].includes(name)) kinds[e.localName].push(name);
                texts.push(e.getAttribute(name));
              }
              if (e.localName === 'script' || e.localName === 'style') continue;
              for (const node of e.childNodes) if (node.nodeType === Node.TEXT_NODE) texts.push(node.data.trim());
            }
            return [kinds, [...document.links].map((a) => a.getAttribute('href')), texts.join(' ')]""")
        self.assertLessEqual(set(kinds), ELEMENTS)
        for name, attributes in kinds.items():
            self.assertEqual([one for one in attributes if one.startswith("on")], [], name)
        self.assertEqual([link for link in links if not link.startswith("#")], [])
        self.assertEqual({hex(ord(c)) for c in set(text) if ord(c) in UNSEEN}, set())

    def test_every_view_shows_texts_and_runs_nothing(self):
        for view in VIEWS:
            with self.subTest(view):
                self.open(f"#{view}")
                self.browser.settle()
                self.browser.run("for (const b of document.querySelectorAll('.all')) b.click()")
                self.check_page()
                self.check_silence()

    def test_title_is_the_text(self):
        self.open()
        self.assertEqual(self.browser.driver.title, made_library.HOSTILE[0])
        self.assertEqual(self.browser.one("h1").text, made_library.HOSTILE[0])

    def test_cells_show_each_text_with_what_is_unseen_made_visible(self):
        self.open("#songs?sort=title")
        expected = [shown(text) or "Untitled" for text in made_library.HOSTILE]
        self.assertCountEqual(self.rows(), expected)
        self.assertCountEqual(self.rows("artist"), [shown(text) for text in made_library.HOSTILE])
        self.assertCountEqual(self.rows("comment"), [shown(text) for text in made_library.HOSTILE])

    def test_texts_keep_their_direction_to_themselves(self):
        self.open("#player")
        loose = self.browser.run("""return [...document.querySelectorAll('bdi, .songs td')]
            .filter((e) => !['isolate', 'plaintext', 'isolate-override'].includes(getComputedStyle(e).unicodeBidi)).length""")
        self.assertEqual(loose, 0)
        self.assertGreater(self.browser.run("return document.querySelectorAll('bdi').length"), 100)

    def test_each_text_can_be_chosen_and_linked(self):
        self.open("#charts")
        hashes = self.browser.run("""const chart = document.querySelectorAll('.chart')[0];
            for (const b of document.querySelectorAll('.all')) b.click();
            return [...document.querySelectorAll('.chart')].find((c) => c.querySelector('h3').textContent === 'Artists')
              .querySelectorAll('tbody th a').values().map((a) => [a.textContent, a.getAttribute('href')]).toArray()""")
        self.assertEqual(len(hashes), len(made_library.HOSTILE))
        for text, hash in hashes:
            with self.subTest(text):
                self.go(hash)
                rows = self.rows("artist")
                self.assertIn("" if text == "(none)" else text, rows)
                # Halves of surrogate pairs are one character in an address.
                self.assertEqual(len(rows), 1)

    def test_songs_open_with_all_their_texts(self):
        self.open()
        for at in range(0, len(made_library.HOSTILE), 5):
            self.go(f"songs?song={at}")
            self.browser.run("document.querySelector('.songs tbody td.title').click()")
            self.assertEqual(self.browser.run("return document.getElementById('song-title').textContent"),
                             shown(made_library.HOSTILE[at]) or "Untitled")
            self.check_page()
            self.browser.run("document.querySelector('dialog').close()")

    def test_addresses_are_texts_too(self):
        self.open()
        for text in ("</script><img src=x onerror=alert(1)>", "%", "%00", "javascript:alert(1)", "?", "a" * 20000):
            for view in ("songs?q=", "songs?artist=", "songs?year=", "songs?health=", "songs?rate=", "songs?song=", "songs?sort=",
                         "songs?added=", "songs?playlist=", "albums?q=", "charts?measure=", "playlists?list=", ""):
                self.go(f"{view}{text}")
                self.check_page()


if __name__ == "__main__":
    pages.main()
