"""What the SQLite files of a newest nano say, read by Python's own sqlite3 and plain tables that share nothing with the
program under test. Dates are seconds since the start of 1904, in UTC."""

import codecs
import collections
import contextlib
import os
import sqlite3
import urllib.parse

import list_model
import song_model
from song_model import YEAR_1980, YEAR_2001

codecs.register_error("each", lambda error: ("\uFFFD" * (error.end - error.start), error.end))


class Text(bytes):
    """A text as its bytes, to be told from a BLOB."""


class Table(list):
    """Rows as dictionaries; state: "read", "missing" or "damaged"."""

    state = "read"


class Files:
    def __init__(self, path):
        self.path = path
        self.handle = sqlite3.connect(f"file:{urllib.parse.quote(path)}?mode=ro&immutable=1", uri=True)
        self.handle.text_factory = Text
        for limit, value in ((sqlite3.SQLITE_LIMIT_LENGTH, 1 << 20), (sqlite3.SQLITE_LIMIT_SQL_LENGTH, 32 << 10),
                             (sqlite3.SQLITE_LIMIT_COLUMN, 250)):
            self.handle.setlimit(limit, value)
        self.handle.execute("PRAGMA cell_size_check = ON")
        if self.handle.execute("SELECT name FROM sqlite_schema LIMIT 1").fetchone() is None:
            raise sqlite3.DatabaseError("no tables")

    def table(self, name, *columns):
        rows, there = Table(), None
        try:
            there = {bytes(row[1]).decode(errors="replace").lower() for row in self.handle.execute(f'PRAGMA table_info("{name}")')}
            if not there:
                rows.state = "missing"
                return rows
            chosen = ", ".join(f'"{column}"' if column in there else "NULL" for column in columns)
            query = f'SELECT {chosen} FROM "{name}" NOT INDEXED'
            for row in self.handle.execute(query):
                rows.append(dict(zip(columns, row)))
        except sqlite3.Error:
            rows.state = "damaged"
            # Python looks for the next row before it gives one, and so keeps back the last before the damage. Asked
            # anew, since SQLite looks at a page the first time alone.
            if there:
                with contextlib.suppress(sqlite3.Error):
                    last = Files(self.path).handle.execute(f"{query} LIMIT {len(rows) + 1}").fetchall()[len(rows):]
                    rows += [dict(zip(columns, row)) for row in last]
        return rows


def opened(path):
    try:
        return Files(path) if path and os.path.getsize(path) else None
    except sqlite3.Error:
        return None


def whole(value):
    if isinstance(value, int):
        return value
    return int(value) if isinstance(value, float) and -2.0**63 <= value < 2.0**63 else None


def within(low, high):
    def rule(value):
        value = whole(value)
        return value if value is not None and low <= value <= high else None
    return rule


number = within(0, 0xFFFFFFFF)
nonzero = within(1, 0xFFFFFFFF)


def flag(value):
    value = whole(value)
    return None if value is None else value != 0


def text(value):
    return bytes(value).decode("utf-8", "each") if isinstance(value, Text) else ""


def is_lossy(value):
    return "\uFFFD" in text(value) and b"\xEF\xBF\xBD" * text(value).count("\uFFFD") not in bytes(value)


def date(value):
    value = whole(value)
    if not value:
        return None
    value += YEAR_2001
    return value if YEAR_1980 <= value <= 0xFFFFFFFF else None


ITEM = {
    "duration": ("total_time_ms", number), "start": ("start_time_ms", nonzero), "stop": ("stop_time_ms", nonzero),
    "track": ("track_number", number), "track_total": ("track_count", number), "disc": ("disc_number", nonzero),
    "discs": ("disc_count", nonzero), "year": ("year", number), "bpm": ("bpm", within(1, 0xFFFF)),
    "media_type": ("media_kind", number), "movie": ("is_movie", flag), "compilation": ("is_compilation", flag),
    "checked": ("is_user_disabled", lambda value: {True: False, False: True}.get(flag(value))),
    "remembers_position": ("remember_bookmark", flag), "skipped_in_shuffle": ("exclude_from_shuffle", flag),
    "gapless_album": ("part_of_gapless_album", flag),
    "explicit": ("content_rating", lambda value: {1: True, 2: False}.get(whole(value))),
    "lyrics": ("has_lyrics", flag), "modified": ("date_modified", date), "released": ("date_released", date),
    "volume": ("relative_volume", within(-255, 255)), "image": ("artwork_cache_id", nonzero),
    "picture": ("artwork_status", lambda value: {1: True, 2: False}.get(whole(value))),
    "place": ("physical_order", whole),
}
ITEM_TEXTS = {7: "eq_preset", 8: "comment", 13: "grouping", 22: "album_artist", 23: "sort_artist", 27: "sort_title",
              28: "sort_album", 29: "sort_album_artist", 30: "sort_composer", 39: "copyright"}
