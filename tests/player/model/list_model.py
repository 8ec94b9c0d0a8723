"""What a player's files say of its playlists and of itself, read by plain tables that share nothing with the program
under test."""

import os
import re
import struct

import song_model
from song_model import date, nonzero, text_of

LIBRARY, ORDINARY, SMART, FOLDER, PODCASTS = range(5)
NOW_MARK = 0x2DAE2DAE2DAE2DAE
NOON = 3236155200


class Lists:
    """The playlists of a database whose places are given."""

    def __init__(self, data, at, grouped_at):
        self.data = data
        self.big = data[:4] == b"hdfm"
        self.order = ">" if self.big else "<"
        # Each list of podcasts in groups stands for the first flat one with its ID.
        grouped = {}
        for place in grouped_at:
            if self.is_of_podcasts(place):
                grouped.setdefault(self.persistent_id(place), place)
        self.lists = []
        for number, place in enumerate(at):
            entry = self.read(place, number == 0)
            entry["podcasts"] = []
            if not self.big and self.is_of_podcasts(place):
                form = grouped.pop(self.persistent_id(place), None)
                entry["podcasts"] = [] if form is None else self.podcasts(form)
            self.lists.append(entry)

    def field(self, at, offset, form):
        jump = self.word(at + 4) if at + 8 <= len(self.data) else 0x400
        size = struct.calcsize(self.order + form)
        if offset + size > min(jump, 0x400) or at + offset + size > len(self.data):
            return None
        return struct.unpack_from(self.order + form, self.data, at + offset)[0]

    def word(self, at):
        return struct.unpack(self.order + "I", self.data[at:at + 4].ljust(4, b"\0"))[0]

    def is_of_podcasts(self, at):
        return not self.big and bool(self.field(at, 0x2A, "B"))

    def persistent_id(self, at):
        return nonzero(self.field(at, 0x1B8 if self.big else 0x1C, "Q"))

    def dated(self, at, offset):
        value = self.field(at, offset, "I")
        return None if value is None else date(value)

    def objects(self, at):
        count, place = self.word(at + 12), at + self.word(at + 4)
        for _ in range(count):
            length = self.word(place + 8)
            if self.data[place:place + 4] != (b"hohm" if self.big else b"mhod") or len(self.data) < place + 0x18:
                return
            if length < 0x18:
                return
            yield self.word(place + 12), place, length
            place += length

    def read(self, at, is_first):
        settings, criteria = b"", None
        for kind, place, length in self.objects(at):
            body = self.data[place + 0x18:place + length] if length <= 1 << 20 else b""
            if kind == (102 if self.big else 50):
                settings = body
            if kind == (101 if self.big else 51):
                criteria = body
        rules = None if criteria is None else read_rules(settings, criteria, self.big)
        kind = LIBRARY if is_first else PODCASTS if self.is_of_podcasts(at) else \
            FOLDER if not self.big and self.field(at, 0x2B, "B") else SMART if rules else ORDINARY
        return {
            "at": at, "kind": kind, "created": self.dated(at, 0x1C if self.big else 0x18),
            "modified": None if self.big else self.dated(at, 0x58),
            "sort_order": None if self.big else nonzero(self.field(at, 0x2C, "I")),
            "persistent_id": self.persistent_id(at),
            "folder": None if self.big else nonzero(self.field(at, 0x30, "Q")),
            "songs": [entry["song"] for entry in self.entries(at) if not entry["heading"]], "rules": rules}

    def entries(self, at):
        place = at + self.word(at + 4)
        while len(self.data) >= place + 16:
            tag = self.data[place:place + 4]
            is_object = tag in (b"mhod", b"hohm")
            if tag not in ((b"hptm", b"hohm") if self.big else (b"mhip", b"mhod")):
                return
            step = self.word(place + (8 if is_object else 4))
            if step < 16:
                return
            if not is_object:
                def field(offset, form, place=place):
                    size = struct.calcsize(form)
                    inside = offset + size <= min(self.word(place + 4), 0x4C) and place + offset + size <= len(self.data)
                    return struct.unpack_from(self.order + form, self.data, place + offset)[0] if inside else 0
                yield {"at": place, "id": field(0x14, "I"), "song": field(0x18, "I"), "group": field(0x20, "I"),
                       "heading": not self.big and field(0x11, "B") == 1}
            place += step

    def podcasts(self, at):
        groups = {}
        for entry in self.entries(at):
            if entry["heading"]:
                groups.setdefault(entry["id"], ["", []])[0] = self.name(entry["at"])
            else:
                groups.setdefault(entry["group"], ["", []])[1].append(entry["song"])
        return list(groups.values())

    def name(self, at):
        for kind, place, length in self.objects(at):
            is_text = 0x28 <= length <= 1 << 20 and len(self.data) >= place + 0x28
            if kind == 1 and is_text and self.word(place + 0x14) == 0 and self.word(place + 0x18) == 1:
                body = self.data[place + 0x28:place + length]
                return text_of(body[:len(body) & ~1], False)
        return ""


