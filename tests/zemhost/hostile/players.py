"""A hundred hostile players. Each is a function that fills a Place; its name says what is hostile about it."""

import os
import random
import re
import shutil
import socket
import struct

from place import (CANARY, FIRST_SONG, FORGED, MUSIC, chunk, compressed, database, library, play_counts, track_list)

PLAYERS = {}


def player(build):
    PLAYERS[build.__name__] = build
    return build


def family(name, rows):
    """Registers a player for each row; the function takes the place and the row."""
    def register(build):
        for row, value in rows.items():
            PLAYERS[f"{name}_{row}"] = lambda place, value=value: build(place, value)
        return build
    return register


# Locations: the path of the only song leads somewhere else. `{outside}` is that folder on the machine's disk.
@family("location", {
    "of_another_volume": ("S", "ystem{outside}:canary.mp3"),
    "of_the_passwords": ("S", "ystem:etc:passwd"),
    "of_the_environment": ("S", "ystem:proc:self:environ"),
    "of_a_device": ("S", "ystem:dev:zero"),
    "upwards": ("player", "::outside:canary.mp3"),
    "upwards_far": ("player", ":" * 40 + "etc:passwd"),
    "upwards_from_the_music": ("player", ":iPod_Control:Music:F00:::::outside:canary.mp3"),
    "with_dots": ("player", ":iPod_Control:Music:..:..:..:outside:canary.mp3"),
    "with_slashes": ("player", ":iPod_Control:Music:../../../outside/canary.mp3"),
    "with_backslashes": ("player", ":iPod_Control:Music:..\\..\\..\\outside\\canary.mp3"),
    "absolute": ("player", "{slashes}/canary.mp3"),
    "of_an_address": ("player", "http/::canary.example:x.mp3"),
    "of_a_share": ("player", ":/:server:share:x.mp3"),
    "of_the_player_itself": ("player", ":"),
    "of_nothing": ("player", ""),
    "of_the_database": ("player", ":iPod_Control:iTunes:iTunesDB"),
    "of_a_folder": ("player", ":iPod_Control:Music:F00"),
    "with_a_break": ("player", f":iPod_Control:Music:F00:A.mp3\n{FORGED}\nhttp://x/\r\n{FORGED}"),
    "with_a_null": ("player", ":iPod_Control:Music:F00:A.mp3\0.txt"),
    "without_end": ("player", ":iPod_Control" + ":Music" * 12_000),
    "with_half_characters": ("player", ":iPod_Control:Music:F00:\ud83c\udc00\udfff.mp3"),
})
def _location(place, row):
    label, path = row
    place.label(label)
    path = path.replace("{outside}", str(place.outside).replace("/", ":")).replace("{slashes}", str(place.outside))
    place.write_songs([{"title": "Song", "path": path}, {"title": "Other", "path": FIRST_SONG}], [("List", (0, 1))])
    place.write_music()


# Links in the places that a command opens. `{outside}` is the folder beside the player.
@family("link", {
    "as_a_song": ("Music/F00/A.mp3", "{outside}/canary.mp3"),
    "as_a_song_upwards": ("Music/F00/A.mp3", "../../../../outside/canary.mp3"),
    "as_a_song_to_a_pipe": ("Music/F00/A.mp3", "../../../../outside/fifo"),
    "as_a_song_to_the_passwords": ("Music/F00/A.mp3", "/etc/passwd"),
    "as_a_song_to_a_device": ("Music/F00/A.mp3", "/dev/zero"),
    "as_a_song_to_the_terminal": ("Music/F00/A.mp3", "/dev/tty"),
    "as_a_song_to_the_environment": ("Music/F00/A.mp3", "/proc/self/environ"),
    "as_a_song_to_itself": ("Music/F00/A.mp3", "A.mp3"),
    "as_a_folder_of_songs": ("Music/F00", "../../../outside/F00"),
    "as_a_folder_in_itself": ("Music/F00", "../Music/F00"),
    "as_the_root_in_the_music": ("Music/F00", "/"),
    "as_the_music_folder": ("Music", "../../outside"),
    "as_the_folder_of_the_database": ("iTunes", "../../outside/iTunes"),
    "as_the_folder_of_other_files": ("iTunes", "{outside}/F00"),
    "as_the_database": ("iTunes/iTunesDB", "{outside}/iTunesDB"),
    "as_the_database_to_a_pipe": ("iTunes/iTunesDB", "../../../outside/fifo"),
    "as_the_database_to_a_device": ("iTunes/iTunesDB", "/dev/zero"),
    "as_the_compressed_database": ("iTunes/iTunesCDB", "{outside}/iTunesDB"),
    "as_the_play_counts": ("iTunes/Play Counts", "{outside}/Play Counts"),
    "as_the_play_counts_of_another_case": ("iTunes/PLAY COUNTS", "../../../outside/Play Counts"),
    "as_the_play_counts_to_a_pipe": ("iTunes/Play Counts", "../../../outside/fifo"),
    "as_all_there_is": ("", "../outside"),
})
def _link(place, row):
    name, target = row
    place.ordinary()
    path = place.path(f"iPod_Control/{name}".rstrip("/"))
    if path.is_dir():
        shutil.rmtree(path)
    path.unlink(missing_ok=True)
    os.symlink(target.replace("{outside}", str(place.outside)), path)


