"""How commands are written and results are read, by what the generated modules know of them."""

from __future__ import annotations

import difflib
import enum
from collections.abc import Callable, Iterable, Mapping, Sequence
from typing import Any, NamedTuple, Protocol
from xml.etree import ElementTree
from xml.etree.ElementTree import Element

from ._repair import repaired
from .errors import DoesNotFit, ParameterError, Unreadable, UnknownParameter

PAGE = 128  # entries of a list; a page of so many fits into a result whatever it lists

Reader = Callable[[Element], Any]


# ---- Results -----------------------------------------------------------------------------------

class _Missing(Exception):
    """The name of an element that is not there."""


def number(element: Element) -> int:
    return int(element.text or "")


def flag(element: Element) -> bool:
    return int(element.text or "") != 0


def hexadecimal(element: Element) -> int:
    return int(element.text or "", 16)


def text(element: Element) -> str:
    return element.text or ""


def numbers(element: Element) -> tuple[int, ...]:
    return tuple(map(int, (element.text or "").split()))


class each:
    """The elements of one name, of which there may be any number."""

    def __init__(self, shape: Shape) -> None:
        self.shape = shape

    def take(self, name: str, record: Element) -> tuple[Any, ...]:
        return tuple(map(self.shape.read, record.findall(name)))


class _Ports:
    """An element for each port, with its number behind the name."""

    def take(self, name: str, record: Element) -> tuple[tuple[int, ...], ...]:
        found: list[tuple[int, ...]] = []
        while (element := record.find(f"{name}{len(found)}")) is not None:
            found.append(numbers(element))
        return tuple(found)


class _Data:
    """Bytes; the element is left out when there are none."""

    def take(self, name: str, record: Element) -> bytes:
        element = record.find(name)
        return b"" if element is None else bytes(numbers(element))


ports = _Ports()
data = _Data()


class _One:
    """An element that is always there."""

    def __init__(self, read: Reader) -> None:
        self.read = read

    def take(self, name: str, record: Element) -> Any:
        element = record.find(name)
        if element is None:
            raise _Missing(name)
        return self.read(element)


class _Taker(Protocol):
    def take(self, name: str, record: Element) -> Any: ...


class Shape:
    """A record, or the result of a function: its type, and its elements in the library's order."""

    def __init__(self, record_type: Any, rows: Sequence[tuple[str, Any]]) -> None:
        self._make: Callable[[Iterable[Any]], Any] = record_type._make
        self._takers: list[tuple[str, _Taker]] = [
            (name, row if hasattr(row, "take") else _One(row)) for name, row in rows]
        # Nearly all records have exactly the elements of their rows. Those are read without looking
        # for names, except where an element may be missing or be there several times.
        self._names: list[str] | None = None
        self._readers: list[Reader] = []
        if not any(hasattr(row, "take") for _, row in rows):
            self._names = [name for name, _ in rows]
            self._readers = [row for _, row in rows]

    def read(self, element: Element) -> Any:
        if [child.tag for child in element] == self._names:
            return self._make([read(child) for read, child in zip(self._readers, element)])
        return self._make([taker.take(name, element) for name, taker in self._takers])


def parsed(function: str, result: bytes) -> Element:
    """The result's root; texts from controllers and disks may hold anything."""
    try:
        return ElementTree.fromstring(result)
    except ElementTree.ParseError:
        pass
    try:
        return ElementTree.fromstring(repaired(result))
    except ElementTree.ParseError as error:
        raise DoesNotFit(
            f"{function}: the result was cut or is broken ({error}); ask for fewer records"
        ) from error


def read(function: str, shape: Shape, root: Element) -> Any:
    try:
        return shape.read(root)
    except _Missing as missing:
        raise Unreadable(f"{function}: the result has no {missing}") from None
    except ValueError as error:
        raise Unreadable(f"{function}: the result holds no number: {error}") from error


# ---- Commands ----------------------------------------------------------------------------------

class Kind(enum.Enum):
    NUMBER = enum.auto()
    NUMBERS = enum.auto()
    TEXT = enum.auto()


class Parameter(NamedTuple):
    name: str
    kind: Kind
    bits: int  # of each number
    most: int  # numbers, or bytes of a text


class Function(NamedTuple):
    name: str
    has_status: bool  # RetVal says why a call was refused, and is no part of the result
    result: Shape | None
    parameters: tuple[Parameter, ...]


# What XML 1.0 cannot carry, not even as a reference.
_FORBIDDEN = {code for code in range(32) if code not in (9, 10, 13)} | {0xFFFE, 0xFFFF}
# A line end would otherwise reach the library as another one.
_REFERENCES = {"&": "&amp;", "<": "&lt;", ">": "&gt;", "\r": "&#13;"}


def _write_number(function: str, parameter: Parameter, value: object) -> str:
    if isinstance(value, bool):
        value = int(value)
    if not isinstance(value, int):
        raise ParameterError(function, parameter.name, f"takes numbers, not {value!r}")
    if not 0 <= value < 1 << parameter.bits:
        raise ParameterError(function, parameter.name,
                             f"is {value}; it takes 0 to {(1 << parameter.bits) - 1}")
    return str(int(value))


def _write_text(function: str, parameter: Parameter, value: object) -> str:
    # A value may be a password: no message repeats it.
    if not isinstance(value, str):
        raise ParameterError(function, parameter.name, f"takes a text, not a {type(value).__name__}")
    try:
        size = len(value.encode())
    except UnicodeEncodeError:
        raise ParameterError(function, parameter.name, "is no Unicode text") from None
    if size > parameter.most:
        raise ParameterError(function, parameter.name,
                             f"has {size} bytes; it takes at most {parameter.most}")
    if any(ord(character) in _FORBIDDEN for character in value):
        raise ParameterError(function, parameter.name, "holds a character that XML cannot carry")
    return "".join(_REFERENCES.get(character, character) for character in value)


def _write_value(function: str, parameter: Parameter, value: object) -> str:
    if parameter.kind is Kind.NUMBER:
        return _write_number(function, parameter, value)
    if parameter.kind is Kind.TEXT:
        return _write_text(function, parameter, value)
    if isinstance(value, (str, bytes)) or not isinstance(value, Iterable):
        raise ParameterError(function, parameter.name, f"takes a sequence of numbers, not {value!r}")
    items = [_write_number(function, parameter, item) for item in value]
    if len(items) > parameter.most:
        raise ParameterError(function, parameter.name,
                             f"has {len(items)} numbers; it takes at most {parameter.most}")
    return " ".join(items)


def command(function: Function, values: Mapping[str, object]) -> bytes:
    """The command of a call with these parameters."""
    parts = [f'<{function.name} type="function">\n']
    known = {parameter.name: parameter for parameter in function.parameters}
    for name, value in values.items():
        parameter = known.get(name)
        if parameter is None:
            raise UnknownParameter(function.name, name, nearest(name, known))
        parts.append(f"  <{name}>{_write_value(function.name, parameter, value)}</{name}>\n")
    parts.append(f"</{function.name}>\n")
    return "".join(parts).encode()


def nearest(name: str, names: Iterable[str]) -> str | None:
    by_lower = {each.lower(): each for each in names}
    found = difflib.get_close_matches(name.lower(), by_lower, n=1, cutoff=0.75)
    return by_lower[found[0]] if found else None


class Asking:
    """Whoever can carry out a call; the generated methods are on top of it."""

    def _ask(self, function: Function, values: Mapping[str, object]) -> Any:
        raise NotImplementedError