def lists_of(data):
    """The playlists of a sound file, in which one chunk follows another."""
    order = ">" if data[:4] == b"hdfm" else "<"
    at, kind, places = 0, 0, {2: [], 3: []}
    while at + 12 <= len(data):
        tag, jump, length, count = data[at:at + 4], *struct.unpack(order + "III", data[at + 4:at + 16].ljust(12, b"\0"))
        if tag in (b"mhsd", b"hdsm"):
            kind = count
        elif tag in (b"mhyp", b"hpim") and kind in places:
            places[kind].append(at)
        at += max(length if tag in (b"mhod", b"hohm") else jump, 1)
    return Lists(data, places[2], places[3])


def atoms(data):
    at = 0
    while at + 20 <= len(data):
        (size,) = struct.unpack_from(">I", data, at)
        if size < 20 or at + size > len(data):
            return
        yield data[at + 4:at + 8], struct.unpack_from(">I", data, at + 8)[0], data[at + 20:at + size]
        at += size


def chapters_of(body):
    """The chapters in a tree of atoms: triples of start, title and the bytes of an address."""
    marks = []
    for name, _, inside in atoms(body):
        for kind, start, content in atoms(inside) if name == b"sean" else ():
            if kind == b"chap":
                parts = {one: rest for one, _, rest in atoms(content)}
                title = parts.get(b"name", b"\0\0")
                title = text_of(title[2:2 + 2 * int.from_bytes(title[:2], "big")], True)
                marks.append((0 if start == 1 else start, title, parts.get(b"url ", b"")[4:]))
    return marks


def chapters(data):
    """Of each song of a sound file, triples of start, title and address."""
    reader, found = Lists(data, [], []), []
    for song in song_model.Database(data).songs:
        marks = []
        holders = [place for kind, place, _ in reader.objects(song["at"]) if kind == 17 and not reader.big]
        for place in holders[:1]:
            marks = [(start, title, url.decode())
                     for start, title, url in chapters_of(data[place + 0x24:place + reader.word(place + 8)])]
        found.append(marks)
    return found


def read_rules(settings, criteria, big):
    full = len(settings) >= 12
    order = struct.unpack_from(">I", settings, 4)[0] if full and big else settings[4] if len(settings) > 4 else 0
    known = {0x19: 7} if big else {2: 1, 3: 2, 4: 3, 5: 4, 7: 5, 0x10: 6, 0x14: 7, 0x15: 8, 0x17: 9}
    groups = []
    read_group(criteria, 1, groups)
    unit = settings[3] if len(settings) > 3 else 0
    return {
        "live": settings[0] != 0 if settings else True, "uses_rules": settings[1] != 0 if len(settings) > 1 else True,
        "limited": full and settings[2] != 0, "unit": unit if unit <= 5 else 0, "order": known.get(order, 0),
        "limit": struct.unpack_from(">I" if big else "<I", settings, 8)[0] if full else 0,
        "only_checked": not big and len(settings) > 12 and settings[12] != 0,
        "reversed": not big and len(settings) > 13 and settings[13] != 0, "groups": groups}


