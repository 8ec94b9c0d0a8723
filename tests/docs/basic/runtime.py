"""Runs host code: routines and statements, with the types of the dialect."""

from . import syntax
from .lexer import BasicError
from .library import Date, MemoryBlock, TextEncoding, wrapped
from .session import FolderItem, PluginObject
from .text import Text

PLUGIN_CLASS = "zemitunesdb"
OBJECTS = {"date": Date, "memoryblock": MemoryBlock, "textencoding": TextEncoding, "folderitem": FolderItem,
           PLUGIN_CLASS: PluginObject}
FIRST_VALUES = {"integer": 0, "double": 0.0, "boolean": False, "string": Text(b"", None)}


class Returned(Exception):
    def __init__(self, value):
        super().__init__()
        self.value = value


def fitted(value, kind):
    """The value as a variable of the kind keeps it."""
    number = isinstance(value, (int, float)) and not isinstance(value, bool)
    if kind == "integer" and number:
        return wrapped(int(value))
    if kind == "double" and number:
        return float(value)
    if kind == "boolean" and isinstance(value, bool) or kind == "string" and isinstance(value, Text):
        return value
    if kind in OBJECTS and (value is None or isinstance(value, OBJECTS[kind])):
        return value
    raise BasicError(f"{value} is no {kind}")


class Scope:
    """The variables of a routine that runs, with their kinds."""

    def __init__(self):
        self.values = {}
        self.kinds = {}

    def declare(self, name, kind, value):
        if name in self.kinds:
            raise BasicError(f"{name} is declared twice")
        self.kinds[name] = kind
        self.values[name] = fitted(value, kind)

    def assign(self, name, value):
        if name not in self.kinds:
            raise BasicError(f"{name} is no variable")
        self.values[name] = fitted(value, self.kinds[name])


