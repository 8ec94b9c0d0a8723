"""Where the songs and playlists of an undamaged database stand, read by a plain walk over its chunks."""

import struct


def chunks(data):
    """Each chunk as (tag, where it begins, where the next one begins, its count), one after the other."""
    big = data[:4] == b"hdfm"
    at = struct.unpack_from(">I" if big else "<I", data, 4)[0]
    while at < len(data):
        tag = data[at:at + 4]
        jump, length, count = struct.unpack((">" if big else "<") + "III", data[at + 4:at + 16].ljust(12, b"\0"))
        step = length if tag in (b"mhod", b"hohm") else jump
        if step == 0 or at + step > len(data):
            raise ValueError(f"no sound database: the chunk at {at:#x}")
        yield tag, at, at + step, count
        at += step


def records(data):
    """Lists of [kind, set, begin, end]: "S" songs, "L" playlists, "E" entries, each behind its playlist; each reaches
    to the end of its objects."""
    kinds = {b"mhit": "S", b"htim": "S", b"mhyp": "L", b"hpim": "L", b"mhip": "E", b"hptm": "E"}
    found, data_set, is_open = [], 0, False
    for tag, begin, end, count in chunks(data):
        if tag in kinds:
            found.append([kinds[tag], data_set, begin, end])
            is_open = True
        elif tag in (b"mhod", b"hohm"):
            if is_open:
                found[-1][3] = end
        else:
            is_open = False
            if tag in (b"mhsd", b"hdsm"):
                data_set = count
    return found
