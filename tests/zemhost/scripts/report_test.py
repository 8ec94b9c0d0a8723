#!/usr/bin/env python3
"""The data of a page against the export of the same library, which other code of the program makes, and hostile texts."""

import base64
import json
import os
import re
import shutil
import struct
import tempfile
import unittest

from database_writer import library
from program import DESKTOP, PLAYER, generated, real_files, run
from report_page import COLUMNS, NUMBERS, Page, as_json, days, export, folded, nano, report

HOSTILE = ["</script><script>alert(1)</script>", "<!-- <script>", "]]>", "<img src=x onerror=alert(1)>", "${alert(1)} `x`",
           "{{7*7}} {% raw %} <%= 1 %>", "@TITLE@ @LIBRARY@", "\"' \\ \\u003c", "&lt;b&gt; &amp; &#60;", "\u2028 \u2029",
           "\u202eevil\u202c \u2066x\u2069 \u200f\u061c", "\0\x01\x1b[31m\x7f\x9b\r\n\t", "\ud800 alone", "back \udc00",
           "\udc00\ud800", "x\ufeff \ufffe \uffff", "𝄞 \U0010ffff", "__proto__", "constructor", "javascript:alert(1)",
           "=cmd|' /C calc'!A0"]
# What could end the element, or is to be seen in no editor.
RAW = re.compile("[<>&\0-\x1f\x7f-\x9f\u061c\u200e\u200f\u2028\u2029\u202a-\u202e\u2066-\u2069\ud800-\udfff]")
MOST_COVER = 12_000


