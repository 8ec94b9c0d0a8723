"""Makes music files of every kind, small ones, with tags."""

import struct


def mpeg(size):
    """Frames of 96 bytes, of that many bytes together."""
    frame = b"\xff\xfb\x14\xc4" + bytes(range(92))
    return (frame * (size // 96 + 1))[:size]


def synchsafe(number):
    return bytes(number >> shift & 0x7F for shift in (21, 14, 7, 0))


def id3(frames, version=4):
    """An ID3v2 tag of these frames of text."""
    body = b""
    for name, text in frames.items():
        content = b"\x03" + text.encode() if version == 4 else b"\x01" + text.encode("utf-16")
        size = synchsafe(len(content)) if version == 4 else struct.pack(">I", len(content))
        body += name.encode() + size + b"\0\0" + content
    return b"ID3" + bytes([version, 0, 0]) + synchsafe(len(body)) + body


def box(name, *content):
    content = b"".join(content)
    return struct.pack(">I", len(content) + 8) + name + content


def mp4(size, items=b""):
    """A file of that many bytes whose table of chunks stands before the sound, and names its first two bytes' places."""
    def whole(sound, offset):
        stco = box(b"stco", bytes(4), struct.pack(">III", 2, offset, offset + 16))
        meta = box(b"meta", bytes(4), box(b"hdlr", bytes(25)), box(b"ilst", items)) if items else b""
        moov = box(b"moov", box(b"mvhd", bytes(100)), box(b"trak", box(b"mdia", box(b"minf", box(b"stbl", stco)))),
                   box(b"udta", meta) if meta else b"")
        return box(b"ftyp", b"M4A \0\0\0\0M4A ") + moov, box(b"mdat", sound)
    head, _ = whole(b"", 0)
    sound = bytes(i * 7 % 251 for i in range(size - len(head) - 8))
    return b"".join(whole(sound, len(head) + 8))


def mp4_text(name, text):
    """A tag of an MP4 file."""
    return box(name, box(b"data", struct.pack(">II", 1, 0), text.encode()))


def aiff(sound, tag):
    """An AIFF file with these samples of 8 bits and an ID3v2 tag, if there is one."""
    def chunk(name, content):
        return name + struct.pack(">I", len(content)) + content + bytes(len(content) % 2)
    rate = b"\x40\x0b\xfa" + bytes(7)  # 8000 as an extended number
    body = b"AIFF" + chunk(b"COMM", struct.pack(">hIh", 1, len(sound), 8) + rate) + chunk(b"SSND", bytes(8) + sound)
    return chunk(b"FORM", body + (chunk(b"ID3 ", tag) if tag else b""))


def wav(sound, texts):
    """A WAV file with these samples of 8 bits, and texts by the names of its list of information."""
    def chunk(name, content):
        return name + struct.pack("<I", len(content)) + content + bytes(len(content) % 2)
    info = b"INFO" + b"".join(chunk(name, text.encode() + b"\0") for name, text in texts.items())
    return chunk(b"RIFF", b"WAVE" + chunk(b"fmt ", struct.pack("<HHIIHH", 1, 1, 8000, 8000, 1, 8)) +
                 chunk(b"data", sound) + chunk(b"LIST", info))


def _comments(texts):
    """A block of Vorbis comments."""
    lines = [f"{name}={text}".encode() for name, text in texts.items()]
    return (struct.pack("<I", 5) + b"maker" + struct.pack("<I", len(lines)) +
            b"".join(struct.pack("<I", len(line)) + line for line in lines))


def flac(sound, texts):
    stream = struct.pack(">HH", 4096, 4096) + bytes(6) + struct.pack(">Q", 8000 << 44 | 7 << 36 | len(sound)) + bytes(16)
    comments = _comments(texts)
    return (b"fLaC" + bytes([0]) + len(stream).to_bytes(3, "big") + stream +
            bytes([0x84]) + len(comments).to_bytes(3, "big") + comments + b"\xff\xf8" + sound)


def ogg(sound, texts):
    """An Ogg file of Vorbis, each packet in a page of its own, without check sums."""
    def page(number, packet, kind=0):
        lacing = bytes([255] * (len(packet) // 255) + [len(packet) % 255])
        return (b"OggS" + bytes([0, kind]) + struct.pack("<qIII", 0, 1, number, 0) + bytes([len(lacing)]) + lacing + packet)
    head = b"\x01vorbis" + struct.pack("<IBIiii", 0, 1, 8000, 0, 64000, 0) + b"\xb8\x01"
    return (page(0, head, 2) + page(1, b"\x03vorbis" + _comments(texts) + b"\x01") +
            page(2, b"\x05vorbis" + bytes(20)) + page(3, sound[:200], 4))
