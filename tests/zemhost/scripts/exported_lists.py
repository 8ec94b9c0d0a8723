"""The playlists and chapters that exports must hold: the class's answers, and what a plain reader finds in the file."""

import datetime
import os
import sys

from answers import answers
from program import SOURCE

sys.path.append(os.path.join(SOURCE, "tests", "player", "model"))
import list_model  # noqa: E402

KINDS = ["library", "playlist", "smart", "folder", "podcasts"]
ORDERS = {1: "manual", 3: "title", 4: "album", 5: "artist", 6: "bit rate", 7: "genre", 8: "kind", 9: "date modified",
          10: "track", 11: "size", 12: "time", 13: "year", 14: "sample rate", 15: "comment", 16: "date added",
          17: "equalizer", 18: "composer", 20: "plays", 21: "last played", 22: "disc", 23: "rating",
          24: "date released", 25: "BPM", 26: "grouping", 27: "category", 28: "description", 29: "show", 30: "season",
          31: "episode"}


def unsigned(value):
    return value & 0xFFFFFFFF


def date_text(seconds):
    start = datetime.datetime(1904, 1, 1)
    return None if seconds is None else (start + datetime.timedelta(seconds=seconds)).isoformat()


def id_text(number):
    return None if number is None else f"{number:016X}"


def chapters_of(database):
    """Of each song of a database file, as exports write them."""
    with open(database, "rb") as file:
        found = list_model.chapters(file.read())
    return [[{"start_ms": start, "title": title or None, "url": url or None} for start, title, url in song] or None
            for song in found]


def known_of(model):
    """What the class does not answer of a list; the rules as the texts in them."""
    rules = model["rules"] and [rule["text"] for group in model["rules"]["groups"] for rule in group["rules"]]
    return {"kind": KINDS[model["kind"]], "date_created": date_text(model["created"]),
            "date_modified": date_text(model["modified"]), "rules": rules,
            "sort_order": model["sort_order"] and ORDERS.get(model["sort_order"], str(model["sort_order"])),
            "persistent_id": id_text(model["persistent_id"]), "folder_id": id_text(model["folder"])}


def answered_playlist(path, number, model, stored_name):
    name, encode, type_1, type_2, entries = answers(path, [
        f"GetPlayListName({number})", f"GetPlayListEncode({number})", f"GetPlayListTypeI({number})",
        f"GetPlayListTypeII({number})", f"CountSongsInPlayList({number})"])
    if unsigned(encode) not in (0x01000000, 1):
        name = stored_name
    told = iter(answers(path, [f"{method}({number}, {i})" for i in range(entries) for method in
                               ("GetIndex", "GetRefNum", "GetPlaySong", "GetFlags")]))
    podcasts = {}
    for podcast, songs in model["podcasts"]:
        for song in songs:
            podcasts.setdefault(song, podcast)
    listed = [{"position": i, "song_index": next(told), "track_id": next(told), "play": next(told),
               "flags": unsigned(next(told))} for i in range(entries)]
    for entry in listed:
        entry["podcast"] = podcasts.get(unsigned(entry["track_id"])) or None
    return {"playlist_number": number, "name": name or None, "entry_count": entries, "type_1": unsigned(type_1),
            "type_2": unsigned(type_2), "name_encode": unsigned(encode), **known_of(model), "entries": listed}


def expected_playlists(path, database, database_file):
    with open(database, "rb") as file:
        model = list_model.lists_of(file.read())
    (count,) = answers(path, ["CountPlayLists"])
    playlists = [answered_playlist(path, number, model.lists[number], database_file.playlists[number]["name"])
                 for number in range(count)]
    (songs,) = answers(path, ["CountSongs"])
    if os.path.basename(database) == "iTunesDB":
        for number, positions in list_model.on_the_go(os.path.dirname(database), songs)[0]:
            ids = answers(path, [f"GetID({position})" for position in positions])
            playlists.append({
                "playlist_number": len(playlists), "name": f"On-The-Go {number}", "kind": "on-the-go",
                "entry_count": len(positions), **dict.fromkeys((
                    "type_1", "type_2", "name_encode", "date_created", "date_modified", "sort_order", "rules",
                    "persistent_id", "folder_id")),
                "entries": [{"position": i, "song_index": song, "track_id": track, "play": None, "flags": None,
                             "podcast": None} for i, (song, track) in enumerate(zip(positions, ids))]})
    return playlists
