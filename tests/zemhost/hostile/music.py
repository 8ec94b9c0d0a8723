"""Hostile players whose music files aim at what reads and writes tags: a song of the library and a file that no song
names, so that tags are written into one and read from the other."""

import os
import struct
import zlib

from players import PLAYERS, family

from music_files import aiff, box, flac, id3, mp4, mp4_text, mpeg, ogg, synchsafe, wav  # place.py says where they are

__all__ = ["PLAYERS"]

HUGE = 0xFFFFFFFF
SOUND = bytes(4000)
TITLE = mp4_text(b"\xa9nam", "x")


def _deep(name, levels):
    """Boxes in each other. Many more would be too deep for the stack that a sanitizer leaves, which reports that."""
    return b"".join(struct.pack(">I", 8 * (levels - level)) + name for level in range(levels))


def _with(data, at, word):
    return data[:at] + word + data[at + len(word):]


def _frame(name, content, size=None, flags=0):
    return name + synchsafe(len(content) if size is None else size) + struct.pack(">H", flags) + content


def _tag(*frames, size=None, flags=0):
    body = b"".join(frames)
    return b"ID3\4\0" + bytes([flags]) + synchsafe(len(body) if size is None else size) + body


def _bomb(size):
    """A compressed frame that says it is large, and is."""
    return _frame(b"TIT2", synchsafe(size % (1 << 28)) + zlib.compress(b"\3" + bytes(size), 9), flags=0x09)


def _ape(items, size, item=b""):
    return mpeg(4000) + item + b"APETAGEX" + struct.pack("<IIII", 2000, size, items, 0) + bytes(8)


def _asf(size, objects):
    header = bytes.fromhex("3026b2758e66cf11a6d900aa0062ce6c")
    return header + struct.pack("<QIH", size, objects, 0x201) + (header + struct.pack("<Q", 0)) * 20


@family("music", {
    "of_deep_boxes": ("m4a", box(b"ftyp", b"M4A \0\0\0\0") + _deep(b"moov", 1000)),
    "of_deep_boxes_of_tags": ("m4a", box(b"ftyp", b"M4A \0\0\0\0") + box(b"moov", _deep(b"ilst", 1000))),
    "of_boxes_without_length": ("m4a", box(b"ftyp", b"M4A \0\0\0\0") + struct.pack(">I4s", 0, b"moov") * 1000),
    "of_boxes_of_one_byte": ("m4a", box(b"ftyp", b"M4A \0\0\0\0") + struct.pack(">I4s", 1, b"moov") * 1000),
    "of_boxes_longer_than_all": ("m4a", box(b"ftyp", b"M4A \0\0\0\0") + struct.pack(">I4sQ", 1, b"moov", 1 << 62) + SOUND),
    "of_a_box_that_goes_back": ("m4a", box(b"ftyp", b"M4A \0\0\0\0") + struct.pack(">I4sQ", 1, b"moov", (1 << 64) - 16) + SOUND),
    "of_places_without_end": ("m4a", mp4(4000, TITLE).replace(b"stco" + bytes(4) + struct.pack(">I", 2),
                                                               b"stco" + bytes(4) + struct.pack(">I", HUGE))),
    "of_a_tag_longer_than_its_box": ("m4a", mp4(4000, _with(TITLE, 8, struct.pack(">I", HUGE)))),
    "of_many_boxes": ("m4a", mp4(400_000, TITLE * 10_000)),
    "of_a_tag_of_any_size": ("mp3", _tag(size=(1 << 28) - 1) + mpeg(4000)),
    "of_frames_without_length": ("mp3", _tag(_frame(b"TIT2", b"", 0) * 5000) + mpeg(4000)),
    "of_frames_longer_than_the_tag": ("mp3", _tag(_frame(b"TIT2", b"\3x", (1 << 28) - 1)) + mpeg(4000)),
    "of_a_header_extended_without_end": ("mp3", _tag(synchsafe((1 << 28) - 1) + b"\1\0", flags=0x40) + mpeg(4000)),
    "of_frames_that_inflate": ("mp3", _tag(_bomb(50_000_000)) + mpeg(4000)),
    "of_many_frames": ("mp3", id3({"TIT2": "x"})[:3] + b"\4\0\0" + synchsafe(12 * 20_000) + _frame(b"TIT2", b"\3x") * 20_000),
    "of_pictures_cut_short": ("mp3", _tag(_frame(b"APIC", b"\0image/png"), _frame(b"APIC", b"\1\0"), _frame(b"POPM", b"x")) + mpeg(4000)),
    "of_texts_of_any_encoding": ("mp3", _tag(*[_frame(b"TIT2", bytes([code]) + b"\xff\xfe\0\xd8x") for code in range(6)]) + mpeg(4000)),
    "of_items_without_end": ("mp3", _ape(HUGE, HUGE)),
    "of_items_longer_than_all": ("mp3", _ape(1, 64, struct.pack("<II", HUGE, 0) + b"Title\0x")),
    "of_chunks_longer_than_all": ("wav", _with(wav(SOUND, {b"INAM": "x"}), 16, struct.pack("<I", HUGE))),
    "of_texts_longer_than_their_chunk": ("wav", wav(SOUND, {b"INAM": "x"})[:-6] + struct.pack("<I", HUGE) + b"x\0"),
    "of_many_chunks": ("wav", wav(b"", {}) + b"LIST\4\0\0\0INFO" * 5000),
    "of_chunks_of_a_mac_longer_than_all": ("aif", _with(aiff(SOUND, id3({"TIT2": "x"})), 16, struct.pack(">I", HUGE))),
    "of_a_tag_in_a_chunk_longer_than_it": ("aif", aiff(SOUND, _tag(_frame(b"TIT2", b"\3x"), size=(1 << 28) - 1))),
    "of_blocks_longer_than_all": ("flac", _with(flac(SOUND, {"TITLE": "x"}), 43, b"\xff\xff\xff")),
    "of_blocks_without_end": ("flac", flac(SOUND, {})[:42] + b"\1\0\0\0" * 20_000),
    "of_comments_without_end": ("flac", flac(SOUND, {"TITLE": "x"}).replace(struct.pack("<I", 1) + struct.pack("<I", 7),
                                                                            struct.pack("<II", HUGE, HUGE))),
    "of_pages_cut_short": ("ogg", ogg(SOUND, {"TITLE": "x"})[:70]),
    "of_pages_without_content": ("ogg", ogg(SOUND, {"TITLE": "x"})[:58] + b"OggS\0\0" + bytes(20) + b"\xff" + b"\xff" * 100),
    "of_the_same_page": ("ogg", ogg(SOUND, {"TITLE": "x"})[:58] * 500),
    "of_objects_without_length": ("wma", _asf(1 << 62, HUGE)),
    "of_noise_behind_every_beginning": ("mp3", b"".join(sign + os.urandom(60) for sign in (
        b"MAC ", b"MPCK", b"MP+", b"wvpk", b"TTA1", b"DSD ", b"FRM8", b"RIFF", b"FORM", b"fLaC", b"OggS", b"ADIF"))),
})
def _music(place, row):
    extension, data = row
    place.write_songs([{"title": "Song", "artist": "A", "path": f":iPod_Control:Music:F00:A.{extension}", "size": len(data)},
                       {"title": "Other", "path": ":iPod_Control:Music:F00:B.mp3"}])
    for name in (f"F00/A.{extension}", f"F01/C.{extension}"):
        place.write(f"iPod_Control/Music/{name}", data)
    place.write_music("F00/B.mp3")