class Runtime:
    """`called` is the names of the routines that have run."""

    def __init__(self, program, library):
        self.program = program
        self.library = library
        self.called = set()

    # Statements

    def call_routine(self, name, arguments):
        routine = self.program.routines[name]
        self.called.add(name)
        if len(arguments) != len(routine.parameters):
            raise BasicError(f"{name} takes {len(routine.parameters)} arguments")
        scope = Scope()
        for (parameter, kind), argument in zip(routine.parameters, arguments):
            scope.declare(parameter, kind, argument)
        value = FIRST_VALUES.get(routine.result)
        try:
            self.run(routine.body, scope)
        except Returned as returned:
            if (returned.value is None) != (routine.result is None) and routine.result not in OBJECTS:
                raise BasicError(f"{name} returns with a value, or without one, where it should not") from returned
            value = returned.value
        return None if routine.result is None else fitted(value, routine.result)

    def run(self, statements, scope):
        for statement in statements:
            try:
                self._run(statement, scope)
            except (BasicError, ArithmeticError, TypeError, LookupError, OSError) as error:
                if isinstance(error, BasicError) and str(error).startswith("line "):
                    raise
                raise BasicError(f"line {statement.line}: {error}") from error

    def _run(self, statement, scope):
        if isinstance(statement, syntax.Dim):
            for name in statement.names:
                value = self._new(statement.kind) if statement.new else FIRST_VALUES.get(statement.kind)
                scope.declare(name, statement.kind, value)
        elif isinstance(statement, syntax.Assign):
            self._assign(statement.target, self.value(statement.value, scope), scope)
        elif isinstance(statement, syntax.Run):
            if self._run_member_or_name(statement.expression, scope) is not None:
                raise BasicError("a result is not used")
        elif isinstance(statement, syntax.If):
            for condition, body in statement.branches:
                if condition is None or self._truth(condition, scope):
                    self.run(body, scope)
                    break
        elif isinstance(statement, syntax.For):
            scope.assign(statement.name, self.value(statement.first, scope))
            while scope.values[statement.name] <= self.value(statement.last, scope):
                self.run(statement.body, scope)
                scope.assign(statement.name, scope.values[statement.name] + 1)
        else:
            raise Returned(None if statement.value is None else self.value(statement.value, scope))

    def _run_member_or_name(self, expression, scope):
        if isinstance(expression, syntax.Call):
            return self.value(expression, scope)
        return self.value(syntax.Call(expression, [], expression.line), scope)

    def _assign(self, target, value, scope):
        if isinstance(target, syntax.Name):
            scope.assign(target.name, value)
        elif isinstance(target, syntax.Member):
            owner = self.value(target.target, scope)
            if isinstance(owner, PluginObject):
                self.library.session.set(owner, target.name, value)
            elif target.name in getattr(owner, "WRITABLE", {}):
                setattr(owner, target.name, owner.WRITABLE[target.name](value))
            else:
                raise BasicError(f"{target.name} cannot be written")
        else:  # owner.member(arguments) = value
            arguments = [self.value(argument, scope) for argument in target.arguments]
            self.value(target.target.target, scope).store(target.target.name, arguments, value)

    def _truth(self, expression, scope):
        return fitted(self.value(expression, scope), "boolean")

    # Expressions

    def _new(self, kind, arguments=()):
        if kind == PLUGIN_CLASS:
            return self.library.session.new(kind)
        if kind not in self.library.classes:
            raise BasicError(f"there is no class {kind}")
        return self.library.classes[kind](*arguments)

    def value(self, expression, scope):
        if isinstance(expression, syntax.Literal):
            value = expression.value
            if isinstance(value, str):
                return Text.of(value)
            return wrapped(value) if type(value) is int else value
        if isinstance(expression, syntax.Unary):
            return self._unary(expression, scope)
        if isinstance(expression, syntax.Binary):
            # Both sides, always: host code must not count on the first one deciding.
            return self._binary(expression.operator, self.value(expression.left, scope), self.value(expression.right, scope))
        if isinstance(expression, syntax.New):
            return self._new(expression.name)
        if isinstance(expression, syntax.Call):
            arguments = [self.value(argument, scope) for argument in expression.arguments]
            if isinstance(expression.target, syntax.New):
                return self._new(expression.target.name, arguments)
            return self._called(expression.target, arguments, scope)
        if isinstance(expression, syntax.Name) and expression.name in scope.values:
            return scope.values[expression.name]
        return self._called(expression, [], scope)

    def _called(self, target, arguments, scope):
        if isinstance(target, syntax.Name):
            if target.name in self.program.routines:
                return self.call_routine(target.name, arguments)
            if target.name in self.library.functions:
                return self.library.call(target.name, arguments)
            raise BasicError(f"{target.name} is not known")
        if isinstance(target.target, syntax.Name) and target.target.name in self.library.modules:
            return self.library.modules[target.target.name](target.name, arguments)
        owner = self.value(target.target, scope)
        if owner is None:
            raise BasicError(f"{target.name} of Nil")
        if isinstance(owner, PluginObject):
            if target.name in owner.plugin_class.properties and not arguments:
                return self.library.session.get(owner, target.name)
            return self.library.session.call(owner, target.name, arguments)
        if isinstance(owner, FolderItem):
            return self.library.item_member(owner, target.name, arguments)
        reader = getattr(owner, "call" if arguments else "get", None)
        if reader is None:
            raise BasicError(f"{owner} has no {target.name}")
        return reader(target.name, arguments) if arguments else reader(target.name)

    def _unary(self, expression, scope):
        value = self.value(expression.operand, scope)
        if expression.operator == "not":
            return not fitted(value, "boolean")
        return wrapped(-value) if isinstance(value, int) else -fitted(value, "double")

    @staticmethod
    def _binary(operator, left, right):
        if operator in ("and", "or"):
            a, b = fitted(left, "boolean"), fitted(right, "boolean")
            return a and b if operator == "and" else a or b
        if isinstance(left, Text) and isinstance(right, Text):
            if operator in ("=", "<>"):
                return left.same(right) == (operator == "=")
            if operator == "+":
                return left.joined(right)
            raise BasicError(f"no {operator} for Strings")
        if operator in ("=", "<>") and (left is None or right is None or isinstance(left, bool) and isinstance(right, bool)):
            return (left is right) == (operator == "=")
        a, b = (v if type(v) is int else fitted(v, "double") for v in (left, right))
        if operator in ("=", "<>", "<", ">", "<=", ">="):
            return {"=": a == b, "<>": a != b, "<": a < b, ">": a > b, "<=": a <= b, ">=": a >= b}[operator]
        if operator in ("\\", "mod"):
            quotient = abs(int(a)) // abs(int(b)) * (1 if (a < 0) == (b < 0) else -1)
            return quotient if operator == "\\" else int(a) - quotient * int(b)
        result = {"+": lambda: a + b, "-": lambda: a - b, "*": lambda: a * b, "/": lambda: float(a) / b}[operator]()
        return wrapped(result) if isinstance(result, int) else result
