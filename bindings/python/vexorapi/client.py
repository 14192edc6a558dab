"""Clients of the library: Client, and AsyncClient for asyncio."""

from __future__ import annotations

import asyncio
import enum
import time
from collections.abc import AsyncIterator, Callable, Iterator, Mapping, Sequence
from concurrent.futures import ThreadPoolExecutor
from types import TracebackType
from typing import Any, NamedTuple, ParamSpec, Protocol, TypeVar

from . import _library, _shapes
from .errors import (
    DoesNotFit, Error, LogonFailed, Refused, StoreUnreadable, Unreadable, UnknownFunction,
)
from .functions import CONTROLLERS, FUNCTIONS, REFUSALS, Functions
from .records import Event, RequestHeader, VX_HX_ChangeCounters

_P = ParamSpec("_P")
_T = TypeVar("_T")
_T_co = TypeVar("_T_co", covariant=True)

_NEWEST = 0xFFFFFFFF
_LIST_COMPLETE = 65535
_TRIES = 3  # of what another process's work on the event store was in the way of


class Group(enum.Enum):
    """What a user may do: root and the members of the group root administrate."""

    ADMINISTRATOR = "Administrator"
    VALID_USER = "ValidUser"
    UNKNOWN_USER = "UnknownUser"


class StoredEvent(NamedTuple):
    """An event and the store's own number of it.

    Numbers rise by one from event to event; a gap is events that newer ones have overwritten.
    """

    number: int
    event: Event


class Page(Protocol[_T_co]):
    """A page of a list."""

    @property
    def RequestHeader(self) -> RequestHeader: ...

    @property
    def records(self) -> tuple[_T_co, ...]: ...