def read_group(data, depth, groups):
    group = {"any": False, "cut": False, "rules": []}
    groups.append(group)
    if data[:4] != b"SLst" or len(data) < 16:
        group["cut"] = True
        return
    count, any_of = struct.unpack_from(">II", data, 8)
    group["any"] = any_of != 0
    at = 136
    while len(group["rules"]) < count:
        if len(data) < at + 0x38:
            break
        field, action = struct.unpack_from(">II", data, at)
        (length,) = struct.unpack_from(">I", data, at + 0x34)
        body = data[at + 0x38:at + 0x38 + length]
        if len(body) < length:
            break
        rule = {"field": field, "action": action, "text": "", "from": [0, 0, 0], "to": [0, 0, 0], "group": 0}
        if body[:4] == b"SLst":
            if depth == 16:
                break
            rule["group"] = len(groups)
            read_group(body, depth + 1, groups)
        elif action & 0x01000000:
            rule["text"] = text_of(body[:len(body) & ~1], True)
        elif length >= 48:
            numbers = struct.unpack_from(">QqQQqQ", body)
            rule["from"], rule["to"] = list(numbers[:3]), list(numbers[3:])
        else:
            break
        group["rules"].append(rule)
        at += 0x38 + length
    group["cut"] = len(group["rules"]) < count


TEXT_FIELDS = {0x02: 1, 0x03: 3, 0x04: 4, 0x08: 5, 0x09: 6, 0x0E: 8, 0x12: 12, 0x27: 13, 0x36: 14, 0x37: 9, 0x3E: 19,
               0x47: 22, 0x4E: 27, 0x4F: 28, 0x50: 23, 0x51: 29, 0x52: 30, 0x53: 31}
OTHER_TEXTS = (0x59, 0x9F, 0xA0)  # that no song holds
NUMBER_FIELDS = {0x05: "bit_rate", 0x07: "year", 0x0A: "modified", 0x0B: "track", 0x0C: "size", 0x0D: "duration",
                 0x10: "added", 0x16: "plays", 0x17: "last_played", 0x18: "disc", 0x19: "rating", 0x1F: "compilation",
                 0x23: "bpm", 0x29: "bought", 0x3C: "media_type", 0x3F: "season", 0x44: "skips", 0x45: "last_skipped"}
RANKED_TEXTS = {2: (27, 1), 3: (28, 3), 4: (23, 4), 5: (0, 5)}
RANKED_NUMBERS = {6: "added", 7: "plays", 8: "last_played", 9: "rating"}


def fold(text):
    return "".join(c.lower() if c.isascii() else c for c in text)


def number_of(song, field):
    if field == 0x06:
        return (song["rate_word"] or 0) >> 16
    if field == 0x1D:
        return int(song["checked"] is not False)
    if field == 0x39:
        return int((song["media_type"] or 0) & 4 != 0)
    if field == 0x25:
        return None if song["picture"] is None else int(song["picture"])
    return int(song[NUMBER_FIELDS[field]] or 0) if field in NUMBER_FIELDS else None


def value_of(value):
    start, count, unit = value
    return ((NOON if start == NOW_MARK else start) + count * unit + (1 << 63)) % (1 << 64) - (1 << 63)


