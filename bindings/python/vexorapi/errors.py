"""What can go wrong with a call. Every exception of this package is an Error."""

from __future__ import annotations


class Error(Exception):
    """The head of all of them."""


class LibraryMissing(Error):
    """libvexorapi could not be loaded."""


class UnknownFunction(Error):
    """The library has no function of that name; nearest is the one that may be meant, or None."""

    def __init__(self, function: str, nearest: str | None) -> None:
        super().__init__(f"there is no function {function!r}" + _meant(nearest))
        self.function = function
        self.nearest = nearest


class ParameterError(Error, ValueError):
    """A parameter that the function does not have, or a value that it does not take."""

    def __init__(self, function: str, parameter: str, reason: str) -> None:
        super().__init__(f"{function}: {parameter} {reason}")
        self.function = function
        self.parameter = parameter


class UnknownParameter(ParameterError):
    """The function has no such parameter; nearest is the one that may be meant, or None."""

    def __init__(self, function: str, parameter: str, nearest: str | None) -> None:
        super().__init__(function, parameter, "is no parameter of it" + _meant(nearest))
        self.nearest = nearest


class Declined(Error):
    """The library takes no such command: it is not well-formed or names no function."""


class DoesNotFit(Error):
    """A result that is too large for the library, or was cut by it: ask for fewer records."""


class Unreadable(Error):
    """A result without what a result of its function has."""


class Refused(Error):
    """The controller refused a call.

    code is its status. name and sentence say what it means where the controller's codes are known,
    else they are None.
    """

    def __init__(self, function: str, code: int, name: str | None, sentence: str | None) -> None:
        super().__init__(f"{function} was refused with code {code}"
                         + (f": {sentence}" if sentence is not None else ""))
        self.function = function
        self.code = code
        self.name = name
        self.sentence = sentence


class LogonFailed(Error):
    """A user without an entry in the system's shadow file (code 2), or a wrong password (code 3).

    A library that may not read the shadow file answers every user with code 2.
    """

    def __init__(self, code: int) -> None:
        reasons = {2: "no such user, or the shadow file cannot be read", 3: "wrong password"}
        super().__init__(reasons.get(code, f"code {code}"))
        self.code = code


class StoreUnreadable(Error):
    """The event store cannot be read, so that nothing is known of its events."""


def _meant(nearest: str | None) -> str:
    return "" if nearest is None else f"; did you mean {nearest!r}?"
