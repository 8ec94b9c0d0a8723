#!/usr/bin/env python3
"""Every export, read back by another reader, is song for song and field for field what the class answers."""

import csv
import datetime
import io
import json
import math
import os
import sqlite3
import sys
import tempfile
import unittest

import jsonschema

from answers import FolderItem, answers
from database_file import File
from exported_lists import chapters_of, expected_playlists, unsigned
from program import DESKTOP, PLAYER, SHARED, SOURCE, generated, real_files, run

sys.path.append(os.path.join(SOURCE, "tests", "player", "model"))
import image_model, song_model  # noqa: E401, E402

with open(os.path.join(SOURCE, "docs", "export-schema.json"), encoding="utf-8") as schema_file:
    SCHEMA = json.load(schema_file)
SONG = SCHEMA["$defs"]["song"]
FIELDS = list(SONG["properties"])
AS_JSON = ("chapters", "other_texts")  # in formats that have no such values

# Fields that are a method's answer and nothing else.
WORDS = {"track": "GetNumOfTrack", "track_total": "GetTotalTrack", "year": "GetYear", "duration_ms": "GetDuration",
         "size_bytes": "GetFileSize", "title_encode": "GetTitleEncode",
         "path_encode": "GetPathEncode", "album_encode": "GetAlbumEncode", "artist_encode": "GetArtistEncode",
         "genre_encode": "GetGenreEncode", "composer_encode": "GetComposerEncode",
         "file_type_encode": "GetFileTypeEncode"}
TEXTS = {"title": "GetTitle", "artist": "GetArtist", "album": "GetAlbum", "genre": "GetGenre",
         "composer": "GetComposer", "file_type": "GetFileType", "track_text": "GetTrackTotalInfo", "path": "GetPath",
         "absolute_path": "GetAbsolutePath"}
NUMBERED = {"comment": 8, "grouping": 13, "description": 14, "subtitle": 18, "album_artist": 22, "enclosure_url": 15,
            "feed_url": 16, "category": 9, "show": 19}
SORTED = {"sort_title": 27, "sort_artist": 23, "sort_album": 28, "sort_album_artist": 29, "sort_composer": 30,
          "sort_show": 31}
# Facts as the model has them, by the names of their fields.
FACTS = {"play_count": "plays", "skip_count": "skips", "rating": "rating", "bookmark": "bookmark", "heard": "heard",
         "disc": "disc", "discs": "discs", "bpm": "bpm", "season": "season", "episode": "episode",
         "explicit": "explicit", "lyrics": "lyrics", "checked": "checked", "protected": "protected",
         "bought": "bought", "skipped_in_shuffle": "skipped_in_shuffle", "remembers_position": "remembers_position",
         "start_ms": "start", "stop_ms": "stop", "channels": "channels", "gapless": "gapless",
         "gapless_delay": "delay", "gapless_padding": "padding", "samples": "samples",
         "gapless_album": "gapless_album"}
DATES = {"date_added": "added", "date_released": "released", "date_purchased": "purchased",
         "last_played": "last_played", "last_skipped": "last_skipped"}
KINDS = [(6, "video podcast"), (1, "music"), (2, "film"), (4, "podcast"), (8, "audiobook"), (0x20, "music video"),
         (0x40, "TV show"), (0x400, "home video"), (0x1000, "game"), (0x4000, "ringtone"), (0x8000, "rental"),
         (0x10000, "booklet"), (0x20000, "app"), (0x100000, "voice memo"), (0x200000, "lecture")]
OTHERS = {"track_id": "GetID", "_media_type": "GetMediaType", "compilation": "GetCompilation", "numbered_texts": "CountSongUnknown",
          "_bit_rate": "GetBitrate", "_sample_rate": "GetSamplerate", "_date": "GetDataAdded",
          "_file": "GetFolderItem"}
NUMBERS = range(0, 60)


def date_text(seconds):
    if not seconds:
        return None
    return (datetime.datetime(1904, 1, 1) + datetime.timedelta(seconds=seconds)).isoformat()


