#!/usr/bin/env python3
"""A library that is loaded, used and unloaded again and again keeps no memory.

usage: unload_test.py LIBRARY...
       unload_test.py --self-check COMPILER [OPTION]...
"""

import _ctypes
import ctypes
import os

import readback

TIMES = 20
KEPT = 4096  # bytes a time, which ctypes itself keeps of every library


class Mallinfo2(ctypes.Structure):
    _fields_ = [(name, ctypes.c_size_t) for name in (
        "arena", "ordblks", "smblks", "hblks", "hblkhd", "usmblks", "fsmblks", "uordblks", "fordblks",
        "keepcost")]


def bytes_in_use():
    libc = ctypes.CDLL("libc.so.6")
    libc.mallinfo2.restype = Mallinfo2
    info = libc.mallinfo2()
    return info.uordblks + info.hblkhd


def load_use_and_unload(path):
    library = ctypes.CDLL(path)
    for name in ("HX_API_Initialize", "HX_Adapter_GetCount", "HX_API_Finalize"):
        getattr(library, name, lambda: None)()
    _ctypes.dlclose(library._handle)


def complaints_about(*libraries):
    os.environ["HXSIM_STATE"] = ":memory:"
    for path in libraries:
        for _ in range(3):  # what is kept once, by the C library and SQLite
            load_use_and_unload(path)
        before = bytes_in_use()
        for _ in range(TIMES):
            load_use_and_unload(path)
        kept = (bytes_in_use() - before) // TIMES
        if kept > KEPT:
            yield f"{os.path.basename(path)} keeps {kept} bytes each time that it is unloaded"


def self_check(workshop):
    def complaints(source):
        return list(complaints_about(workshop.library(source)))

    yield "a library that keeps nothing", complaints("int nothing;"), None
    yield ("a library that keeps a block",
           complaints("#include <stdlib.h>\nvoid* kept;\n"
                      "__attribute__((constructor)) static void Take(void) { kept = malloc(73920); }"),
           " bytes each time that it is unloaded")


if __name__ == "__main__":
    readback.main(lambda arguments: list(complaints_about(*arguments)), self_check)
