#!/usr/bin/python3
"""What the page looks like, light, dark and narrow: contrast and names that everyone can read, and pictures of it."""

import pages

VIEWS = {"songs": "#songs?stars=4&plays=some", "albums": "#albums", "album": "#albums?album=1", "artists": "#artists",
         "playlists": "#playlists", "playlist": "#playlists?list=2", "charts": "#charts", "player": "#player"}
SCREENS = {"light": {}, "dark": {"dark": True}, "narrow": {"width": 390, "height": 780},
           "narrow-dark": {"width": 390, "height": 780, "dark": True}}

# What has a name, by the roles that the browser knows.
NAMED = {"link", "button", "searchbox", "textbox", "combobox", "grid", "table", "columnheader", "heading", "image", "navigation",
         "DisclosureTriangle"}

# Each text that is seen, with the colours that meet there; of a gradient, each of its colours.
TEXTS = """
    const canvas = new OffscreenCanvas(1, 1).getContext('2d', {willReadFrequently: true});
    const channels = (colour) => {
      canvas.clearRect(0, 0, 1, 1); canvas.fillStyle = colour; canvas.fillRect(0, 0, 1, 1);
      return [...canvas.getImageData(0, 0, 1, 1).data];
    };
    const backsOf = (node) => {
      for (let e = node; e; e = e.parentElement) {
        const style = getComputedStyle(e);
        const image = style.backgroundImage;
        if (image !== 'none') return image.match(/(rgb|hsl|color)a?\\([^()]*\\)/g).map(channels);
        if (channels(style.backgroundColor)[3] === 255) return [channels(style.backgroundColor)];
      }
      return [[255, 255, 255, 255]];
    };
    const found = [];
    for (const e of document.querySelectorAll('body *')) {
      const own = [...e.childNodes].some((n) => n.nodeType === Node.TEXT_NODE && n.data.trim() !== '');
      if (!own || !e.checkVisibility() || e.localName === 'script' || e.localName === 'option') continue;
      const style = getComputedStyle(e);
      const size = parseFloat(style.fontSize);
      const large = size >= 24 || (size >= 18.66 && Number(style.fontWeight) >= 700);
      found.push([e.textContent.trim().slice(0, 40), channels(style.color), backsOf(e), large, e.className]);
    }
    return found;"""


def luminance(colour):
    parts = [value / 255 for value in colour[:3]]
    red, green, blue = (part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4 for part in parts)
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue


def contrast(one, other):
    light, dark = sorted((luminance(one), luminance(other)), reverse=True)
    return (light + 0.05) / (dark + 0.05)


class Looks(pages.PageTest):
    def check_contrast(self):
        texts = self.browser.run(TEXTS)
        self.assertGreater(len(texts), 15)
        dim = [(text, name, round(contrast(colour, back), 2)) for text, colour, backs, large, name in texts
               for back in backs if contrast(colour, back) < (3 if large else 4.5)]
        self.assertEqual(dim, [])

    def check_names(self):
        """Everything that can be worked has a name, as the browser hands it to those who read the page aloud."""
        named = {}
        for node in self.browser.command("Accessibility.getFullAXTree")["nodes"]:
            role = node.get("role", {}).get("value")
            if not node["ignored"] and role in NAMED:
                named.setdefault(role, []).append(node.get("name", {}).get("value", ""))
        self.assertGreaterEqual(len(named["link"]), 7)
        self.assertEqual({role for role, names in named.items() if "" in names}, set())

    def check_structure(self):
        parts = self.browser.run("""const count = (selector) => document.querySelectorAll(selector).length;
            const ids = [...document.querySelectorAll('[id]')].map((e) => e.id);
            return [document.documentElement.lang, count('h1'), count('main'), count('nav[aria-label]'),
              count('[aria-current=page]'), new Set(ids).size === ids.length, count('h3') === 0 || count('h2') === 1,
              count('[role=grid] tr:not([role=row]), [role=grid] td:not([role=gridcell])')]""")
        self.assertEqual(parts, ["en", 1, 1, 1, 1, True, True, 0])

    def check_width(self):
        wide = self.browser.run("""return [...document.querySelectorAll('html, main, .scroller')]
            .filter((e) => e.scrollWidth > e.clientWidth).map((e) => `${e.localName} ${e.scrollWidth} ${e.clientWidth}`)""")
        self.assertEqual(wide, [])

    def test_contrast_is_measured_as_it_is_defined(self):
        self.assertAlmostEqual(contrast((0, 0, 0), (255, 255, 255)), 21)
        self.assertAlmostEqual(contrast((255, 255, 255), (118, 118, 118)), 4.54, places=2)

    def test_every_view_can_be_read_on_every_screen(self):
        for screen, settings in SCREENS.items():
            self.browser.look(**settings)
            for view, hash in VIEWS.items():
                with self.subTest(f"{view}, {screen}"):
                    self.open(hash)
                    self.browser.picture(pages.PICTURES / f"{view}-{screen}.png")
                    self.browser.run("for (const e of document.querySelectorAll('details')) e.open = true")
                    self.check_contrast()
                    self.check_names()
                    self.check_structure()
                    if screen.startswith("narrow"):
                        self.check_width()

    def test_song_can_be_read_in_its_dialog(self):
        for screen, settings in SCREENS.items():
            with self.subTest(screen):
                self.browser.look(**settings)
                self.open("#songs?song=9")
                self.browser.one(".songs td.title").click()
                self.browser.picture(pages.PICTURES / f"song-{screen}.png")
                self.check_contrast()
                self.assertEqual(self.browser.one("dialog button").accessible_name, "Close")


if __name__ == "__main__":
    pages.main()