def kind_text(bits):
    names = []
    for bit, name in KINDS:
        if bits & bit == bit:
            names.append(name)
            bits &= ~bit
    if bits & 0xC00000:
        names.append("book")
    bits &= ~0xC00000
    return ", ".join(names + ([hex(bits)] if bits else [])) or None


def add_facts(song, facts, counted):
    """What the player's files say besides the class, and of the class's answers those that the header is long enough
    for."""
    assert facts["id"] == song["track_id"] & 0xFFFFFFFF
    song.update({name: facts[fact] for name, fact in FACTS.items()})
    song.update({name: date_text(facts[fact]) for name, fact in DATES.items()})
    for name in ("compilation", "movie", "media_type"):
        if facts[name] is None:
            song[name] = None
    song["media_kind"] = kind_text(facts["media_type"] or 0)
    song["plays_since_sync"] = counted and counted["plays"]
    song["skips_since_sync"] = counted and counted["skips"]
    song.update(play_count_recent=None, skip_count_recent=None)  # of the newest nanos alone
    volume = facts["volume"]
    song["volume_percent"] = None if volume is None else round(volume * 100 / 255)
    loudness = facts["sound_check"]
    song["sound_check_db"] = loudness and math.floor(-1000 * math.log10(loudness / 1000) + 0.5) / 100
    song["persistent_id"] = facts["persistent_id"] and f"{facts['persistent_id']:016X}"


def expected_songs(path, database_file):
    """The songs as the class's answers make them, by methods that the export of a field does not use where there are
    two ways, and by the file's own bytes where the class hands them on unconverted."""
    library_type, count = answers(path, ["LibType", "CountSongs"])
    lines, names = [], []
    for name, method in {**WORDS, **TEXTS, **OTHERS}.items():
        names.append(name)
        lines.append(method + "({})")
    for number in range(4):
        names.append(f"prop_{number}")
        lines.append(f"GetProp({{}}, {number})")
    for number in NUMBERS:
        names.append(("text", number))
        lines.append(f"GetUnknown({{}}, {number})")
    told = iter(answers(path, [line.format(song) for song in range(count) for line in lines]))
    songs = []
    for song in range(count):
        have = {name: next(told) for name in names}
        songs.append(expected_song(song, have, library_type, database_file))
    by_id = {}
    for song in songs:
        by_id.setdefault(song["track_id"], song["song_index"])
    flags = answers(path, [f"GetMovieFileFlag({song['track_id']})" for song in songs])
    for song, flag in zip(songs, flags):
        song["movie"] = flag if by_id[song["track_id"]] == song["song_index"] else None
    return songs


def expected_song(index, have, library_type, database_file):
    raw = database_file.tracks[index]
    song = {"song_index": index}
    for name in WORDS:
        song[name] = unsigned(have[name])
    for name in TEXTS:
        song[name] = have[name] or None
    for name in ("title", "artist", "album", "genre", "composer"):
        if have[name] is not None and have[name + "_encode"] == 0:  # bytes of the file, not yet words
            song[name] = database_file.text(index, name)
    for name in ("track_id", "compilation", "numbered_texts"):
        song[name] = have[name]
    for number in range(4):
        song[f"prop_{number}"] = unsigned(have[f"prop_{number}"])

    # A player's rates come with their bytes reversed.
    def rate(word):
        return int.from_bytes(unsigned(word).to_bytes(4, "big" if library_type == 0 else "little"), "big")

    song["bit_rate_kbps"] = rate(have["_bit_rate"])
    hertz = rate(have["_sample_rate"])
    song["sample_rate_hz"] = (hertz >> 16) + (hertz >> 15 & 1)
    seconds = unsigned(have["_date"])
    song["date_modified"] = date_text(seconds)
    assert seconds == int.from_bytes(raw["words"][0x20:0x24], "big" if library_type == 0 else "little")

    texts = {number: have["text", number] for number in NUMBERS if have["text", number] is not None}
    for number in (15, 16):
        if number in texts:
            texts[number] = raw["texts"][number]  # 8-bit, where the class can only read UTF-16
    for name, number in NUMBERED.items():
        song[name] = texts.pop(number, None)
    for name, number in SORTED.items():
        song[name] = texts.pop(number, "").rstrip("".join(map(chr, range(32)))) or None
    song["media_type"] = unsigned(have["_media_type"])
    song["other_texts"] = {str(number): text for number, text in texts.items()} or None

    item = have["_file"]
    assert item is None or isinstance(item, FolderItem)
    song["file"] = item
    return song