def _make_socket(path):
    with socket.socket(socket.AF_UNIX) as made:
        here = os.open(path.parent, os.O_PATH)  # a socket's own path is short
        made.bind(f"/proc/self/fd/{here}/{path.name}")
        os.close(here)


def _make_unreadable(path):
    path.write_bytes(MUSIC)
    path.chmod(0)


_KINDS = {"pipe": os.mkfifo, "socket": _make_socket, "folder": os.mkdir, "unreadable_file": _make_unreadable}
_PLACES = {"song": "Music/F00/A.mp3", "database": "iTunes/iTunesDB", "play_counts": "iTunes/Play Counts"}


@family("special", {f"{kind}_as_the_{place}": (kind, place) for kind in _KINDS for place in _PLACES})
def _special(place, row):
    kind, where = row
    place.ordinary()
    path = place.path(f"iPod_Control/{_PLACES[where]}")
    path.unlink(missing_ok=True)
    _KINDS[kind](path)


@player
def special_unreadable_folders(place):
    place.ordinary()
    for name in ("Music/F01", "Music/F00"):
        place.path(f"iPod_Control/{name}/x")
        (place.root / "iPod_Control" / name).chmod(0)


# Texts: every field of the songs, the playlists and the names on the disk.
TEXTS = {
    "controls": "".join(map(chr, range(1, 0x20))) + "\x7f",
    "newer_controls": "".join(map(chr, range(0x80, 0xA0))),
    "escapes": "\x1b[2J\x1b[31mred\x1b[1;1H\x1b]0;title\x07\x1b]8;;http://x/\x1b\\link\x1b]52;c;eA==\x07\x9b2J\x1bc",
    "breaks": f"a\r\n{FORGED}\n{FORGED}\r{FORGED}\v{FORGED}\f{FORGED}\x85{FORGED}\u2028{FORGED}\u2029{FORGED}",
    "backspaces": "harmless\b\b\b\b\b\b\b\b\rharmful\t\t",
    "directions": "\u202egpj.exe\u202c \u2066x\u2069 \u200f\u200e\u061c \u202a\u202b\u202d\u2067\u2068",
    "half_characters": "\ud800a\udfff\udc00\ud83c",
    "marks_without_end": "e" + "\u0301" * 3000,
    "no_width": "\ufeff\u200b\u200c\u200d\u2060\ufffe\uffff\u00ad\u3164",
    "nulls": "a\0b\0\0",
    "ways_out": "../../../../outside/canary.mp3",
    "ways_out_elsewhere": "..\\..\\C:\\outside\\canary.mp3",
    "dots": "..",
    "devices": "CON .mp3",
    "programs": "autorun.inf",
    "hidden": ".bashrc",
    "options": "--output=/tmp/x",
    "formulas": "=HYPERLINK(\"http://x/\";\"y\")",
    "quotes": "\"');DROP TABLE songs;--\\\"</script>",
    "formats": "%s%n%1000000d{title:99999}",
    "shells": "$(touch x)`touch x`;touch x|touch x&",
    "lists": "#EXTM3U\n#EXTINF:1,x\nhttp://x/",
    "old_syllables": "\u1112\u1161\u11ab" * 500,
    "length": "x" * 70_000,
    "name_of_the_player": "player",
}


