"""The subset of ASN.1 (X.680) that the records' module uses, read into plain objects.

A module is read into its type assignments, in order, each with the C record named by the
"-- record: NAME" comment line in front of it. The types are SEQUENCE, SEQUENCE OF (with a SIZE
constraint or none), CHOICE, INTEGER (with a value range, a single value or none), OCTET STRING
(with a SIZE constraint or none), UTF8String, NULL and references to other types of the module.
"""

import re
from dataclasses import dataclass, field
from typing import Dict, List, Optional, Tuple, Union


@dataclass
class Reference:
    name: str


@dataclass
class Integer:
    low: Optional[int] = None
    high: Optional[int] = None


@dataclass
class OctetString:
    min_size: int = 0
    max_size: Optional[int] = None  # None: no upper bound


@dataclass
class Utf8String:
    pass


@dataclass
class Null:
    pass


@dataclass
class Component:
    name: str
    type: "Type"
    optional: bool = False


@dataclass
class Sequence:
    components: List[Component]


@dataclass
class SequenceOf:
    element: "Type"
    min_size: int = 0
    max_size: Optional[int] = None


@dataclass
class Choice:
    alternatives: List[Component]


Type = Union[Reference, Integer, OctetString, Utf8String, Null, Sequence, SequenceOf, Choice]


@dataclass
class Assignment:
    name: str
    type: Type
    record: Optional[str]  # the C record of the "-- record:" line before it
    first_line: int  # 1-based line of the "-- record:" line (or of the name)
    last_line: int  # 1-based line that ends the assignment


@dataclass
class Module:
    name: str
    assignments: List[Assignment] = field(default_factory=list)

    def type_named(self, name: str) -> Assignment:
        for a in self.assignments:
            if a.name == name:
                return a
        raise KeyError(name)

    def by_record(self) -> Dict[str, Assignment]:
        return {a.record: a for a in self.assignments if a.record is not None}

    def resolve(self, t: Type) -> Type:
        while isinstance(t, Reference):
            t = self.type_named(t.name).type
        return t


class ModuleError(Exception):
    pass


_TOKEN = re.compile(r"\s*(::=|\.\.|[{}(),]|[A-Za-z][A-Za-z0-9-]*|-?[0-9]+)")


def _tokens(text: str) -> List[Tuple[str, int]]:
    """The tokens of `text` with their 1-based lines; comments (X.680 12.6: from "--" to the next
    "--" or the end of the line) are dropped."""
    out = []
    for number, line in enumerate(text.split("\n"), start=1):
        pos = 0
        while pos < len(line):
            start = line.find("--", pos)
            code = line[pos:] if start < 0 else line[pos:start]
            for token in _tokenize_code(code, number):
                out.append((token, number))
            if start < 0:
                break
            end = line.find("--", start + 2)
            if end < 0:
                break
            pos = end + 2
    return out


def _tokenize_code(code: str, line: int) -> List[str]:
    tokens = []
    pos = 0
    while pos < len(code):
        if code[pos:].strip() == "":
            break
        m = _TOKEN.match(code, pos)
        if not m:
            raise ModuleError(f"line {line}: cannot read {code[pos:].strip()!r}")
        tokens.append(m.group(1))
        pos = m.end()
    return tokens


class _Parser:
    def __init__(self, tokens):
        self.tokens = tokens
        self.i = 0

    def peek(self, k=0):
        j = self.i + k
        return self.tokens[j][0] if j < len(self.tokens) else None

    def line(self):
        return self.tokens[min(self.i, len(self.tokens) - 1)][1]

    def take(self, expected=None):
        if self.i >= len(self.tokens):
            raise ModuleError("the module ends too early")
        token = self.tokens[self.i][0]
        if expected is not None and token != expected:
            raise ModuleError(f"line {self.line()}: expected {expected!r}, found {token!r}")
        self.i += 1
        return token

    def number(self):
        token = self.take()
        if token == "MAX":
            return None
        if token == "MIN":
            raise ModuleError(f"line {self.line()}: MIN is not used in this module")
        try:
            return int(token)
        except ValueError:
            raise ModuleError(f"line {self.line()}: expected a number, found {token!r}")

    def range_(self):
        """(lo..hi) or (v), after the opening parenthesis; returns (lo, hi)."""
        low = self.number()
        high = low
        if self.peek() == "..":
            self.take("..")
            high = self.number()
        self.take(")")
        return low, high

    def size(self):
        """SIZE (lo..hi) inside parentheses: the opening one is taken already."""
        self.take("SIZE")
        self.take("(")
        low, high = self.range_()
        self.take(")")
        return low, high

    def type_(self) -> Type:
        token = self.take()
        if token == "SEQUENCE":
            if self.peek() == "{":
                return Sequence(self.components("SEQUENCE"))
            low, high = 0, None
            if self.peek() == "(":
                self.take("(")
                low, high = self.size()
            self.take("OF")
            return SequenceOf(self.type_(), low, high)
        if token == "CHOICE":
            return Choice(self.components("CHOICE"))
        if token == "INTEGER":
            if self.peek() == "(":
                self.take("(")
                low, high = self.range_()
                return Integer(low, high)
            return Integer()
        if token == "OCTET":
            self.take("STRING")
            if self.peek() == "(":
                self.take("(")
                low, high = self.size()
                return OctetString(low, high)
            return OctetString()
        if token == "UTF8String":
            return Utf8String()
        if token == "NULL":
            return Null()
        if token[0].isupper():
            return Reference(token)
        raise ModuleError(f"line {self.line()}: unexpected {token!r}")

    def components(self, what):
        self.take("{")
        out = []
        while True:
            name = self.take()
            if not name[0].islower():
                raise ModuleError(f"line {self.line()}: a {what} component needs an identifier")
            t = self.type_()
            optional = False
            if self.peek() == "OPTIONAL":
                self.take()
                optional = True
            out.append(Component(name, t, optional))
            if self.peek() == ",":
                self.take(",")
                continue
            self.take("}")
            return out


_RECORD_LINE = re.compile(r"^-- record: (\S+)\s*$")


def read_module(text: str) -> Module:
    lines = text.split("\n")
    records = {}
    for number, line in enumerate(lines, start=1):
        m = _RECORD_LINE.match(line)
        if m:
            records[number] = m.group(1)
    p = _Parser(_tokens(text))
    name = p.take()
    p.take("DEFINITIONS")
    p.take("::=")
    p.take("BEGIN")
    module = Module(name)
    while p.peek() != "END":
        first = p.line()
        type_name = p.take()
        if not type_name[0].isupper():
            raise ModuleError(f"line {first}: a type name starts with a capital: {type_name!r}")
        p.take("::=")
        t = p.type_()
        last = p.tokens[p.i - 1][1]
        # The record line is the comment line right in front of the assignment.
        record = records.get(first - 1)
        module.assignments.append(
            Assignment(type_name, t, record, first - 1 if record else first, last))
    p.take("END")
    names = [a.name for a in module.assignments]
    for a in module.assignments:
        for ref in _references(a.type):
            if ref not in names:
                raise ModuleError(f"{a.name} refers to {ref}, which the module does not define")
    return module


def _references(t):
    if isinstance(t, Reference):
        yield t.name
    elif isinstance(t, (Sequence, Choice)):
        for c in (t.components if isinstance(t, Sequence) else t.alternatives):
            yield from _references(c.type)
    elif isinstance(t, SequenceOf):
        yield from _references(t.element)
