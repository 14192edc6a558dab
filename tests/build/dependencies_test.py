#!/usr/bin/env python3
"""The library can be loaded into any process: it brings nothing along but what it is made of.

It needs the controller library, expat, libcrypt and the C library and no C++ runtime; it runs
nothing when it is loaded, leaves nothing behind to run when the process ends, and starts no thread.

usage: dependencies_test.py LIBRARY
       dependencies_test.py --self-check COMPILER [OPTION]...
"""

import re

import readback

SONAME = "libvexorapi.so.1"
CONTROLLER = "libhxraid.so"  # by its soname, so that whichever is found first is taken
ALLOWED = {CONTROLLER, "libexpat.so.1", "libcrypt.so.1", "libc.so.6"}
LOADER = re.compile(r"ld-linux.*\.so\.\d+$")
EXIT_HANDLERS = {
    "atexit",
    "at_quick_exit",
    "on_exit",
    "__cxa_atexit",
    "__cxa_at_quick_exit",
    "__cxa_thread_atexit",
    "__cxa_thread_atexit_impl",
}
THREADS = {"pthread_create", "thrd_create", "clone"}


def bracketed(value):
    return value[value.index("[") + 1 : value.rindex("]")]


def complaints_about(library):
    complaints = []
    entries = readback.dynamic_entries(library)
    needed = [bracketed(value) for tag, value in entries if tag == "NEEDED"]
    soname = [bracketed(value) for tag, value in entries if tag == "SONAME"]

    if soname != [SONAME]:
        complaints.append(f"the soname is {soname}")
    for name in needed:
        if name not in ALLOWED and not LOADER.match(name):
            complaints.append(f"{name} is needed")
    if CONTROLLER not in needed:
        complaints.append(f"{CONTROLLER} is not needed")

    # The compiler's start-up code puts one entry of its own into each list; any other is ours.
    sizes = readback.section_sizes(library)
    pointer = 8 if "ELF64" in readback.run("readelf", "-h", library) else 4
    for section, own in ((".init_array", 1), (".fini_array", 1), (".preinit_array", 0)):
        entries_there = sizes.get(section, 0) // pointer
        if entries_there > own:
            complaints.append(f"{section} has {entries_there} entries")
    for section in (".ctors", ".dtors"):
        if section in sizes:
            complaints.append(f"there is a {section}")

    for name, _ in readback.dynamic_symbols(library, "undefined"):
        if name in EXIT_HANDLERS | THREADS:
            complaints.append(f"{name} is called")
    return complaints


def self_check(workshop):
    soname = f"-Wl,-soname,{SONAME}"
    controller = workshop.library("void hx(void) {}", f"-Wl,-soname,{CONTROLLER}")
    stranger = workshop.library("void other(void) {}", "-Wl,-soname,libstdc++.so.6")
    # The compiler may put its own libraries in by itself: here only what is named is wanted.
    base = (soname, "-nodefaultlibs", "-Wl,--no-as-needed", controller, "-lc")

    def complaints(source, *options):
        return complaints_about(workshop.library(source, *options))

    empty = "void nothing(void) {}"
    at_load = "__attribute__((constructor)) static void at_load(void) {}"
    at_exit = "__attribute__((destructor)) static void at_exit(void) {}"
    handler = "int on_exit(void (*)(int, void *), void *); void f(void) { on_exit(0, 0); }"
    thread = "int thrd_create(void *, int (*)(void *), void *); void f(void) { thrd_create(0, 0, 0); }"
    cxx = "int __cxa_atexit(void (*)(void *), void *, void *); void f(void) { __cxa_atexit(0, 0, 0); }"
    yield "nothing but what is allowed", complaints(empty, *base), None
    yield "a C++ runtime", complaints(empty, *base, stranger), "libstdc++.so.6 is needed"
    yield (
        "another soname",
        complaints(empty, *base, "-Wl,-soname,libvexorapi.so"),
        "the soname is ['libvexorapi.so']",
    )
    yield (
        "no controller library",
        complaints(empty, soname, "-nodefaultlibs", "-lc"),
        "libhxraid.so is not needed",
    )
    yield "a constructor", complaints(at_load, *base), ".init_array has 2 entries"
    yield "a destructor", complaints(at_exit, *base), ".fini_array has 2 entries"
    yield "an exit handler", complaints(handler, *base), "on_exit is called"
    yield "a thread", complaints(thread, *base), "thrd_create is called"
    yield "a static object's destructor", complaints(cxx, *base), "__cxa_atexit is called"


if __name__ == "__main__":
    readback.main(lambda arguments: complaints_about(*arguments), self_check)
