"""The libraries that host code runs on."""

import os
import shutil
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "zemhost", "scripts"))
from database_writer import library as written_library  # noqa: E402

LIBRARIES = {
    "player": "player/iPod_Control/iTunes/iTunesDB",
    "a desktop library": "desktop/desktop.library",
    "a player with accents": "accents/iPod_Control/iTunes/iTunesDB",
}
ACCENTS = [{"title": "Coffee", "path": ":iPod_Control:Music:F00:Café.m4a", "marks": 0x50000000},
           {"title": "Rain", "path": ":iPod_Control:Music:F00:雨 Café.m4a"}]


def make_libraries(samples, folder):
    """Copies that host code may write to."""
    shutil.copytree(os.path.join(samples, "player"), os.path.join(folder, "player"))
    os.makedirs(os.path.join(folder, "desktop"))
    shutil.copy(os.path.join(samples, "big-endian.library"), os.path.join(folder, LIBRARIES["a desktop library"]))
    database = os.path.join(folder, LIBRARIES["a player with accents"])
    music = os.path.join(folder, "accents", "iPod_Control", "Music", "F00")
    os.makedirs(os.path.dirname(database))
    os.makedirs(music)
    with open(database, "wb") as file:
        file.write(written_library(ACCENTS, []))
    for song in ACCENTS:
        with open(os.path.join(music, song["path"].split(":")[-1]), "w", encoding="utf-8") as file:
            file.write(song["title"])