class Client(Functions):
    """The library, from its initialisation to its shutdown.

    Its methods are the library's functions, under their own names, and what is written here. Use it
    as a context manager or call close(). Clients may be used by several threads, whose calls take
    turns; all clients of a process share one library. A process that has forked goes on using its
    clients: the first call in it initialises the library anew.
    """

    def __init__(self) -> None:
        self._is_open = False
        _library.enter()
        self._is_open = True
        self._has_own_codes: bool | None = None

    def close(self) -> None:
        """Ends the use of the library. A second call does nothing."""
        if self._is_open:
            self._is_open = False
            _library.leave()

    def __enter__(self) -> Client:
        return self

    def __exit__(self, kind: type[BaseException] | None, value: BaseException | None,
                 traceback: TracebackType | None) -> None:
        self.close()

    def raw(self, command: str | bytes) -> bytes:
        """Carries out one command in XML and returns the result text exactly.

        Raises Declined when the library does not take the command, DoesNotFit when the result was
        lost. A refusal of the controller is in the result's RetVal.
        """
        if not self._is_open:
            raise Error("the client is closed")
        return _library.send(command.encode() if isinstance(command, str) else command)

    def call(self, function: str, parameters: Mapping[str, object] | None = None) -> Any:
        """Calls the function of that name and returns its result, None where it has none.

        Raises UnknownFunction, ParameterError, Refused, and what raw() raises.
        """
        row = FUNCTIONS.get(function)
        if row is None:
            raise UnknownFunction(function, _shapes.nearest(function, FUNCTIONS))
        return self._ask(row, parameters or {})

    def _ask(self, function: _shapes.Function, values: Mapping[str, object]) -> Any:
        root = _shapes.parsed(function.name, self.raw(_shapes.command(function, values)))
        if function.has_status:
            status = root.findtext("RetVal")
            if status is None or not status.isdecimal():
                raise Unreadable(f"{function.name}: the result has no status")
            if int(status) != 0:
                raise self._refusal(function.name, int(status))
        return None if function.result is None else _shapes.read(
            function.name, function.result, root)

    def _refusal(self, function: str, code: int) -> Refused:
        if self._has_own_codes is None:
            self._has_own_codes = self.HX_API_Version().RetVal.endswith(CONTROLLERS)
        name, sentence = REFUSALS.get(code, (None, None)) if self._has_own_codes else (None, None)
        return Refused(function, code, name, sentence)

    def every(self, function: Callable[..., Page[_T]], **parameters: Any) -> Iterator[_T]:
        """The entries of a whole list, page by page: client.every(client.HX_PD_GetHDInfo, AdapterID=0).

        The list may change between two pages.
        """
        start = 0
        wanted = int(parameters.pop("numRequested", _shapes.PAGE))
        while start != _LIST_COMPLETE:
            try:
                page = function(startingIndexOrId=start, numRequested=wanted, **parameters)
            except DoesNotFit:
                if wanted <= 1:
                    raise
                wanted //= 2
                continue
            yield from page.records
            following = page.RequestHeader.nextStartingIndex
            if following <= start:
                raise Unreadable("the list goes on where it has been")
            start = following

    def counters(self) -> VX_HX_ChangeCounters:
        """How often each kind of object has changed; the counters wrap at 2**32."""
        return self.VX_HX_EVT_GetChangeCounters().ChangeCounters

    def events(self, start: int = 0, *, follow: float | None = None) -> Iterator[StoredEvent]:
        """The stored events from number start on, the oldest first.

        It ends behind the newest; with follow, it looks for new ones every so many seconds and does
        not end. A store that was emptied is read from its beginning. Raises StoreUnreadable.
        """
        if not 0 <= start < _NEWEST:
            raise ValueError(f"there is no event number {start}")
        while True:
            first, end = self._extent()
            if start > end:
                start = first
            while start < end:
                page = self._events_from(start, min(end - start, _shapes.PAGE))
                if not page:
                    break
                yield from page
                start = page[-1].number + 1
            if follow is None:
                return
            time.sleep(follow)

    def _extent(self) -> tuple[int, int]:
        for _ in range(_TRIES):
            extent = self.VX_HX_EVT_GetEvents()
            if extent.n != 0:
                return extent.s, extent.s + extent.n
            # A store that cannot be read has the same extent as an empty one; but asked for an
            # event, it answers with one of zeros, where the empty one answers with none.
            if not self.VX_HX_EVT_GetEvents(n=1).Event:
                return extent.s, extent.s
        raise StoreUnreadable("the event store cannot be read")

    def _events_from(self, start: int, count: int) -> Sequence[StoredEvent]:
        for _ in range(_TRIES):
            answer = self.VX_HX_EVT_GetEvents(n=count, s=start, e=start + count - 1)
            if all(event.TimeStamp != 0 for event in answer.Event):
                # Asked for numbers below the oldest, the store answers from its oldest.
                return [StoredEvent(answer.s + i, event) for i, event in enumerate(answer.Event)]
        raise StoreUnreadable(f"event {start} or one of the next cannot be read")

    def logon(self, user: str, password: str) -> Group:
        """What the user may do. Raises LogonFailed unless the password is right."""
        answer = self.HX_LogonUser(lpszUsername=user, lpszPassword=password)
        if answer.RetVal != 0:
            raise LogonFailed(answer.RetVal)
        try:
            return Group(answer.UserGroup)
        except ValueError:
            raise Unreadable(f"HX_LogonUser: there is no group {answer.UserGroup!r}") from None


class AsyncClient:
    """A client for asyncio: calls run in a thread of its own, one at a time.

    async with AsyncClient() as client:
        disks = await client.run(Client.HX_PD_GetHDInfo, AdapterID=0)

    A call that was cancelled goes on in the thread, and its result is lost.
    """

    def __init__(self) -> None:
        self._thread = ThreadPoolExecutor(max_workers=1, thread_name_prefix="vexorapi")
        self._client: Client | None = None

    async def __aenter__(self) -> AsyncClient:
        self._client = await asyncio.get_running_loop().run_in_executor(self._thread, Client)
        return self

    async def __aexit__(self, kind: type[BaseException] | None, value: BaseException | None,
                        traceback: TracebackType | None) -> None:
        client, self._client = self._client, None
        if client is not None:
            await asyncio.get_running_loop().run_in_executor(self._thread, client.close)
        self._thread.shutdown(wait=False)

    async def run(self, method: Callable[..., _T], /, *args: Any, **parameters: Any) -> _T:
        """Calls a method of Client with these parameters."""
        client = self._client
        if client is None:
            raise Error("the client is closed")
        return await asyncio.get_running_loop().run_in_executor(
            self._thread, lambda: method(client, *args, **parameters))

    async def events(self, start: int = 0, *, follow: float | None = None) -> AsyncIterator[StoredEvent]:
        """The same as Client.events; other calls go on between two pages."""
        while True:
            for stored in await self.run(_events_once, start):
                yield stored
                start = stored.number + 1
            if follow is None:
                return
            await asyncio.sleep(follow)


def _events_once(client: Client, start: int) -> list[StoredEvent]:
    return list(client.events(start))
