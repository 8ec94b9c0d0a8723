"""The host code of a page or of a file of host code: its blocks, what they print, and what their comments state."""

import re
from dataclasses import dataclass, field

HERE = "// The block stands here."
STATED = re.compile(r"(?:After (?P<after>[^:]+): )?(?P<expression>[A-Za-z][\w.]*(?:\([^;]*?\))?(?:\.\w+)*)"
                    r" gives (?P<value>\"[^\"]*\"|-?\d+|True|False|Nil)(?: on (?P<library>[a-z ]+))?[.;]")
CALLED = re.compile(r"Call it .*: (.+)$", re.MULTILINE)


@dataclass
class Statement:
    """What a comment states: an expression gives a value, after another statement, on some library."""
    after: str
    expression: str
    value: str
    library: str


@dataclass
class Block:
    line: int  # of its first line in the file
    text: str
    output: list = None  # the lines that the page shows as printed
    stated: list = field(default_factory=list)
    unread: int = 0  # how many statements are not written as they should be
    calls: list = field(default_factory=list)


@dataclass
class Page:
    path: str
    blocks: list
    frame: Block = None
    prose: list = field(default_factory=list)  # pairs of a line number and a line


def _with_comments_read(block):
    comments = " ".join(re.findall(r"^\s*// (.*)$", block.text, re.MULTILINE))
    for match in STATED.finditer(comments):
        block.stated.append(Statement(match["after"], match["expression"], match["value"], match["library"] or "player"))
    block.unread = comments.count(" gives ") - len(block.stated)
    block.calls = CALLED.findall("\n".join(re.findall(r"^// .*$", block.text, re.MULTILINE)))
    return block


def read_page(path):
    """Host code is what is fenced as vb, or the whole of a .bas file. A plain block right after one is its output."""
    with open(path, encoding="utf-8") as file:
        lines = file.read().split("\n")
    if path.endswith(".bas"):
        return Page(path, [_with_comments_read(Block(1, "\n".join(lines)))])
    page = Page(path, [])
    fence = begin = None
    after_code = False
    for number, line in enumerate(lines, 1):
        if fence is None and line.startswith("```"):
            fence, begin = line[3:], number
        elif fence is None:
            page.prose.append((number, line))
            after_code = after_code and not line
        elif line == "```":
            body = lines[begin:number - 1]
            if fence == "vb":
                page.blocks.append(Block(begin + 1, "\n".join(body)))
            elif fence == "" and after_code and body and not body[0].startswith("$ "):
                page.blocks[-1].output = body
            after_code = fence == "vb"
            fence = None
    for block in page.blocks:
        _with_comments_read(block)
    frames = [block for block in page.blocks if HERE in block.text]
    if frames:
        page.frame = frames[0]
        page.blocks.remove(page.frame)
    return page
