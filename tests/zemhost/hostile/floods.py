"""Players with very much of one thing, in two sizes: what a command needs may grow with the size, and no faster."""

import os

from place import FIRST_SONG, Place, chunk, compressed, database, library, play_counts, track_list
from runs import measure, remove

TIMES = 4  # the second size is so many times the first


def _songs(count, **more):
    return [{"title": f"Song {i}", "artist": f"Artist {i % 100}", "path": FIRST_SONG, **more} for i in range(count)]


def songs(place, count):
    place.write_songs(_songs(count))
    place.write("iPod_Control/iTunes/Play Counts", play_counts(count))


def playlists(place, count):
    place.write_songs(_songs(1), [("One name for all", (0,))] * count)


def entries(place, count):
    place.write_songs(_songs(9), [("List", [i % 9 for i in range(count)])])


def names_that_are_cut_alike(place, count):
    place.write_songs([{"title": "x" * 300 + str(i), "path": FIRST_SONG} for i in range(count)])
    place.write_music()


def one_text(place, count):
    place.write_songs([{"title": "x" * count * 8, "album": "\u0301" * count, "path": FIRST_SONG}] + _songs(50))


def texts_of_one_song(place, count):
    text = chunk(b"mhod", 0x18, 0x30, 99, bytes(0x18))
    song = chunk(b"mhit", 0x9C, 0x9C + len(text) * count, count)
    place.write_database(database(track_list(song + text * count, 1)))


def files_of_another_case(place, count):
    place.write_songs([{"title": str(i), "path": f":iPod_Control:Music:F00:SONG{i}.MP3"} for i in range(count)])
    for i in range(count):
        place.write_music(f"F00/song{i}.mp3", b"x")


def files_that_are_missing(place, count):
    place.write_songs([{"title": str(i), "path": f":iPod_Control:Music:F00:gone{i}.mp3"} for i in range(count)])
    for i in range(count):
        place.write_music(f"F00/other{i}.txt", b"x")


def folders_that_are_missing(place, count):
    place.write_songs([{"title": str(i), "path": f":iPod_Control:Gone{i}:A.mp3"} for i in range(count)])
    for i in range(count):
        place.path(f"iPod_Control/Other{i}/x")


def texts_that_cancel_a_hash(place, count):
    """Texts that differ in pairs of high bits alone, which a sum of products does not see."""
    def text(number):
        return "".join("aaa\u00e1a\u00e1aa" if number >> bit & 1 else "aaaaaaaa" for bit in range(16))
    place.write_songs([{"title": "x", "artist": text(i), "path": FIRST_SONG} for i in range(count)])


def folders_of_one_path(place, count):
    place.write_songs([{"title": "x", "path": ":Gone" * count}])


def paths_up_and_down(place, count):
    place.write_songs([{"title": str(i), "path": f":{'iPod_Control::' * 60}:gone{i}"} for i in range(count)])


def broken_chunks(place, count):
    place.write_database(database(track_list((chunk(b"mhit", 0x9C, 0x10, 77) + b"mhxx") * count, count)))


def compressed_songs(place, count):
    place.write_database(compressed(library(_songs(count), [("List", range(count))])), "iTunesCDB")


_LISTS = ("songs", "duplicates", "compare", "plays", "check", "json", "stats", "report")
_FILES = ("check", "rescue", "m3u8", "csv", "report")

# The flood, its first size, and the commands that have most to do with it.
FLOODS = {
    songs: (1500, ("info", *_LISTS, "sqlite", "csv")),
    playlists: (1000, ("playlists", "check", "json", "rescue", "report")),
    entries: (5000, ("playlist", "check", "json", "rescue", "report")),
    names_that_are_cut_alike: (500, ("songs", "rescue", "copies")),
    one_text: (3000, (*_LISTS, "rescue", "csv", "m3u8")),
    texts_of_one_song: (5000, ("info", "check", "songs")),
    files_of_another_case: (700, _FILES),
    files_that_are_missing: (700, _FILES),
    folders_that_are_missing: (500, _FILES),
    texts_that_cancel_a_hash: (6000, ("info", "compare")),
    folders_of_one_path: (3000, _FILES),
    paths_up_and_down: (100, _FILES),
    broken_chunks: (2500, ("info", "check")),
    compressed_songs: (1500, ("songs", "check")),
}

_COMMANDS = {
    "playlist": ["playlist", "{player}", "1"],
    "compare": ["compare", "{player}", "{player}"],
    "csv": ["export", "{player}", "--format", "csv"],
    "json": ["export", "{player}", "--format", "json"],
    "m3u8": ["export", "{player}", "--format", "m3u8"],
    "sqlite": ["export", "{player}", "--format", "sqlite", "-o", "{work}/exports/songs.sqlite"],
    "report": ["report", "{player}", "-o", "{work}/exports/library.html"],
    "rescue": ["rescue", "{player}", "{work}/music", "--dry-run"],
    "copies": ["rescue", "{player}", "{work}/music"],
}

# How much more a command may need for TIMES as much: a factor, and an amount that no growth has to explain. The first
# two are counted and repeat; memory is that of the sanitizers too, and time is only to show what is quadratic.
_LIMITS = {"bytes written": (1.2 * TIMES, 20_000), "bytes read": (1.2 * TIMES, 600_000),
           "kilobytes": (1.6 * TIMES, 40_000), "seconds": (2.5 * TIMES, 1.0)}


def _needs(program, place, seconds, words):
    arguments = [word.format(player=place.root, work=place.work) for word in words]
    ended = measure([program, *arguments], place, seconds)
    if ended is None or ended.status not in (0, 1, 3):
        raise RuntimeError("does not end" if ended is None else f"ends with {ended.status}: {ended.out[-500:]!r}")
    written = sum(os.path.getsize(file.path) for file in os.scandir(place.work / "exports"))
    return {"bytes written": len(ended.out) + written, "bytes read": ended.bytes_read, "kilobytes": ended.kilobytes,
            "seconds": ended.seconds}


def _fill(flood, place, size):
    """In a process of its own: the peak of memory of a child begins with that of its parent."""
    child = os.fork()
    if child == 0:
        try:
            flood(place, size)
            os._exit(0)
        finally:
            os._exit(1)
    if os.waitpid(child, 0)[1] != 0:
        raise RuntimeError("cannot be built")


def grow(program, flood, base, seconds):
    """Measures the commands on both sizes of a flood. Returns the number of runs, and the faults, a line each."""
    first, names = FLOODS[flood]
    places = []
    for size in (1, first, TIMES * first):
        place = Place(os.path.join(base, f"{flood.__name__}_{size}"))
        _fill(flood, place, size)
        places.append(place)
    faults, count = [], 0
    for name in names:
        words = _COMMANDS.get(name, [name, "{player}"])
        try:
            least, small, large = (_needs(program, place, seconds, words) for place in places)
        except RuntimeError as error:
            faults.append(f"flood {flood.__name__}: {name}: {error}")
            continue
        count += len(places)
        for what, (factor, slack) in _LIMITS.items():
            before, after = (max(0, needs[what] - least[what]) for needs in (small, large))
            if after > factor * before + slack:
                faults.append(f"flood {flood.__name__}: {name}: {what} grow from {before:.6g} to {after:.6g} "
                              f"for {TIMES} times as much")
    for place in places:
        remove(place.base)
    return count, faults
