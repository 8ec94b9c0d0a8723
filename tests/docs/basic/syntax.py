"""What host code consists of: expressions, statements and routines."""

from dataclasses import dataclass, field
from typing import Any


@dataclass
class Literal:
    value: Any


@dataclass
class Name:
    name: str
    line: int


@dataclass
class Member:
    """`target.name`"""
    target: Any
    name: str
    line: int


@dataclass
class Call:
    """`target(arguments)`, or `target arguments` as a statement."""
    target: Any
    arguments: list
    line: int


@dataclass
class New:
    name: str
    line: int


@dataclass
class Unary:
    operator: str
    operand: Any
    line: int


@dataclass
class Binary:
    operator: str
    left: Any
    right: Any
    line: int


@dataclass
class Dim:
    names: list
    kind: str
    new: bool
    line: int


@dataclass
class Assign:
    target: Any
    value: Any
    line: int


@dataclass
class Run:
    """An expression that stands as a statement of its own."""
    expression: Any
    line: int


@dataclass
class If:
    branches: list  # pairs of a condition and statements; the condition of Else is None
    line: int


@dataclass
class For:
    name: str
    first: Any
    last: Any
    body: list
    line: int


@dataclass
class Return:
    value: Any
    line: int


@dataclass
class Routine:
    """A Sub or, with a result, a Function. The parameters are pairs of a name and a kind."""
    name: str
    parameters: list
    result: Any
    body: list
    line: int


@dataclass
class Program:
    routines: dict = field(default_factory=dict)
    statements: list = field(default_factory=list)