@family("text", TEXTS)
def _text(place, text):
    fields = ("title", "artist", "album", "genre", "composer")
    songs = [dict.fromkeys(fields, text) | {"path": FIRST_SONG, "size": len(MUSIC), "track": 1}]
    songs += [{field: text, "path": f":iPod_Control:Music:F00:{text}.mp3"} for field in fields]
    songs += [{"title": "Song", "path": f":iPod_Control:Music:{text}:A.{text}"}]
    place.write_songs(songs, [(text, (0, 1, 2)), (text, (0,)), (text + ".m3u8", (3, 4))])
    place.write_music()
    name = text.encode("utf-8", "replace").replace(b"\0", b"").replace(b"/", b"_")[:200]
    if name not in (b"..", b"."):
        with open(os.fsencode(place.path("iPod_Control/Music/F00/x").parent) + b"/" + name, "wb") as file:
            file.write(MUSIC)


@family("label", {"escapes": "\x1b]0;x\x07\x1b[2J", "breaks": f"a\n{FORGED}\r{FORGED}", "directions": "\u202eabc",
                  "bytes": "\udcff\udcfe\udc80", "option": "-o", "colons": "a:b::c", "length": "x" * 255,
                  "blanks": " ", "quotes": "'\"$(x)"})
def _label(place, name):
    place.label(name)
    place.write_songs([{"title": "Song", "path": FIRST_SONG}] * 2, [("List", (0, 7))])
    place.write_music()


@player
def label_with_planted_libraries(place):
    place.ordinary()
    for name in ("libz.so.1", "ZemiTunesDB.so", "libc.so.6", "plugin/ZemiTunesDB.so", "zemhost"):
        place.write(name, b"\x7fELF" + CANARY.encode()).chmod(0o755)


# Databases that are damaged or forged.
_SONG = chunk(b"mhit", 0xF4, 0xF4, 0)
_PLAYLIST = chunk(b"mhyp", 0x6C, 0x6C, 0)
_ENTRY = chunk(b"mhip", 0x4C, 0x4C, 0)


def _whole():
    return library([{"title": f"Song {place}", "path": FIRST_SONG} for place in range(5)], [("List", (0, 1, 2))])


def _lists(body, announced):
    inner = chunk(b"mhlp", 0x5C, announced) + body
    return chunk(b"mhsd", 0x60, 0x60 + len(inner), 2, inner)


def _with_words(value):
    """The whole file with one word of each chunk changed: its jump, its length or its count."""
    content = bytearray(_whole())
    for number, tag in enumerate(re.finditer(b"mh(it|od|yp|ip|lt|lp|sd)", bytes(content))):
        struct.pack_into("<I", content, tag.start() + 4 * (number % 3 + 1), value)
    return bytes(content)