NAMED = {"title": None, "artist": ("track_artist_pid", "track_artist"), "album": ("album_pid", "album"),
         "composer": ("composer_pid", "composer")}
ITEM_IDS = ("album_pid", "artist_pid", "track_artist_pid", "composer_pid", "genre_id", "category_id")
FORMAT = {"bit_rate": ("bit_rate", number), "sample_rate": ("sample_rate", nonzero),
          "channels": ("channels", within(1, 0xFFFF)), "gapless": ("gapless_heuristic_info", flag),
          "delay": ("gapless_encoding_delay", number), "padding": ("gapless_encoding_drain", number),
          "samples": ("duration", within(0, (1 << 63) - 1))}
STATS = {"heard": ("has_been_played", flag), "last_played": ("date_played", date), "plays": ("play_count_user", number),
         "recent_plays": ("play_count_recent", number), "last_skipped": ("date_skipped", date),
         "skips": ("skip_count_user", number), "recent_skips": ("skip_count_recent", number),
         "bookmark": ("bookmark_time_ms", nonzero), "rating": ("user_rating", within(0, 100))}
VIDEO = {"season": ("season_number", nonzero), "episode": ("episode_sort_id", nonzero)}
VIDEO_TEXTS = {19: "series_name", 31: "sort_series_name", 20: "episode_id", 21: "network_name"}
PODCAST_TEXTS = {15: "external_guid", 16: "feed_url", 24: "feed_keywords"}
SMART = {"uses_rules": ("smart_is_filtered", flag), "is_limited": ("smart_is_limited", flag),
         "is_live": ("smart_is_dynamic", flag), "only_checked": ("smart_enabled_only", flag),
         "reverse": ("smart_reverse_limit_order", flag), "limit_kind": ("smart_limit_kind", number),
         "limit_order": ("smart_limit_order", number), "limit": ("smart_limit_value", number),
         "created": ("date_created", date), "modified": ("date_modified", date),
         "category": ("distinguished_kind", nonzero)}
FACTS = [*ITEM, *FORMAT, *STATS, *VIDEO, "size", "rate_word", "added", "purchased", "bought", "protected", "sound_check",
         "persistent_id"]


def take(song, row, fields):
    song.update({name: rule(row[column]) for name, (column, rule) in fields.items()})


def add_texts(song, row, columns):
    song["texts"] += [[kind, text(row[column])] for kind, column in columns.items() if text(row[column])]