def on_this_machine(song, path):
    """The folder item's colon-separated path as this machine has it, below the player's root."""
    if song["file"] is None or not os.path.isdir(path):
        return None
    volume, _, rest = song["file"].partition(":")
    assert volume == os.path.basename(path)
    return os.path.join(os.path.realpath(path), *(part.replace("/", ":") for part in rest.split(":")))


def in_csv(value):
    if value is None:
        return ""
    if isinstance(value, bool):
        return "true" if value else "false"
    return value if isinstance(value, str) else str(value)


def of_each_database(test):
    """Runs a test for every database in turn."""

    def run_all(self):
        for path, (songs, playlists) in self.databases.items():
            with self.subTest(os.path.basename(path)):
                test(self, path, songs, playlists)

    return run_all


class ReadBack(unittest.TestCase):
    maxDiff = 3000

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        little = generated(os.path.join(cls.folder.name, "little.itunesdb"), 300, 4, 40, "little")
        big = generated(os.path.join(cls.folder.name, "big.library"), 60, 3, 20, "big")
        cls.databases = {}
        with_counts = os.path.join(SHARED, "data", "players", "fourth-generation", "iTunesDB")
        for path in [PLAYER, DESKTOP, little, big, *real_files(), *filter(os.path.exists, [with_counts])]:
            database = os.path.join(path, "iPod_Control", "iTunes", "iTunesDB") if path == PLAYER else path
            file = File(database)
            songs = expected_songs(path, file)
            (facts, entries), covers = song_model.known(database), image_model.covers_of(path)
            for song, fact, counted in zip(songs, facts, entries or [None] * len(songs), strict=True):
                add_facts(song, fact, counted)
                song["has_cover"] = covers and covers.has_cover(fact["image"], fact["persistent_id"], fact["picture"])
            playlists = expected_playlists(path, database, file)
            for song, chapters in zip(songs, chapters_of(database), strict=True):
                song["chapters"] = chapters
                if chapters:  # they are no text
                    del song["other_texts"]["17"]
                    song["other_texts"] = song["other_texts"] or None
            for song in songs:
                song["file"] = on_this_machine(song, path)
            ids = {}
            for song in songs:
                ids.setdefault(song["track_id"], song["song_index"])
            for playlist in playlists:
                for entry in playlist["entries"]:  # the class answers 0 where no song has the ID
                    if entry["song_index"] != ids.get(entry["track_id"]):
                        assert entry["song_index"] == 0 and entry["track_id"] not in ids
                        entry["song_index"] = None
            cls.databases[path] = (songs, playlists)

    def export(self, path, *options):
        done = run("export", path, *options)
        self.assertEqual((done.status, done.message), (0, ""))
        return done.text

    def assert_songs(self, got, expected):
        self.assertEqual(len(got), len(expected))
        for one, other in zip(got, expected):
            self.assertEqual(list(one), FIELDS)
            self.assertEqual(one, {name: other[name] for name in FIELDS})

    def assert_playlists(self, got, expected):
        """The words of rules have tests of their own; here each text that rules hold must be among them."""
        for one, other in zip(got, expected, strict=True):
            rules, texts = one.pop("rules"), other["rules"]
            self.assertEqual(rules is None, texts is None)
            for text in texts or []:
                self.assertIn(text, rules)
            self.assertEqual(one, {name: value for name, value in other.items() if name != "rules"})

    def test_libraries_hold_what_the_checks_are_about(self):
        """Without this the comparisons could pass over nothing."""
        songs, playlists = self.databases[PLAYER]
        self.assertEqual((len(songs), len(playlists)), (29, 9))
        self.assertEqual([playlist["kind"] for playlist in playlists[5:]], ["playlist", "podcasts", "smart", "on-the-go"])
        self.assertEqual(len(songs[25]["chapters"]), 3)
        self.assertEqual(songs[0]["date_added"], "2005-03-12T00:00:00")  # the day the sample was given
        self.assertNotEqual(songs[25]["date_added"], songs[25]["date_modified"])
        self.assertEqual([songs[0]["play_count"], songs[0]["plays_since_sync"]], [33, 2])
        self.assertEqual(songs[27]["enclosure_url"], "http://attic-radio.example/episodes/12.mp3")
        self.assertTrue(any(song["compilation"] for song in songs))
        self.assertTrue(any(song["movie"] for song in songs))
        self.assertTrue(any(song["title_encode"] == 0 for song in self.databases[DESKTOP][0]))

    @of_each_database
    def test_json(self, path, songs, playlists):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)
        validator = jsonschema.Draft202012Validator(SCHEMA)
        got = json.loads(self.export(path, "--format", "json"))
        # One song of each kind: with these fields, of these types. The checks of a schema are slow.
        kinds = {tuple((name, type(value)) for name, value in song.items()): song for song in got["songs"]}
        for error in validator.iter_errors(got | {"songs": list(kinds.values())}):
            self.fail(error.message)
        self.assert_songs(got["songs"], songs)
        self.assert_playlists(got["playlists"], playlists)

    @of_each_database
    def test_ndjson(self, path, songs, playlists):
        validator = jsonschema.Draft202012Validator({**SONG, "$defs": SCHEMA["$defs"]})
        lines = self.export(path, "--format", "ndjson").split("\n")
        self.assertEqual(lines.pop(), "")
        got = [json.loads(line) for line in lines]
        for song in got[:100]:
            validator.validate(song)
        self.assert_songs(got, songs)

    @of_each_database
    def test_csv(self, path, songs, playlists):
        text = self.export(path, "--format", "csv", "--fields", "all")
        rows = list(csv.reader(io.StringIO(text, newline=""), strict=True))
        self.assertEqual(rows[0], FIELDS)
        self.assertEqual(text.count("\r\n"), len(songs) + 1)
        self.assertEqual(text.count("\n"), len(songs) + 1)
        self.assertEqual(len(rows), len(songs) + 1)
        for row, song in zip(rows[1:], songs):
            for name in AS_JSON:
                text = row[FIELDS.index(name)]
                self.assertEqual(json.loads(text) if text else None, song[name])
                row[FIELDS.index(name)] = ""
            self.assertEqual(row, ["" if name in AS_JSON else in_csv(song[name]) for name in FIELDS])

    @of_each_database
    def test_sqlite(self, path, songs, playlists):
        file = os.path.join(self.folder.name, "library.sqlite")
        self.export(path, "--format", "sqlite", "-o", file)
        database = sqlite3.connect(file)
        database.row_factory = sqlite3.Row
        self.assertEqual([tuple(row) for row in database.execute("PRAGMA integrity_check")], [("ok",)])
        self.assertEqual(list(database.execute("PRAGMA foreign_key_check")), [])
        got = []
        for row in database.execute("SELECT * FROM songs ORDER BY rowid"):
            song = dict(row)
            for name in FIELDS:
                if "boolean" in SONG["properties"][name]["type"] and song[name] is not None:
                    song[name] = bool(song[name])
            for name in AS_JSON:
                song[name] = song[name] and json.loads(song[name])
            got.append(song)
        self.assert_songs(got, songs)
        lists = [dict(row) for row in database.execute("SELECT * FROM playlists ORDER BY playlist_number")]
        for row in lists:
            row["entries"] = [{**dict(entry), "play": None if entry["play"] is None else bool(entry["play"])}
                              for entry in database.execute(
                "SELECT position, song_index, track_id, play, flags, podcast FROM entries WHERE playlist_number = ? "
                "ORDER BY position", [row["playlist_number"]])]
        self.assert_playlists(lists, playlists)
        tables = {table: {(row["from"], row["table"], row["to"]) for row in
                          database.execute(f"PRAGMA foreign_key_list({table})")} for table in ["entries"]}
        self.assertEqual(tables["entries"], {("song_index", "songs", "song_index"),
                                             ("playlist_number", "playlists", "playlist_number")})
        for query in ("SELECT * FROM songs WHERE artist = 'x'", "SELECT * FROM songs WHERE track_id = 1",
                      "SELECT * FROM entries WHERE song_index = 1"):
            plan = " ".join(row["detail"] for row in database.execute("EXPLAIN QUERY PLAN " + query))
            self.assertIn("USING INDEX", plan)
        database.close()

    def m3u(self, text):
        lines = [line for line in text.split("\n") if not line.startswith("#PLAYLIST:")]
        self.assertEqual((lines[0], lines.pop()), ("#EXTM3U", ""))
        self.assertEqual(len(lines) % 2, 1)
        return list(zip(lines[1::2], lines[2::2]))

    @of_each_database
    def test_m3u8(self, path, songs, playlists):
        done = run("export", path, "--format", "m3u8", "--paths", "device")
        got = self.m3u(done.text)
        with_path = [song for song in songs if song["path"]]
        left_out = len(songs) - len(with_path)
        self.assertEqual(done.status, 3 if left_out else 0)
        self.assertEqual(f": {left_out} song" in done.message, left_out != 0)
        self.assertEqual(len(got), len(with_path))
        for (line, file), song in zip(got, with_path):
            seconds = (song["duration_ms"] + 500) // 1000 if song["duration_ms"] else -1
            artist = song["artist"] + " - " if song["artist"] else ""
            title = song["title"] or song["path"].rpartition(":")[2]
            self.assertEqual(line, f"#EXTINF:{seconds},{artist}{title}")
            self.assertEqual(file, song["path"].replace(":", "/"))

    def test_m3u8_names_files_of_this_machine(self):
        songs, playlists = self.databases[PLAYER]
        for playlist in playlists:
            number = playlist["playlist_number"]
            expected = [songs[entry["song_index"]]["file"] for entry in playlist["entries"]]
            host = self.m3u(self.export(PLAYER, "--format", "m3u8", "--playlist", str(number)))
            self.assertEqual([file for _, file in host], expected)
            lists = os.path.join(self.folder.name, "a", "b")
            os.makedirs(lists, exist_ok=True)
            file = os.path.join(lists, f"{number}.m3u8")
            self.export(PLAYER, "--format", "m3u8", "--playlist", str(number), "--paths", "relative", "-o", file)
            with open(file, encoding="utf-8", newline="") as text:
                relative = self.m3u(text.read())
            self.assertFalse(any(os.path.isabs(name) for _, name in relative))
            self.assertEqual([os.path.normpath(os.path.join(os.path.realpath(lists), name)) for _, name in relative],
                             expected)
        found = [os.path.isfile(song["file"]) for song in songs]
        self.assertEqual(found.count(False), 1)  # the one song whose file the sample lacks

    @of_each_database
    def test_one_playlist(self, path, songs, playlists):
        for playlist in playlists:
            number = str(playlist["playlist_number"])
            order = [entry["song_index"] for entry in playlist["entries"] if entry["song_index"] is not None]
            if len(order) != len(playlist["entries"]):
                continue  # the rest is reported on standard error: see the other tests
            rows = list(csv.DictReader(io.StringIO(self.export(
                path, "--format", "csv", "--playlist", number, "--fields", "track_id,song_index"), newline="")))
            self.assertEqual([row["song_index"] for row in rows], list(map(str, order)))
            got = json.loads(self.export(path, "--format", "json", "--playlist", number))
            self.assert_playlists(got["playlists"], [playlist])
            self.assert_songs(got["songs"], [songs[index] for index in dict.fromkeys(order)])


if __name__ == "__main__":
    unittest.main()
