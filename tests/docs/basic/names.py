"""Checks that need no run: every name is known, and every member of the class is used as it was registered."""

from dataclasses import fields, is_dataclass

from . import syntax
from .runtime import FIRST_VALUES, OBJECTS, PLUGIN_CLASS


def _parts(node):
    """What a part of the tree is made of, one step down."""
    if isinstance(node, (list, tuple)):
        yield from node
    elif is_dataclass(node):
        yield from (getattr(node, field.name) for field in fields(node))


def _all_of(node, kind):
    if isinstance(node, kind):
        yield node
    for part in _parts(node):
        yield from _all_of(part, kind)


class Names:
    """The names that a routine, or statements outside of one, can use."""

    def __init__(self, program, library, plugin_class, parameters, body):
        self._program, self._library, self._plugin_class = program, library, plugin_class
        self._kinds = dict(parameters)
        self._body = body
        for dim in _all_of(body, syntax.Dim):
            self._kinds |= dict.fromkeys(dim.names, dim.kind)

    def faults(self):
        for kind, line in [(dim.kind, dim.line) for dim in _all_of(self._body, syntax.Dim)]:
            if kind not in FIRST_VALUES and kind not in OBJECTS:
                yield line, f"there is no class {kind}"
        for new in _all_of(self._body, syntax.New):
            if new.name != PLUGIN_CLASS and new.name not in self._library.classes:
                yield new.line, f"there is no class {new.name}"
        yield from self._walk(self._body)

    def _known(self, name):
        return name in self._kinds or name in self._program.routines or name in self._library.functions

    def _walk(self, node, arguments=0, written=False):
        """`arguments` is how many the surrounding call gives to the node; `written` whether it is assigned to."""
        if isinstance(node, syntax.Name):
            if not self._known(node.name):
                yield node.line, f"{node.name} is not known"
            elif node.name in self._program.routines and len(self._program.routines[node.name].parameters) != arguments:
                yield node.line, f"{node.name} does not take {arguments} arguments"
        elif isinstance(node, syntax.Member):
            if isinstance(node.target, syntax.Name):
                if self._kinds.get(node.target.name) == PLUGIN_CLASS:
                    yield from self._member(node, arguments, written)
                if node.target.name in self._library.modules:
                    return
            yield from self._walk(node.target)
        elif isinstance(node, syntax.Call):
            yield from self._walk(node.target, len(node.arguments))
            yield from self._walk(node.arguments)
        elif isinstance(node, syntax.Assign):
            yield from self._walk(node.target, written=True)
            yield from self._walk(node.value)
        elif isinstance(node, syntax.For):
            if node.name not in self._kinds:
                yield node.line, f"{node.name} is not known"
            yield from self._walk([node.first, node.last, node.body])
        elif not isinstance(node, (syntax.Dim, syntax.New)):
            for part in _parts(node):
                yield from self._walk(part)

    def _member(self, node, arguments, written):
        methods, properties = self._plugin_class.methods, self._plugin_class.properties
        if written:
            if not properties.get(node.name):
                yield node.line, f"the class has no property {node.name} that can be written"
        elif arguments not in methods.get(node.name, set()) and (arguments or node.name not in properties):
            yield node.line, f"the class has no {node.name} of {arguments} arguments"


def unknown_names(program, library, plugin_class):
    """Line numbers and faults."""
    yield from Names(program, library, plugin_class, [], program.statements).faults()
    for routine in program.routines.values():
        yield from Names(program, library, plugin_class, routine.parameters, routine.body).faults()