class Evaluation:
    """The songs that rules choose, from the songs of the other model and the lists of this one."""

    def __init__(self, songs, lists, big):
        self.songs, self.lists, self.big = songs, lists, big
        self.texts = []
        for song in songs:
            texts = {}
            for kind, text in song["texts"]:
                texts.setdefault(1 if big and kind == 2 else kind, text)
            self.texts.append(texts)

    def run(self, rules):
        matching, undecided = [], []
        for place, song in enumerate(self.songs):
            answer = self.group(rules, 0, place) if rules["uses_rules"] else True
            if rules["only_checked"] and song["checked"] is False:
                answer = False
            if answer is None:
                undecided.append(place)
            elif answer:
                matching.append(place)
        depends = rules["uses_rules"] and any(
            not rule["group"] and not rule["action"] & 0x01000000 and NOW_MARK in (rule["from"][0], rule["to"][0])
            for group in rules["groups"] for rule in group["rules"])
        certain, possible, count = matching, [], len(matching)
        if rules["limited"]:
            certain, possible, count = self.limit(rules, matching)
        if undecided:
            count = None
            if rules["limited"]:
                certain, possible = [], sorted(certain + possible)
        return {"certain": sorted(certain), "possible": sorted(possible), "undecided": undecided, "count": count,
                "depends_on_day": depends}

    def group(self, rules, number, place):
        group = rules["groups"][number]
        answers = [self.group(rules, rule["group"], place) if rule["group"] else self.rule(rule, place)
                   for rule in group["rules"]]
        if group["any"] in answers:
            return group["any"]
        if None in answers or group["cut"]:
            return None
        return not group["any"] or not answers

    def rule(self, rule, place):
        song, field = self.songs[place], rule["field"]
        what = rule["action"] & ~0x03000000
        is_text = rule["action"] & 0x01000000 != 0
        answer = None
        if is_text and field in TEXT_FIELDS:
            text, wanted = fold(self.texts[place].get(TEXT_FIELDS[field], "")), fold(rule["text"])
            answer = {1: text == wanted, 2: wanted in text, 4: text.startswith(wanted),
                      8: text.endswith(wanted)}.get(what)
        elif not is_text and field == 0x28:
            for one in self.lists:
                if what == 1 and one["persistent_id"] == rule["from"][0]:
                    answer = song["id"] in one["songs"]
                    break
        elif not is_text and number_of(song, field) is not None:
            number, first, last = number_of(song, field), value_of(rule["from"]), value_of(rule["to"])
            answer = {1: number == first, 0x10: number > first, 0x20: number >= first, 0x40: number < first,
                      0x80: number <= first, 0x100: min(first, last) <= number <= max(first, last),
                      0x200: number >= first, 0x400: number & first != 0, 0x800: number & first != 0}.get(what)
        return None if answer is None else answer != bool(rule["action"] & 0x02000000)

    def limit(self, rules, matching):
        order, turned = rules["order"], rules["reversed"]
        if not turned and order in (7, 8):
            matching = [place for place in matching if self.songs[place][RANKED_NUMBERS[order]]]
        ranks = {}
        for place in matching:
            if order in RANKED_TEXTS:
                texts = [self.texts[place].get(number, "") for number in RANKED_TEXTS[order] if number]
                ranks[place] = fold(next((text for text in texts if text), "")).encode("utf-8")
            else:
                ranks[place] = (self.songs[place][RANKED_NUMBERS[order]] or 0) if order in RANKED_NUMBERS else 0
        backwards = turned if order in RANKED_TEXTS else not turned
        ranked = sorted(matching, key=lambda place: ranks[place], reverse=backwards)
        unit = rules["unit"]
        room = {1: 60000, 2: 1 << 20, 3: 1, 4: 3600000, 5: 1 << 30}.get(unit, 0) * rules["limit"] if unit else 1 << 64
        taken = count = 0
        for place in ranked:
            amount = (self.songs[place]["duration"] or 0) if unit in (1, 4) else \
                (self.songs[place]["size"] or 0) if unit in (2, 5) else 1
            if taken + amount > room:
                break
            taken, count = taken + amount, count + 1
        if count == len(ranked):
            return ranked, [], count
        has_order = order in RANKED_TEXTS or order in RANKED_NUMBERS
        alike = [place for place in ranked if not has_order or ranks[place] == ranks[ranked[count]]]
        chosen = set(ranked[:count])
        if not chosen.intersection(alike) and (unit == 3 or len(alike) == 1):
            return ranked[:count], [], count
        return [place for place in ranked[:count] if place not in alike], alike, count if unit == 3 else None


def on_the_go(folder, songs):
    """The lists made on the player, as pairs of number and positions, and how many files are left out in part."""
    found, warnings = [], 0
    for number in range(1, 101):
        name = "OTGPlaylistInfo" + (f"_{number - 1}" if number > 1 else "")
        path = os.path.join(folder, name)
        if not os.path.exists(path):
            break
        with open(path, "rb") as file:
            data = file.read()
        order = {b"mhpo": "<", b"ohpm": ">"}.get(data[:4])
        if order is None or len(data) < 20:
            warnings += 1
            continue
        header, length, count = struct.unpack_from(order + "III", data, 4)
        if header < 20 or length not in (0, 4) or header > len(data) or count != (len(data) - header) // 4:
            warnings += 1
            continue
        positions = struct.unpack_from(f"{order}{count}I", data, header)
        there = [position for position in positions if position < songs]
        warnings += len(there) != len(positions)
        if there:
            found.append([number, there])
    return found, warnings


def sys_info(data):
    """The values of SysInfo by key."""
    found = {}
    for line in data.decode("latin-1").split("\n"):
        key, colon, value = line.partition(":")
        if colon:
            found.setdefault(key.strip(" \t\r\0"), value.strip(" \t\r\n\0"))
    return found


def version_of(text):
    inside = re.search(r"\(([^)]*)", text)
    return inside.group(1).strip() if inside else text
