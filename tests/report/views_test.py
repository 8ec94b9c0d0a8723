#!/usr/bin/python3
"""The other views: what each shows of the library, the links that keep a view, and where the bars of the charts lead."""

import pages


class Views(pages.PageTest):
    def test_albums_are_a_wall_of_pictures_and_drawn_covers(self):
        self.open("#albums")
        names = self.browser.texts(".wall strong")
        self.assertCountEqual(names, [album["name"] for album in self.made["albums"]])
        with_picture = [album["name"] for album in self.made["albums"] if album["cover"] is not None]
        self.assertCountEqual(self.browser.texts(".wall a:has(img) strong"), with_picture)
        self.assertEqual(self.browser.run("return [...document.querySelectorAll('img')].map((i) => i.naturalWidth)"), [24] * 4)
        drawn = dict(zip(self.browser.texts(".wall a:has(.drawn) strong"), self.browser.texts(".drawn")))
        self.assertEqual(drawn["Signal & Ferry"], "SF")
        self.search("elodie")
        self.assertEqual(self.browser.texts(".wall strong"), ["Café & Engine"])
        self.follow(self.browser.one(".wall a"))
        album = self.songs_with("album", lambda name: name == "Café & Engine")
        self.assertEqual(self.rows(), self.titles(sorted(album, key=lambda song: self.column("track")[song])))

    def test_artists_lead_to_their_songs(self):
        self.open("#artists")
        self.assertCountEqual(self.browser.texts(".rows strong"), set(self.column("artist")))
        self.choose("Order", "Most songs")
        counts = [int(text.split(" · ")[1].split()[0]) for text in self.browser.texts(".rows span")]
        self.assertEqual(counts, sorted(counts, reverse=True))
        self.follow(self.browser.one(".rows").find_element("partial link text", "Idris Calloway"))
        self.assert_shows(self.songs_with("artist", lambda name: name == "Idris Calloway"))

    def test_playlists_keep_their_order_rules_and_folders(self):
        self.open("#playlists")
        self.assertEqual(self.browser.texts(".rows strong"),
                         ["Ann's player", "Night Drives", "Played often", "Travel", "Ferries", "Trains"])
        depths = self.browser.run("return [...document.querySelectorAll('.rows li')].map((e) => e.style.getPropertyValue('--depth'))")
        self.assertEqual(depths, ["0", "0", "0", "0", "1", "1"])
        self.assertEqual(self.browser.texts(".rows .rules"), ["Plays is greater than 30", "Genre is not Podcast"])
        self.follow(self.browser.one(".rows").find_element("partial link text", "Night Drives"))
        self.assertEqual(self.browser.one("h2").text, "Night Drives")
        expected = [self.titles([song])[0] if song >= 0 else "A song that the library does not hold"
                    for song in self.made["playlists"][1]["songs"]]
        self.assertEqual(self.rows(), expected)
        self.assertEqual(self.rows("order"), ["1", "2", "3", "4", "5", "6"])
        self.browser.one("th.duration button").click()
        known = sorted((song for song in self.made["playlists"][1]["songs"] if song >= 0),
                       key=lambda song: -self.column("duration")[song])
        self.assertEqual(self.rows(), [*self.titles(known), "A song that the library does not hold"])
        self.open("#playlists?list=2")
        self.assertEqual(self.browser.texts(".heading .rules"), ["Plays is greater than 30", "Genre is not Podcast"])
        self.open("#playlists?list=3")
        self.assert_shows([7, 8, 9, 10])

    def test_podcasts_have_their_episodes(self):
        self.open("#podcasts")
        self.follow(self.browser.one(".rows a"))
        self.assertEqual(self.rows(), ["Episode 1", "Episode 2", "Episode 3"])

    def test_player_says_what_the_check_found(self):
        self.open("#player")
        text = self.browser.one("main").text
        for part in ("Firmware", "1.2.1", "The play counts end early.", "3 files are named by no song.",
                     "2,000 bytes are missing at its end"):
            self.assertIn(part, text)
        links = self.browser.texts("main a")
        self.assertEqual([link.split(" by ")[0] for link in links], self.titles([6, 11, 1, 2, 20, 21, 22]))
        self.follow(self.browser.all("main a")[1])
        self.assert_shows([11])

    def test_link_keeps_search_filters_and_sort(self):
        self.open()
        self.search("r")
        self.choose("Kind", "AAC audio file")
        self.browser.one("th.plays button").click()
        rows, link = self.rows(), self.hash()
        self.assertLess(len(rows), 60)
        self.assertGreater(len(rows), 3)
        self.open("#charts")
        self.open(link)
        self.assertEqual(self.rows(), rows)
        plays = [int(text) for text in self.rows("plays")]
        self.assertEqual(plays, sorted(plays, reverse=True))
        self.assertEqual(self.browser.one("input[type=search]").get_attribute("value"), "r")
        self.assertEqual(self.field("Kind").first_selected_option.text, "AAC audio file")
        self.assertEqual(self.browser.one("th.plays").get_attribute("aria-sort"), "descending")
        self.follow(self.browser.one("#views").find_element("link text", "Albums"))
        self.browser.driver.back()
        self.browser.settle()
        self.assertEqual(self.rows(), rows)

    def test_link_of_something_else_shows_what_is_there(self):
        for hash in ("#", "#nothing", "#songs?sort=nothing", "#songs?nothing=1", "#__proto__", "#constructor?x"):
            with self.subTest(hash):
                self.open(hash)
                self.assert_shows(range(60))
        for hash in ("#playlists?list=99", "#albums?album=-1", "#podcasts?list=x"):
            with self.subTest(hash):
                self.open(hash)
                self.assertIn("There is no such", self.browser.one("main").text)

    def test_every_bar_leads_to_the_songs_it_counts(self):
        self.open("#charts")
        self.assertEqual(self.browser.texts(".chart h3"), [
            "Added by month", "Artists", "Albums", "Genres", "Decades", "Years", "Stars", "Bit rates", "Kinds", "Most played",
            "Never played", "Most skipped", "Longest"])
        bars = self.browser.run("""return [...document.querySelectorAll('.chart')].flatMap((chart) =>
            [...chart.querySelectorAll('.bars tbody tr')].map((row) => [chart.querySelector('h3').textContent,
              row.querySelector('th').textContent, row.querySelector('a').getAttribute('href'),
              row.querySelector('.bar a').getAttribute('href'), row.querySelector('.number').textContent]))""")
        self.assertGreater(len(bars), 60)
        # The page follows an address in its own time, or when it is told that it has changed.
        rows = self.browser.run("""return arguments[0].map((hash) => {
            location.hash = hash;
            dispatchEvent(new Event('hashchange'));
            return document.querySelector('table.songs').getAttribute('aria-rowcount') - 1;
          })""", [hash for _, _, hash, _, _ in bars])
        for (chart, text, hash, bar, count), found in zip(bars, rows):
            with self.subTest(f"{chart}: {text}"):
                self.assertEqual(hash, bar)
                self.assertEqual(found, 1 if chart in ("Most played", "Most skipped", "Longest") else int(count))

    def test_columns_stand_for_the_rows_of_their_table(self):
        self.open("#charts")
        for chart in self.browser.all(".chart:has(.columns)"):
            columns, rows = self.browser.run("""return [
                [...arguments[0].querySelectorAll('.columns a')].map((a) => [a.getAttribute('href'), a.title]),
                [...arguments[0].querySelectorAll('.bars tbody tr')].map((row) => [row.querySelector('a').getAttribute('href'),
                  `${row.querySelector('th').textContent}: ${row.querySelector('.number').textContent}`])]""", chart)
            self.assertEqual(columns[:len(rows)], rows)
        self.follow(self.browser.one(".chart .columns a[title^='2003:']"))
        self.assert_shows(self.songs_with("year", lambda year: year == 2003))

    def test_charts_stand_side_by_side_where_there_is_room(self):
        for width, beside in ((1280, 3), (390, 1)):
            self.browser.look(width=width)
            self.open("#charts")
            tops = [chart.rect["y"] for chart in self.browser.all(".chart")]
            self.assertEqual(tops.count(tops[0]), beside)
        self.browser.look()

    def test_measure_changes_what_the_bars_say(self):
        self.open("#charts")
        for measure, of in (("Plays", lambda song: self.column("plays")[song]),
                            ("Time", lambda song: self.column("duration")[song]),
                            ("Time played", lambda song: self.column("plays")[song] * self.column("duration")[song])):
            with self.subTest(measure):
                self.choose("Measure", measure)
                sums = {}
                for song, name in enumerate(self.column("artist")):
                    sums[name] = sums.get(name, 0) + of(song)
                best = max(sums, key=sums.get)
                chart = self.browser.all(".chart")[1]
                self.assertEqual(chart.find_element("css selector", "th[scope=row]").text, best)
                shown = chart.find_element("css selector", "td.number").text
                if measure == "Plays":
                    self.assertEqual(shown, str(sums[best]))
                else:
                    seconds = sums[best] // 1000
                    self.assertTrue(shown.endswith(f"{seconds // 60 % 60:02}:{seconds % 60:02}"), shown)


if __name__ == "__main__":
    pages.main()
