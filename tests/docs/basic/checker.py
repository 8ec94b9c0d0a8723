"""Runs all host code of a page, and collects what is wrong with it."""

import os
import re

from . import syntax
from .lexer import BasicError
from .libraries import LIBRARIES
from .library import Library
from .names import unknown_names
from .pages import HERE, read_page
from .parser import parse
from .runtime import PLUGIN_CLASS, Runtime, Scope
from .text import Text


class Composition:
    """A block in the frame of its page, if that has one, with more statements after the block's own."""

    PLACEHOLDER = syntax.Name("theblockstandshere", 0)

    def __init__(self, page, block, more=()):
        own = parse(block.text, block.line)
        self.defined = {name: routine.line for name, routine in own.routines.items()}
        statements = own.statements + [statement for line in more for statement in parse(line, block.line).statements]
        self.program = syntax.Program(own.routines, statements)
        self.frame = None
        if page.frame is not None:
            frames = parse(page.frame.text.replace(HERE, self.PLACEHOLDER.name), page.frame.line).routines
            self.frame = next(iter(frames))
            self._put_into(frames[self.frame].body, statements)
            self.program = syntax.Program(own.routines | frames)

    def _put_into(self, body, statements):
        at = next(at for at, statement in enumerate(body)
                  if isinstance(statement, syntax.Run) and getattr(statement.expression, "name", "") == self.PLACEHOLDER.name)
        body[at:at + 1] = statements

    def run(self, library, database, called):
        runtime = Runtime(self.program, library)
        library.session.reset()
        if self.frame is None:
            runtime.run(self.program.statements, Scope())
        else:
            runtime.call_routine(self.frame, [database])
        called.update(runtime.called)


class Checker:
    """`listings` is what the code of some files prints, by the file's name; `faults` is what was found."""

    def __init__(self, session, listings):
        self._session = session
        self._plugin_class = session.plugin_class(PLUGIN_CLASS)
        self._listings = listings
        self.faults = []

    def check(self, path):
        page = read_page(path)
        called, defined = set(), {}
        for block in page.blocks:
            where = f"{path}, block of line {block.line}"
            try:
                self._check_block(where, page, block, called, defined)
            except BasicError as error:
                self.faults.append(f"{where}: {error}")
        if not page.blocks:
            self.faults.append(f"{path} holds no host code")
        for name in sorted(set(defined) - called):
            self.faults.append(f"{path}, line {defined[name]}: {name} never runs: state what it gives")
        known = set(self._plugin_class.methods) | set(defined) | set(Library(self._session).functions)
        for number, line in page.prose:
            for name in re.findall(r"`([A-Z][A-Za-z0-9]+)\(", line):
                if name.lower() not in known:
                    self.faults.append(f"{path}, line {number}: there is no {name}")

    def _check_block(self, where, page, block, called, defined):
        if "..." in block.text:
            self.faults.append(f"{where}: something is left out")
        if block.unread:
            self.faults.append(f"{where}: a comment states what cannot be read")
        composition = Composition(page, block, block.calls)
        for name in set(composition.defined) & set(defined):
            self.faults.append(f"{where}: {name} is there twice")
        defined |= composition.defined
        for line, fault in unknown_names(composition.program, Library(self._session), self._plugin_class):
            self.faults.append(f"{page.path}, line {line}: {fault}")
        printed = self._run(composition, "player", called)
        expected = self._listings.get(os.path.basename(page.path), block.output)
        if expected is not None and printed != expected:
            self.faults.append(f"{where} prints other lines:\n  " + "\n  ".join(printed))
        if page.frame is not None:
            self._run(composition, "a desktop library", called)
        for stated in block.stated:
            self._check_statement(where, page, block, stated, called)

    def _check_statement(self, where, page, block, stated, called):
        if stated.library not in LIBRARIES:
            self.faults.append(f"{where}: there is no {stated.library}")
            return
        lines = [stated.after] if stated.after else []
        lines.append(f"ToCompare {stated.expression}, {stated.value}")
        compared = []
        self._run(Composition(page, block, lines), stated.library, called, lambda *values: compared.extend(values))
        value, expected = (shown(value) for value in compared)
        if value != expected:
            self.faults.append(f"{where}: {stated.expression} gives {value} on {stated.library}, not {expected}")

    def _run(self, composition, library, called, compare=None):
        environment = Library(self._session)
        if compare:
            environment.functions["tocompare"] = (compare, "aa")
        composition.run(environment, environment.item(os.path.join(self._session.volumes["Samples"], LIBRARIES[library])), called)
        return environment.output


def shown(value):
    """A value so that only equal ones of one kind are shown alike."""
    return repr(value.characters()) if isinstance(value, Text) else repr(value)
