#!/usr/bin/python3
"""The view of songs: what a search, the filters and the heads of the columns leave and order."""

import datetime

import pages


class Songs(pages.PageTest):
    def test_shows_every_song_by_artist_album_and_track(self):
        self.open()
        self.assertEqual(self.browser.driver.title, "Ann's player")
        self.assertEqual(self.browser.one("h1").text, "Ann's player")
        head = self.browser.one("header").text
        for part in ("iPod (generation 5), 30 GB, white", "60 songs", "22 November 2026, 10:00", "zemhost 1.2.3"):
            self.assertIn(part, head)
        self.assert_shows(range(60))
        artists = [artist for artist in self.rows("artist") if artist.isascii()]
        self.assertEqual(artists, sorted(artists, key=str.casefold))
        folk = self.songs_with("artist", lambda name: name == "Mira Solvang")
        shown = [title for title in self.rows() if title in self.titles(folk)]
        tracks = self.column("track")
        self.assertEqual(shown, self.titles(sorted(folk, key=lambda song: tracks[song])))

    def test_search_looks_through_every_text_without_case_and_accents(self):
        self.open()
        for typed, column, part, *also in (
                ("rain", "title", "Rain"), ("ELODIE", "artist", "Élodie"), ("ete", "album", "Été", "ète"),
                ("sete", "comment", "Sète"), ("eik", "composer", "Eik"), ("月島", "artist", "月島"), ("דנה", "artist", "דנה"),
                ("chanson", "genre", "Chanson"), ("aac", "kind", "AAC")):
            with self.subTest(typed):
                self.search(typed)
                parts = [part, *also]
                songs = {song for name in ("title", "artist", "album", "genre", "kind", "composer", "comment")
                         for song in self.songs_with(name, lambda text: any(one.lower() in text.lower() for one in parts))}
                self.assertIn(self.songs_with(column, lambda text: part in text)[0], songs)
                self.assert_shows(songs)
        self.search("folk harbour")
        both = [song for song in self.songs_with("genre", lambda name: name == "Folk")
                if "Harbour" in self.column("title")[song]]
        self.assertGreater(len(both), 0)
        self.assert_shows(both)
        self.search("1987")
        self.assert_shows(self.songs_with("year", lambda year: year == 1987))
        self.search("no such song")
        self.assert_shows([])
        self.assertTrue(self.status().startswith("0 of 60 songs"))
        self.search("")
        self.assert_shows(range(60))

    def test_each_filter_leaves_the_songs_it_names(self):
        night = [song for song in self.made["playlists"][1]["songs"] if song >= 0]
        for label, text, songs in (
                ("Artist", "Zoë & the Ångströms", self.songs_with("artist", lambda name: name == "Zoë & the Ångströms")),
                ("Album", "Café & Engine", self.songs_with("album", lambda name: name == "Café & Engine")),
                ("Album", "(none)", self.songs_with("album", lambda name: name == "")),
                ("Genre", "Rock", self.songs_with("genre", lambda name: name == "Rock")),
                ("Year", "1990s", self.songs_with("year", lambda year: 1990 <= year <= 1999)),
                ("Year", "2003", self.songs_with("year", lambda year: year == 2003)),
                ("Year", "(none)", self.songs_with("year", lambda year: year == 0)),
                ("Kind", "AAC audio file", self.songs_with("kind", lambda name: name == "AAC audio file")),
                ("Stars", "★★★★☆", self.songs_with("rating", lambda rating: rating == 80)),
                ("Stars", "(none)", self.songs_with("rating", lambda rating: rating == 0)),
                ("Playlist", "Night Drives", set(night)),
                ("Playlist", "Travel", {7, 8, 9, 10})):
            with self.subTest(f"{label}: {text}"):
                self.open()
                self.choose(label, text)
                self.assertGreater(len(songs), 0)
                self.assert_shows(songs)
                self.choose(label, "All")
                self.assert_shows(range(60))

    def test_filters_and_search_combine(self):
        self.open()
        self.choose("Genre", "Folk")
        self.choose("Kind", "MPEG audio file")
        self.choose("Year", "2000s")
        self.search("rain")
        songs = [song for song in range(60) if self.column("genre")[song] == "Folk"
                 and self.column("kind")[song] == "MPEG audio file" and self.column("year")[song] >= 2000
                 and any("rain" in self.column(name)[song].lower() for name in ("title", "album"))]
        self.assertGreater(len(songs), 0)
        self.assert_shows(songs)
        milliseconds = sum(self.column("duration")[song] for song in songs)
        self.assertIn(f"{len(songs)} of 60 songs · {round(milliseconds / 60000)} min", self.status())
        self.browser.one(".taken button:last-child").click()
        self.assert_shows(range(60))

    def test_filters_of_links_leave_the_songs_they_name(self):
        def month(day):
            return (datetime.date(1970, 1, 1) + datetime.timedelta(days=day)).strftime("%Y-%m")
        for hash, songs in (
                ("plays=never", self.songs_with("plays", lambda plays: plays == 0)),
                ("plays=some", self.songs_with("plays", lambda plays: plays > 0)),
                ("skips=some", self.songs_with("skips", lambda skips: skips > 0)),
                ("added=2006-03", self.songs_with("added", lambda day: month(day) == "2006-03")),
                ("added=2007", self.songs_with("added", lambda day: month(day)[:4] == "2007")),
                ("rate=160", self.songs_with("bit_rate", lambda rate: 160 <= rate < 192)),
                ("health=missing", [6]), ("health=damaged", [11]), ("health=duplicate", [1, 2, 20, 21, 22]),
                ("song=5", [5])):
            with self.subTest(hash):
                self.open(f"#songs?{hash}")
                self.assertGreater(len(songs), 0)
                self.assert_shows(songs)
                self.browser.one(".taken button").click()
                self.assert_shows(range(60))

    def test_every_column_sorts_both_ways_with_blanks_last(self):
        self.open()
        heads = self.browser.texts(".songs thead button")
        self.assertEqual(heads[:8], ["Title", "Artist", "Album", "Time", "Genre", "Year", "Stars", "Plays"])
        names = {"Time": "duration", "Stars": "rating", "kbit/s": "bit_rate"}
        for at, head in enumerate(heads):
            name = names.get(head, head.lower().replace(" ", "_"))
            for _ in range(2):
                with self.subTest(head):
                    button = self.browser.all(".songs thead button")[at]
                    self.browser.run("arguments[0].scrollIntoView({inline: 'center'}); arguments[0].click()", button)
                    direction = self.browser.all(".songs th")[at].get_attribute("aria-sort")
                    self.check_order(name, direction)

    def check_order(self, name, direction):
        values = self.column(name)
        shown = self.rows(name)
        blanks = [text for text in shown if text == ""]
        self.assertEqual(shown[len(shown) - len(blanks):], blanks)
        if isinstance(values[0], str):
            plain = [text.casefold() for text in shown if text and text.isascii()]
            if name == "title":  # numbers inside texts count as numbers
                plain = [text.split(" ")[0] for text in plain]
            self.assertEqual(plain, sorted(plain, reverse=direction == "descending"))
        else:
            places = {title: song for song, title in enumerate(self.column("title"))}
            order = [values[places[title]] for title, text in zip(self.rows(), shown) if text != ""]
            self.assertEqual(order, sorted(order, reverse=direction == "descending"))
            self.assertGreater(len(set(order)), 0)

    def test_row_opens_all_that_is_known_of_the_song(self):
        self.open("#songs?song=9")
        self.browser.one(".songs tbody td.title").click()
        dialog = self.browser.one("dialog")
        self.assertTrue(dialog.is_displayed())
        for part in (self.column("title")[9], self.column("artist")[9], "Ferries", "Trains", "kbit/s"):
            self.assertIn(part, dialog.text)
        self.assertNotIn("Night Drives", dialog.text)
        self.follow(dialog.find_element("link text", "Trains"))
        self.assertFalse(self.browser.one("dialog").is_displayed())
        self.assertEqual(self.rows(), self.titles([9, 10]))


if __name__ == "__main__":
    pages.main()
