#!/usr/bin/env python3
"""A libhxraid.so is what callers of hxraid.h expect, and can be loaded into any process.

It exports the functions that the headers declare, all of them and nothing else, under a soname
without a version. It needs the C library and SQLite alone, and nothing runs when it is loaded or
unloaded but what the C++ runtime inside it does for itself.

usage: hxraid_library_test.py LIBRARY HEADER...
       hxraid_library_test.py --self-check COMPILER [OPTION]...
"""

import re

import readback

SONAME = "libhxraid.so"
ALLOWED = re.compile(
    r"lib(c|m)\.so\.6$|libsqlite3\.so\.0$|lib(blkid|fdisk|uuid)\.so\.1$|ld-linux.*\.so\.\d+$"
)
# What the static C++ runtime runs for itself (its sources end in .cc, ours in .cpp): its locales and
# its reserve of memory for exceptions. It registers its own handler, too.
RUNTIME = re.compile(r"_GLOBAL__sub_I_\w+\.cc$")
RUNTIME_HANDLER = "__cxa_atexit"
DECLARATION = re.compile(r"^(?:\[\[.*?\]\] )?\w[\w ]*[ *]+((?:HX|hx)_\w+)\([^;{}]*\);", re.MULTILINE)
# What gives the runtime's reserve back (controllers/library/unload.cpp).
UNLOADING = "_ZN12_GLOBAL__N_115GiveBackReserveEv"
EXIT_HANDLERS = {"atexit", "on_exit", "__cxa_atexit", "__cxa_thread_atexit_impl"}


def bracketed(value):
    return value[value.index("[") + 1 : value.rindex("]")]


def complaints_about(library, *headers):
    declared = []
    for header in headers:
        with open(header, encoding="ascii") as file:
            # Comments name functions, too.
            text = re.sub(r"/\*.*?\*/", "", file.read(), flags=re.DOTALL)
            declared += DECLARATION.findall(text)
    complaints = readback.export_complaints(library, declared, "declared")
    if not declared:
        complaints.append("the header declares nothing")

    entries = readback.dynamic_entries(library)
    soname = [bracketed(value) for tag, value in entries if tag == "SONAME"]
    if soname != [SONAME]:
        complaints.append(f"the soname is {soname}")
    for tag, value in entries:
        if tag == "NEEDED" and not ALLOWED.match(bracketed(value)):
            complaints.append(f"{bracketed(value)} is needed")

    # The compiler's start-up code puts one entry of its own into each list; any other is ours.
    names = list(readback.symbols(library))
    runtime = [name for name in names if RUNTIME.match(name)]
    sizes = readback.section_sizes(library)
    pointer = 8 if "ELF64" in readback.run("readelf", "-h", library) else 4
    for section in (".init_array", ".fini_array"):
        entries_there = sizes.get(section, 0) // pointer
        allowed = 1 + (len(runtime) if section == ".init_array" else names.count(UNLOADING))
        if entries_there > allowed:
            complaints.append(f"{section} has {entries_there} entries")
    for name, _ in readback.dynamic_symbols(library, "undefined"):
        if name in EXIT_HANDLERS and not (runtime and name == RUNTIME_HANDLER):
            complaints.append(f"{name} is called")
    return complaints


def self_check(workshop):
    header = workshop.write(
        "header.h",
        "/* Not int HX_Comment(void); but: */\n"
        "unsigned char HX_Alpha(void);\n"
        "const char* HX_Beta(int first,\n                    int second);\n",
    )
    both = "void HX_Alpha(void) {} void HX_Beta(void) {}"
    stranger = workshop.library("void other(void) {}", "-Wl,-soname,libstdc++.so.6")
    # The compiler may put its own libraries in by itself: here only what is named is wanted.
    base = ("-Wl,-soname,libhxraid.so", "-nodefaultlibs", "-Wl,--no-as-needed", "-lc")

    def complaints(source, *options):
        return complaints_about(workshop.library(source, *base, *options), header)

    yield "the declared functions", complaints(both), None
    yield (
        "one function short",
        complaints("void HX_Alpha(void) {}"),
        "HX_Beta is declared and not exported",
    )
    yield (
        "one function more",
        complaints(both + "void HX_Gamma(void) {}"),
        "HX_Gamma is exported and not declared",
    )
    yield (
        "a helper that is not hidden",
        complaints(both + "void helper(void) {}"),
        "helper is exported and not declared",
    )
    yield (
        "a variable by a function's name",
        complaints("void HX_Alpha(void) {} int HX_Beta = 1;"),
        "HX_Beta is exported as D, not as a function",
    )
    yield (
        "a header without functions",
        complaints_about(workshop.library("", *base), workshop.write("empty.h", "typedef int HX_U8;\n")),
        "the header declares nothing",
    )
    yield (
        "a soname with a version",
        complaints(both, "-Wl,-soname,libhxraid.so.1"),
        "the soname is ['libhxraid.so.1']",
    )
    yield "a C++ runtime", complaints(both, stranger), "libstdc++.so.6 is needed"
    yield (
        "a constructor",
        complaints(both + "__attribute__((constructor)) static void at_load(void) {}"),
        ".init_array has 2 entries",
    )
    yield (
        "a destructor",
        complaints(both + "__attribute__((destructor)) static void at_exit(void) {}"),
        ".fini_array has 2 entries",
    )
    yield (
        "an exit handler",
        complaints(
            "int on_exit(void (*)(int, void *), void *);"
            "void HX_Alpha(void) { on_exit(0, 0); } void HX_Beta(void) {}"
        ),
        "on_exit is called",
    )


if __name__ == "__main__":
    readback.main(lambda arguments: complaints_about(*arguments), self_check)