# Made when they are needed: they are large.
DATABASES = {
    "empty": lambda: b"",
    "of_one_header": lambda: _whole()[:0x68],
    "cut_in_a_song": lambda: _whole()[:0x300],
    "cut_at_its_end": lambda: _whole()[:-1],
    "wiped_in_its_middle": lambda: _whole()[:0x400] + bytes(0x200) + _whole()[0x600:],
    "without_a_header": lambda: bytes(0x100) + _whole()[0x100:],
    "of_songs_inside_each_other": lambda: b"".join(chunk(b"mhit", 0x400 - 16 * i, 0x8000, 9) for i in range(64)) +
                                          bytes(0x4000) + _whole(),
    "of_noise": lambda: _whole()[:0x68] + random.Random(1).randbytes(50_000),
    "of_a_picture": lambda: b"\x89PNG\r\n\x1a\n" + bytes(500),
    "of_a_program": lambda: b"\x7fELF" + bytes(500),
    "of_an_archive": lambda: b"PK\3\4" + bytes(500),
    "of_sqlite": lambda: b"SQLite format 3\0" + bytes(500),
    "with_words_of_ones": lambda: _with_words(0xFFFFFFFF),
    "with_words_of_half": lambda: _with_words(0x7FFFFFFF),
    "with_words_of_nothing": lambda: _with_words(0),
    "with_songs_announced": lambda: database(track_list(_SONG, 0xFFFFFFFE)),
    "with_lists_announced": lambda: database(track_list(_SONG, 1) + _lists(_PLAYLIST, 0xFFFFFFFE)),
    "with_one_id": lambda: database(track_list(_SONG * 2000, 2000) + _lists(_PLAYLIST + _ENTRY * 2000, 1)),
    "of_tiny_songs": lambda: database(track_list(chunk(b"mhit", 16, 16, 0) * 3000, 3000)),
    "of_tiny_lists": lambda: database(track_list(_SONG, 1) + _lists(chunk(b"mhyp", 16, 16, 0) * 3000, 3000)),
    "of_tiny_texts": lambda: database(track_list(chunk(b"mhit", 0x9C, 0x9C + 48_000, 3000) +
                                                 chunk(b"mhod", 0, 16, 99) * 3000, 1)),
    "of_nested_chunks": lambda: database(b"".join(chunk(b"mhxx", 16, 16 * (3000 - i), 1) for i in range(3000))),
    "of_strange_chunks": lambda: database(b"".join(chunk(bytes((109, 104, 97 + i // 26, 97 + i % 26)), 16, 16)
                                                   for i in range(90))),
    "that_is_big_endian": lambda: library([{"title": "Song", "album": "x", "artist": "x"}], big=True),
    "with_lists_in_lists": lambda: database(track_list(_SONG, 1) + _lists(_lists(_PLAYLIST, 1), 5)),
}


@family("database", DATABASES)
def _database(place, make):
    place.write_database(make())
    place.write_music()


@family("compressed", {
    "of_zeros": lambda: _whole()[:0x68] + compressed(database(bytes(70 << 20)), 1)[0x68:],
    "of_noise": lambda: _whole()[:0x68] + b"x\x9c" + random.Random(2).randbytes(9000),
    "again": lambda: compressed(compressed(_whole())),
    "cut_short": lambda: compressed(_whole())[:-20],
    "with_a_tail": lambda: compressed(_whole()) + bytes(100),
    "of_tiny_songs": lambda: compressed(database(track_list(chunk(b"mhit", 16, 16, 0) * 8000, 8000)), 1),
    "of_songs_announced": lambda: compressed(database(track_list(_SONG, 0xFFFFFFFE))),
    "with_a_dictionary": lambda: _whole()[:0x68] + b"\x78\xbb" + bytes(64),
})
def _compressed(place, make):
    place.write_database(make(), "iTunesCDB")
    place.write_music()


@family("counts", {
    "of_many_songs": struct.pack("<4sIII", b"mhdp", 0x60, 0x1C, 0xFFFFFFFF).ljust(0x60, b"\0"),
    "of_long_entries": play_counts(1, entry=0x400),
    "of_no_length": struct.pack("<4sIII", b"mhdp", 0, 0, 1) + bytes(80),
    "cut_short": play_counts(1)[:-3],
    "of_ones": struct.pack("<4sIII", b"mhdp", 0x60, 0x1C, 1).ljust(0x60, b"\0") + b"\xff" * 0x1C,
    "of_a_program": b"\x7fELF" + bytes(200),
})
def _counts(place, content):
    place.ordinary()
    place.write("iPod_Control/iTunes/Play Counts", content)


# Trees.
@player
def tree_deeper_than_a_path(place):
    place.ordinary()
    folder = os.open(place.root / "iPod_Control" / "Music", os.O_PATH)
    for _ in range(25):  # more than the 4,096 bytes that a path may have
        os.mkdir("d" * 250, dir_fd=folder)
        below = os.open("d" * 250, os.O_PATH, dir_fd=folder)
        os.close(folder)
        folder = below
    os.close(folder)


@player
def tree_of_many_files(place):
    place.write_songs([{"title": str(i), "path": f":iPod_Control:Music:F00:song{i}.MP3"} for i in range(50)])
    for i in range(400):
        place.write_music(f"F00/SONG{i}.mp3")


@player
def tree_of_names_in_two_cases(place):
    place.ordinary()
    for name in ("ipod_control/itunes/iTunesDB", "IPOD_CONTROL/ITUNES/ITUNESDB", "iPod_Control/ITUNES/iTunesDB",
                 "iPod_Control/MUSIC/F00/A.mp3", "iPod_Control/Music/f00/a.MP3"):
        place.write(name, MUSIC)


@player
def tree_of_part_files(place):
    place.ordinary()
    for name in ("rescue-report.ndjson", ".zemhost-0000000000000000.part", "iPod_Control/iTunes/.zemhost-1.part"):
        place.write(name, MUSIC)
