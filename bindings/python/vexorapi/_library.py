"""The library in this process: loaded and initialised once, called by one thread at a time."""

from __future__ import annotations

import atexit
import ctypes
import os
import threading

from .errors import Declined, DoesNotFit, Error, LibraryMissing

MAX_RESULT = 524288  # VEXORAPI_MAX_RESULT: holds every result

# The library holds no lock and keeps its state for the whole process, so there is one lock for all
# clients. It is held across a fork, so that no call is cut in two.
_lock = threading.Lock()
_library: ctypes.CDLL | None = None
_buffer: ctypes.Array[ctypes.c_char] | None = None
_clients = 0
_is_initialised = False


def _load() -> ctypes.CDLL:
    global _library, _buffer
    if _library is None:
        try:
            library = ctypes.CDLL("libvexorapi.so.1")
        except OSError as error:
            raise LibraryMissing(f"libvexorapi cannot be loaded: {error}") from error
        library.vexorApi.argtypes = [ctypes.c_char_p, ctypes.c_void_p, ctypes.c_uint32]
        library.vexorApi.restype = ctypes.c_int
        _buffer = ctypes.create_string_buffer(MAX_RESULT)
        _library = library
    return _library


def _start() -> None:
    global _is_initialised
    library = _load()
    if not _is_initialised:
        library.vexorApiInit()
        _is_initialised = True


def _stop() -> None:
    global _is_initialised
    if _is_initialised and _library is not None:
        _is_initialised = False
        _library.vexorApiShutdown()


def enter() -> None:
    """Counts a client; the first one initialises the library."""
    global _clients
    with _lock:
        _start()
        _clients += 1


def leave() -> None:
    """Takes a client off; the last one shuts the library down."""
    global _clients
    with _lock:
        _clients -= 1
        if _clients == 0:
            _stop()


def send(command: bytes) -> bytes:
    """Carries out one command and returns the result as the library wrote it."""
    if b"\0" in command:
        raise Declined("a command holds no NUL byte")
    with _lock:
        if _clients == 0:
            raise Error("the client is closed")
        # After a fork this is the child's first call.
        _start()
        assert _library is not None and _buffer is not None
        taken = _library.vexorApi(command, _buffer, MAX_RESULT)
        result = _buffer.value if taken == 1 else b""
    if taken != 1:
        raise Declined("the library takes no such command")
    if not result:
        raise DoesNotFit("the result does not fit, or there was no memory for it")
    return result


def _after_fork_in_child() -> None:
    # The controller library may not have survived the fork: it is initialised anew by the first call.
    global _is_initialised
    _is_initialised = False
    _lock.release()


os.register_at_fork(before=_lock.acquire, after_in_parent=_lock.release,
                    after_in_child=_after_fork_in_child)


@atexit.register
def _at_exit() -> None:
    # A client that nobody closed; a thread that is still in a call keeps its library.
    if _lock.acquire(blocking=False):
        try:
            _stop()
        finally:
            _lock.release()
