"""RAID controllers by way of libvexorapi.

>>> import vexorapi
>>> with vexorapi.Client() as client:
...     for disk in client.every(client.HX_PD_GetHDInfo, AdapterID=0):
...         print(disk.Link.Self.DevID, disk.Model, disk.Size * 512)

Sizes count sectors of 512 bytes. records has the records, functions the functions, errors what can
be raised.
"""

from . import records
from .client import AsyncClient, Client, Group, StoredEvent
from .errors import (
    Declined, DoesNotFit, Error, LibraryMissing, LogonFailed, ParameterError, Refused,
    StoreUnreadable, UnknownFunction, UnknownParameter, Unreadable,
)

__all__ = [
    "AsyncClient", "Client", "Declined", "DoesNotFit", "Error", "Group", "LibraryMissing",
    "LogonFailed", "ParameterError", "Refused", "StoreUnreadable", "StoredEvent", "UnknownFunction",
    "UnknownParameter", "Unreadable", "records",
]