class Nano:
    """songs, lists, version, has_counts, categories; ValueError where Library.itdb cannot be shown."""

    def __init__(self, path):
        self.path = path
        library = opened(path)
        if library is None:
            raise ValueError(path)
        self._songs(library)
        self._lists(library)
        self._kinds = self._names(library, "location_kind_map", "id", "kind")
        self.version = ""
        for row in library.table("version_info", "major", "minor"):
            if whole(row["major"]) is not None and whole(row["minor"]) is not None:
                self.version = f"{whole(row['major'])}.{whole(row['minor'])}"
        self._locations(opened(self._beside("Locations.itdb")))
        dynamic = opened(self._beside("Dynamic.itdb"))
        for row in dynamic.table("item_stats", "item_pid", *[column for column, _ in STATS.values()]) if dynamic else []:
            if self._of(row):
                take(self._of(row), row, STATS)
        extras = opened(self._beside("Extras.itdb"))
        for row in extras.table("lyrics", "item_pid", "lyrics") if extras else []:
            if self._of(row) and text(row["lyrics"]):
                self._of(row)["lyrics"] = True
        for row in extras.table("chapter", "item_pid", "data") if extras else []:
            if self._of(row):
                data = row["data"] if type(row["data"]) is bytes else b""  # a text is none
                self._of(row)["chapters"] = [[start, title, url.hex()] for start, title, url in list_model.chapters_of(data)]
        self.has_counts = self._join_counts()

    def _beside(self, name):
        path = os.path.join(os.path.dirname(self.path), name)
        return path if os.path.exists(path) else None

    def _of(self, row):
        return self.by_pid.get(whole(row["item_pid"]))

    @staticmethod
    def _names(file, table, key, name):
        names = {}
        for row in file.table(table, key, name, "is_unknown"):
            if whole(row[key]) is not None:
                names.setdefault(whole(row[key]), "" if flag(row["is_unknown"]) else text(row[name]))
        return names

    def _songs(self, library):
        columns = ["pid", *NAMED, *ITEM_IDS, *ITEM_TEXTS.values(), "description", "description_long",
                   *[column for column, _ in ITEM.values()]]
        items = library.table("item", *columns)
        if items.state == "missing":
            raise ValueError(self.path)
        tables = {table: self._names(library, table, "pid", "name") for table in ("track_artist", "album", "composer")}
        genres = self._names(library, "genre_map", "id", "genre")
        categories = self._names(library, "category_map", "id", "category")
        self.by_pid = {}
        for row in items:
            pid = whole(row["pid"])
            if pid is None or pid in self.by_pid:
                continue
            song = self.by_pid[pid] = {**dict.fromkeys(FACTS), "pid": pid, "path": "", "kind": "", "texts": [], "chapters": [],
                                       "persistent_id": pid & 0xFFFFFFFFFFFFFFFF, "lossy": []}
            take(song, row, ITEM)
            for name, link in NAMED.items():
                song[name] = text(row[name])
                if is_lossy(row[name]):
                    song["lossy"].append(name)
                if not song[name] and link:
                    song[name] = tables[link[1]].get(whole(row[link[0]]) or 0, "")
            song["genre"] = genres.get(whole(row["genre_id"]) or 0, "")
            add_texts(song, row, ITEM_TEXTS)
            for kind, words in ((9, categories.get(whole(row["category_id"]) or 0, "")),
                                (14, text(row["description_long"]) or text(row["description"]))):
                if words:
                    song["texts"].append([kind, words])
        self.songs = sorted(self.by_pid.values(), key=lambda song: (song["place"] is None, song["place"] or 0))
        for row in library.table("avformat_info", "item_pid", *[column for column, _ in FORMAT.values()]):
            if self._of(row):
                take(self._of(row), row, FORMAT)
        for row in library.table("video_info", "item_pid", *[column for column, _ in VIDEO.values()],
                                 *VIDEO_TEXTS.values()):
            if self._of(row):
                take(self._of(row), row, VIDEO)
                add_texts(self._of(row), row, VIDEO_TEXTS)
        for row in library.table("podcast_info", "item_pid", "date_released", *PODCAST_TEXTS.values()):
            song = self._of(row)
            if song:
                song["released"] = song["released"] or date(row["date_released"])
                add_texts(song, row, PODCAST_TEXTS)
        store = library.table("store_info", "item_pid", "date_purchased", "store_item_id", "date_released")
        for row in store:
            song = self._of(row)
            if song:
                song["purchased"] = date(row["date_purchased"])
                song["bought"] = bool(flag(row["date_purchased"]) or flag(row["store_item_id"]))
                song["released"] = song["released"] or date(row["date_released"])
        for song in self.songs:
            if store.state == "read" and song["bought"] is None:
                song["bought"] = False
            if not song["gapless"]:
                song.update(delay=None, padding=None, samples=None)

    def _locations(self, file):
        if file is None:
            return
        bases = self._names(file, "base_location", "id", "path")
        found = collections.defaultdict(list)
        for row in file.table("location", "item_pid", "sub_id", "base_location_id", "location_type", "location",
                              "kind_id", "file_size", "date_created"):
            if self._of(row):
                found[whole(row["item_pid"])].append(row)
        for pid, rows in found.items():
            part = [whole(row["sub_id"]) for row in rows]
            row = min(zip(rows, part), key=lambda pair: (pair[1] is None, pair[1] or 0))[0]
            song = self.by_pid[pid]
            song["added"] = date(row["date_created"])
            song["kind"] = self._kinds.get(whole(row["kind_id"]) or 0, "")
            song["size"] = number(row["file_size"])
            base = whole(row["base_location_id"]) or 0
            is_file = whole(row["location_type"]) in (None, int.from_bytes(b"FILE", "big"))
            if is_file and text(row["location"]) and (base in bases or base == 0):
                parts = (bases.get(base, "") + "/" + text(row["location"])).split("/")
                song["path"] = "".join(":" + part.replace(":", "/") for part in parts if part)

    def _lists(self, library):
        lists = {}
        for row in library.table("container", "pid", "name", "name_order", "parent_pid", "is_hidden", "smart_is_folder",
                                 "smart_criteria", *[column for column, _ in SMART.values()]):
            pid = whole(row["pid"])
            if pid is None or pid in lists:
                continue
            criteria = row["smart_criteria"] if isinstance(row["smart_criteria"], bytes) else b""
            one = lists[pid] = {"pid": pid, "name": text(row["name"]), "lost": is_lossy(row["name"]),
                                "order": whole(row["name_order"]), "parent": whole(row["parent_pid"]) or None,
                                "criteria": bytes(criteria).hex(), "rows": []}
            take(one, row, SMART)
            one["kind"] = "folder" if flag(row["smart_is_folder"]) else "smart" if criteria else "ordinary"
            one["hidden"] = bool(flag(row["is_hidden"]) and one["category"])
        place = {song["pid"]: index for index, song in enumerate(self.songs)}
        for row in library.table("item_to_container", "container_pid", "item_pid", "physical_order"):
            of, item = lists.get(whole(row["container_pid"])), whole(row["item_pid"])
            if of is not None and item is not None:
                of["rows"].append((whole(row["physical_order"]), [item, place.get(item)]))
        primary = [whole(row["primary_container_pid"]) for row in library.table("db_info", "primary_container_pid")]
        primary = next((pid for pid in primary if pid is not None), None)
        if primary in lists:
            lists[primary].update(kind="library", hidden=False)
        shown = [one for one in lists.values() if not one["hidden"]]
        shown.sort(key=lambda one: (one["kind"] != "library", one["order"] is None, one["order"] or 0, one["pid"]))
        for one in shown:
            rows = sorted(one.pop("rows"), key=lambda row: (row[0] is None, row[0] or 0))
            one["entries"] = [entry for _, entry in rows]
            del one["order"], one["hidden"]
        self.lists, self.categories = shown, len(lists) - len(shown)

    def _join_counts(self):
        folder = os.path.dirname(self.path)
        if os.path.basename(folder).lower() == "itunes library.itlp":
            folder = os.path.dirname(folder)
        path = os.path.join(folder, "Play Counts")
        if not os.path.exists(path):
            return False
        with open(path, "rb") as file:
            data = file.read()
        entries = song_model.play_counts(data, len(self.songs))
        if entries is None or [song["place"] for song in self.songs] != list(range(len(self.songs))):
            return False
        length = int.from_bytes(data[8:12], "little")
        start = int.from_bytes(data[4:8], "little")
        nevers = collections.Counter()
        for index in range(len(entries)):
            entry = data[start + index * length:][:length]
            stored = [int.from_bytes(entry[at:at + 4], "little") for at in (4, 0x18) if at + 4 <= length]
            near = [value for value in stored if abs(value - YEAR_2001) <= 14 * 3600]
            nevers.update(near[:1])
        most = max(nevers.values(), default=0)
        zone = min((value for value, times in nevers.items() if times == most), default=YEAR_2001) - YEAR_2001
        slack = 2 * 3600 if nevers else 14 * 3600
        for entry in entries:
            for name in ("last_played", "last_skipped"):
                if entry[name] is not None:
                    entry[name] -= zone
        gaps = [entry["last_played"] - song["last_played"] for song, entry in zip(self.songs, entries)
                if entry["last_played"] is not None and song["last_played"] is not None]
        if sum(gap < -slack for gap in gaps) > sum(gap >= -slack for gap in gaps):
            return False
        rated = [(song["rating"], entry["rating"]) for song, entry in zip(self.songs, entries) if song["rating"]]
        with_none = not rated or any(one == other for one, other in rated)
        for song, entry in zip(self.songs, entries):
            for name in ("plays", "skips"):
                if song[name] is not None:
                    song[name] = min(song[name] + (entry[name] or 0), 0xFFFFFFFF)
            for name in ("last_played", "last_skipped"):
                if entry[name] is not None and (song[name] is None or entry[name] > song[name] + slack):
                    song[name] = entry[name]
            song["bookmark"] = entry["bookmark"] or song["bookmark"]
            if entry["heard"] is not None:
                song["heard"] = entry["heard"]
            if entry["rating"] is not None and (entry["rating"] or with_none):
                song["rating"] = entry["rating"]
        return True