class Report(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def write(self, name, content):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def player_copy(self):
        return shutil.copytree(PLAYER, os.path.join(self.folder, "iPod"))

    def libraries(self):
        """The sample players and real databases."""
        for path in (PLAYER, nano(), DESKTOP, *real_files()):
            with self.subTest(library=path):
                yield path

    def test_songs_are_those_of_an_export(self):
        for path in self.libraries():
            page, exported = report(path), export(path)["songs"]
            self.assertEqual(page.library["songs"]["title"], [song["title"] or "" for song in exported])
            for column, field in COLUMNS.items():
                self.assertEqual(page.texts(column), [song[field] or "" for song in exported], column)
                self.assertEqual(len(set(page.library["words"][column])), len(page.library["words"][column]))
            for column, field, unknown in NUMBERS:
                given = [unknown if song[field] is None else int(song[field]) for song in exported]
                self.assertEqual(page.numbers(column, unknown), given, column)
            for column, field in (("added", "date_added"), ("last_played", "last_played")):
                self.assertEqual(page.numbers(column, None), [days(song[field]) for song in exported], column)
            totals = page.library["totals"]
            self.assertEqual(totals["songs"], len(exported))
            self.assertEqual(totals["duration"], sum(song["duration_ms"] or 0 for song in exported))
            self.assertEqual(totals["size"] or 0, sum(song["size_bytes"] or 0 for song in exported))

    def test_playlists_are_those_of_an_export(self):
        for path in self.libraries():
            page, exported = report(path).library["playlists"], export(path)["playlists"]
            self.assertEqual([(list["name"] or None, list["kind"], list["rules"], list["created"]) for list in page],
                             [(list["name"], list["kind"], list["rules"], days(list["date_created"])) for list in exported])
            for shown, list in zip(page, exported):
                songs = [-1 if entry["song_index"] is None else entry["song_index"] for entry in list["entries"]]
                self.assertEqual(shown["songs"], songs)

    def test_albums_hold_the_songs_of_one_name(self):
        for path in self.libraries():
            page, exported = report(path).library, export(path)["songs"]
            albums, places = page["albums"], page["songs"]["album_of"] or [None] * len(exported)
            for song, album in zip(exported, places):
                self.assertEqual(folded(song["album"]), folded(albums[album]["name"]) if album is not None else "")
            seen = [album for album in dict.fromkeys(places) if album is not None]
            self.assertEqual(seen, list(range(len(albums))), "in the order of their first songs")

    def test_albums_of_the_sample_player_are_by_album_artist_else_artist(self):
        page = report(PLAYER).library
        named = [(album["name"], album["artist"]) for album in page["albums"]]
        self.assertIn(("Roadside Jukebox", "Compilations"), named)
        self.assertIn(("Northern Ferries", "Mira Solvang"), named)
        self.assertEqual(len(named), 16)
        jukebox = named.index(("Roadside Jukebox", "Compilations"))
        self.assertEqual(page["songs"]["album_of"].count(jukebox), 4)

    def test_podcasts_are_episodes_by_name(self):
        page = report(PLAYER).library
        self.assertEqual(page["podcasts"], [{"name": "Attic Radio Weekly", "episodes": [27, 28]}])

    def test_facts_are_the_lines_of_info(self):
        for path in (PLAYER, nano(), DESKTOP):
            lines = run("info", path).text.splitlines()
            facts = [line.split(None, 1)[0] for line in lines]
            shown = report(path).library["facts"]
            self.assertEqual([label.split()[0] for label, _ in shown], facts)
            for line, (label, text) in zip(lines, shown):
                if label != "Free":  # which others change meanwhile
                    self.assertEqual(line, label.ljust(11) + text)

    def test_health_is_what_check_and_duplicates_find(self):
        player = self.player_copy()
        music = os.path.join(player, "iPod_Control", "Music")
        os.truncate(os.path.join(music, "F00", "QHLA.m4a"), 100)
        os.truncate(os.path.join(music, "F01", "SORX.m4a"), 0)
        self.write("iPod/iPod_Control/Music/F00/STRAY.mp3", b"x")
        with open(os.path.join(music, "F02", "HOMB.m4a"), "ab") as file:
            file.write(b"more")
        page, check = report(player).library, as_json("check", player, "--json")
        health = page["health"]
        self.assertTrue(health["checked"])
        found = {}
        for finding in check["findings"]:
            found.setdefault(finding["kind"], []).append(finding["text"])
        self.assertEqual(set(found), {"missing-file", "short-file", "unnamed-file"})
        self.assertEqual(health["findings"], found["unnamed-file"])
        self.assertEqual(health["remarks"], check["remarks"])
        self.assertEqual(len(health["remarks"]), 1)
        titles = page["songs"]["title"]
        self.assertEqual(len(health["missing"]), len(found["missing-file"]))
        for song, text in zip(health["missing"], found["missing-file"]):
            self.assertIn(f'song {song} "{titles[song]}"', text)
        self.assertEqual(len(health["damaged"]), 2)
        for (song, fault), text in zip(health["damaged"], found["short-file"]):
            self.assertTrue(text.startswith(f'song {song} "{titles[song]}"') and f": {fault}: " in text, text)
        self.assertNotIn("/", health["damaged"][0][1])
        marks = [0] * len(titles)
        for song in health["missing"]:
            marks[song] |= 1
        for song, _ in health["damaged"]:
            marks[song] |= 2
        self.assertEqual(page["songs"]["flags"], marks)

    def test_damaged_database_is_shown_as_far_as_it_is_whole(self):
        player = self.player_copy()
        database = os.path.join(player, "iPod_Control", "iTunes", "iTunesDB")
        os.truncate(database, os.path.getsize(database) // 2)
        done = run("report", player, "-o", "-")
        self.assertEqual(done.status, 0)
        self.assertIn("the file is damaged", done.message)
        page, songs = Page(done.out).library, export(player)["songs"]
        self.assertGreater(len(songs), 5)
        self.assertEqual(page["songs"]["title"], [song["title"] or "" for song in songs])
        self.assertTrue(any("the file is damaged" in text for text in page["health"]["findings"]))

    def test_duplicates_are_those_that_the_command_lists(self):
        songs = [{"title": "One", "artist": "A", "length": 1000}, {"title": "Two", "artist": "A", "length": 1000},
                 {"title": "One", "artist": "A", "length": 2500}, {"title": "One", "artist": "A", "length": 90000}]
        path = self.write("twice", library(songs, [("List", [0, 1])]))
        page = report(path).library
        groups = [[song["song_index"] for song in group["songs"]] for group in as_json("duplicates", path, "--json")["groups"]]
        self.assertEqual((page["health"]["duplicates"], groups), ([[0, 2]], [[0, 2]]))
        self.assertEqual(page["songs"]["flags"], [4, 0, 4, 0])
        self.assertFalse(page["health"]["checked"])
        self.assertIn("not looked at", page["health"]["remarks"][0])
        part = report(path, "--playlist", "List").library
        self.assertEqual((part["health"]["duplicates"], part["songs"]["flags"]), ([], [0, 0]))

    def test_playlist_holds_its_songs_once_in_its_order(self):
        page, exported = report(PLAYER, "--playlist", "Night Drives").library, export(PLAYER)
        (entries,) = [list["entries"] for list in exported["playlists"] if list["name"] == "Night Drives"]
        order = list(dict.fromkeys(entry["song_index"] for entry in entries))
        self.assertEqual(page["songs"]["title"], [exported["songs"][song]["title"] for song in order])
        self.assertEqual([(list["name"], list["songs"]) for list in page["playlists"]],
                         [("Night Drives", [order.index(entry["song_index"]) for entry in entries])])
        self.assertEqual(page["totals"]["songs"], len(order))
        self.assertEqual(page["title"], "Night Drives")

    def test_folders_that_hold_each_other_lie_in_none(self):
        def folder(number, inside):
            return {0x1C: number, 0x28: 0x01000000, 0x30: inside}
        lists = [("Ring 1", [], folder(11, 13)), ("Ring 2", [], folder(12, 11)), ("Ring 3", [], folder(13, 12)),
                 ("Itself", [], folder(14, 14)), ("Outer", [], folder(15, 0)), ("Inner", [], folder(16, 15)),
                 ("Leaf", [0], {0x1C: 17, 0x30: 16}), ("Beside the ring", [0], {0x1C: 18, 0x30: 12}),
                 ("In a list", [0], {0x1C: 19, 0x30: 17}), ("In nothing", [0], {0x1C: 20, 0x30: 99})]
        page = report(self.write("folders", library([{"title": "x"}], lists))).library["playlists"]
        parents = {list["name"]: list["parent"] and page[list["parent"]]["name"] for list in page}
        self.assertEqual([list["kind"] for list in page], ["library"] + 6 * ["folder"] + 4 * ["playlist"])
        self.assertEqual({name: parent for name, parent in parents.items() if not name.startswith("Ring")},
                         {"Library": None, "Itself": None, "Outer": None, "Inner": "Outer", "Leaf": "Inner",
                          "Beside the ring": "Ring 2", "In a list": None, "In nothing": None})
        # The ring is open at one place.
        self.assertEqual(sorted(str(parents[f"Ring {number}"]) for number in (1, 2, 3))[0], "None")
        self.assertEqual(len({parents[f"Ring {number}"] for number in (1, 2, 3)}), 3)

    def test_hostile_texts_are_data(self):
        songs = [{"title": text, "artist": text, "album": text, "genre": text, "composer": text, "comment": text}
                 for text in HOSTILE]
        path = self.write("hostile", library(songs, [(text, [place]) for place, text in enumerate(HOSTILE)]))
        exported = export(path)
        plain = report(self.write("plain", library([{"title": "x"}])))
        for title in HOSTILE[:10]:
            done = run("report", path, "-o", "-", "--title", title)
            self.assertEqual(done.status, 0, done.message)
            page = Page(done.out)
            self.assertEqual(page.elements, plain.elements, "texts made no element")
            self.assertIsNone(RAW.search(page.json))
            self.assertEqual(page.library["title"], title)
            self.assertEqual(page.title, re.sub("[\u2028\u2029]", "\ufffd", title))
            self.assertEqual(page.library["songs"]["title"], [song["title"] for song in exported["songs"]])
            for column, field in COLUMNS.items():
                self.assertEqual(page.texts(column), [song[field] or "" for song in exported["songs"]])
            self.assertEqual([list["name"] for list in page.library["playlists"]],
                             [list["name"] for list in exported["playlists"]])
        # They are those that were put in, but for halves of surrogate pairs; a text ends at a NUL.
        for text, song in zip(HOSTILE, exported["songs"]):
            if "\0" not in text:
                self.assertEqual(song["title"], re.sub("[\ud800-\udfff]", "\ufffd", text))

    def private_player(self):
        """A player whose texts say who owns it and who bought its songs, and what must not be on its page."""
        mails = ["ann.buyer@example.com", "b+c@mail.example.co.uk", "jörg@exämple.de"]
        songs = [{"title": "Bought by " + mails[0], "artist": f"<{mails[1]}>", "album": f"({mails[2]}, 2004)",
                  "composer": "mailto:" + mails[0], "comment": "private remark one", "path": ":iPod_Control:Music:F00:A.mp3"},
                 {"title": "XX1234SECRET", "comment": "private remark two; " + mails[1], "genre": "AB12CD34EF56AB78"}]
        lists = [("For " + mails[0], [0, 1])]
        self.write("owner/iPod/iPod_Control/iTunes/iTunesDB", library(songs, lists))
        self.write("owner/iPod/iPod_Control/Device/SysInfo",
                   b"pszSerialNumber: XX1234SECRET\nFirewireGuid: 0xAB12CD34EF56AB78\nModelNumStr: MA002\n")
        name = "Ann's own iPod"
        self.write("owner/iPod/iPod_Control/iTunes/DeviceInfo",
                   (struct.pack("<H", len(name)) + name.encode("utf-16-le")).ljust(0x600, b"\0"))
        return os.path.join(self.folder, "owner", "iPod"), [*mails, "private remark", "XX1234SECRET", "AB12CD34EF56AB78", name,
                                                              self.folder]

    def test_privacy_leaves_none_of_what_is_personal(self):
        player, personal = self.private_player()
        link = os.path.join(self.folder, "link")
        os.symlink(player, link)
        for path in (player, link, os.path.relpath(player), os.path.join(player, "iPod_Control", "iTunes", "iTunesDB")):
            page = json.dumps(report(path).library, ensure_ascii=False)
            for text in personal:
                # A finding names the file that is missing, a fact the database.
                shown = text in page or text == personal[-2] and not path.endswith("iPod")
                self.assertTrue(shown or text == "AB12CD34EF56AB78", f"the page without --privacy lacks {text}")
            done = run("report", path, "--privacy", "-o", "-")
            self.assertEqual(done.status, 0, done.message)
            shown = Page(done.out)
            everything = done.out.decode() + json.dumps(shown.library, ensure_ascii=False) + shown.title
            for text in personal:
                self.assertNotIn(text, everything)
            self.assertNotIn("Serial", [label for label, _ in shown.library["facts"]])
            self.assertIn("Model", [label for label, _ in shown.library["facts"]])
            self.assertEqual(shown.library["songs"]["title"], ["Bought by (address left out)", "(left out)"])
            self.assertIsNone(shown.library["songs"]["comment"])
            self.assertEqual(shown.library["words"]["comment"], [""])
            self.assertEqual(shown.library["playlists"][0]["name"], "Library")
            self.assertEqual(len(shown.library["health"]["missing"]), 2)
            self.assertEqual(report(path, "--privacy", "--playlist", "0").title, "Library")

    def test_title_is_the_asked_one_else_the_players_name_else_the_file(self):
        unnamed = self.write("My.itdb", library([{"title": "x"}]))
        for arguments, title in (((PLAYER,), "Sample Player"), ((PLAYER, "--title", "A & B"), "A & B"),
                                 ((PLAYER, "--privacy"), "iPod (generation 5), 30 GB, white"),
                                 ((PLAYER, "--privacy", "--title", "Ann"), "Ann"), ((unnamed,), "My.itdb"),
                                 ((unnamed, "--privacy"), "Music library")):
            page = report(*arguments)
            self.assertEqual((page.title, page.library["title"]), (title, title))

    def test_covers_are_small_pictures_that_stand_once(self):
        page = report(PLAYER).library
        self.assertGreater(len(page["covers"]), 5)
        self.assertEqual(len(set(page["covers"])), len(page["covers"]))
        used = {album["cover"] for album in page["albums"]} - {None}
        self.assertEqual(used, set(range(len(page["covers"]))))
        for cover in page["covers"]:
            self.assertLessEqual(len(cover), MOST_COVER)
            head, _, data = cover.partition(",")
            self.assertEqual(head, "data:image/jpeg;base64")
            picture = base64.b64decode(data, validate=True)
            self.assertTrue(picture.startswith(b"\xff\xd8\xff") and picture.endswith(b"\xff\xd9"))
        with_covers = {folded(song["album"]) for song in export(PLAYER)["songs"] if song["has_cover"]} - {""}
        shown = {folded(album["name"]) for album in page["albums"] if album["cover"] is not None}
        self.assertEqual(shown, with_covers)
        bare = report(PLAYER, "--no-covers").library
        self.assertEqual((bare["covers"], {album["cover"] for album in bare["albums"]}), ([], {None}))

    def test_pictures_that_cannot_be_read_are_counted(self):
        player = self.player_copy()
        for name in ("F1028_1.ithmb", "F1029_1.ithmb"):
            os.unlink(os.path.join(player, "iPod_Control", "Artwork", name))
        done = run("report", player, "-o", "-")
        self.assertEqual((done.status, Page(done.out).library["covers"]), (0, []))
        self.assertRegex(done.message, r"^zemhost: \S+: \d+ covers left out that cannot be read\n$")

    def test_songs_take_at_most_250_bytes(self):
        path = generated(os.path.join(self.folder, "many"), 4000)
        empty = len(run("report", generated(os.path.join(self.folder, "none"), 0), "-o", "-").out)
        size = len(run("report", path, "-o", "-").out)
        print(f"{(size - empty) / 4000:.0f} bytes a song, {empty} for the page")
        self.assertLessEqual((size - empty) / 4000, 250)
        self.assertLessEqual(empty, 600_000)

    def test_file_appears_whole_or_not_at_all(self):
        target = os.path.join(self.folder, "page.html")
        stopped = run("report", PLAYER, "-o", target, file_size=5000)
        self.assertEqual((stopped.status, os.listdir(self.folder)), (1, []))
        self.assertIn("page.html: File too large", stopped.message)
        self.assertEqual(run("report", PLAYER, "-o", target).status, 0)
        with open(target, "rb") as file:
            whole = file.read()
        self.assertEqual(Page(whole).title, "Sample Player")
        self.assertEqual(run("report", PLAYER, "-o", target, file_size=5000).status, 1)
        with open(target, "rb") as file:
            self.assertEqual(file.read(), whole)
        self.assertEqual(os.listdir(self.folder), ["page.html"])

    def test_output_must_be_named(self):
        refused = run("report", PLAYER)
        self.assertEqual(refused.status, 2)
        self.assertIn("--output is required", refused.message)


if __name__ == "__main__":
    unittest.main()
