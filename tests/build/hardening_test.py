#!/usr/bin/env python3
"""The built files carry the marks of the hardening they are meant to be built with.

usage: hardening_test.py [--fortified] FILE...
       hardening_test.py --options COMMANDS FOLDER... -- OPTION...
       hardening_test.py --self-check COMPILER [OPTION]...

--fortified  the files must call the checked forms of the C library's functions, and, on x86, what they
             export must begin where an indirect call may arrive, too
--options    every source of the folders is compiled with the options, by the compile commands that
             CMake has written: for what leaves no mark in a file
"""

import json
import os
import platform
import shlex

import readback


def complaints_about(path, fortified):
    complaints = []
    segments = readback.program_headers(path)
    entries = readback.dynamic_entries(path)
    tags = dict(entries)
    imports = [name for name, _ in readback.dynamic_symbols(path, "undefined")]

    if "GNU_RELRO" not in segments:
        complaints.append("no segment is read-only after relocation")
    flags = tags.get("FLAGS", "").split() + tags.get("FLAGS_1", "").split()
    if "BIND_NOW" not in flags and "NOW" not in flags and "BIND_NOW" not in tags:
        complaints.append("functions are bound lazily")
    if "GNU_STACK" not in segments:
        complaints.append("nothing says that the stack is not executable")
    elif "E" in segments["GNU_STACK"]:
        complaints.append("the stack is executable")
    if "TEXTREL" in tags or "TEXTREL" in flags:
        complaints.append("the code is written to by the loader")
    if "__stack_chk_fail" not in imports:
        complaints.append("no function has a stack protector")
    if fortified and not any(
        name.startswith("__") and name.endswith("_chk") for name in imports
    ):
        complaints.append("no function of the C library is called in its checked form")
    if fortified and platform.machine() in ("x86_64", "i686"):
        complaints += [f"{name} has no landing pad" for name in without_landing_pad(path)]
    if not any("Build ID:" in line for line in readback.run("readelf", "-nW", path).splitlines()):
        complaints.append("no build id")
    if is_program(segments) and "PIE" not in flags:
        complaints.append("the program is not position-independent")
    return [f"{path}: {complaint}" for complaint in complaints]


def without_landing_pad(path):
    """The exported functions that do not begin with endbr."""
    exported = {name for name, kind in readback.dynamic_symbols(path, "defined") if kind == "T"}
    lines = readback.run("objdump", "-d", "--no-show-raw-insn", path).splitlines()
    return sorted(
        name
        for name, first in (
            (line.split("<", 1)[1].rstrip(">:"), lines[number + 1])
            for number, line in enumerate(lines[:-1])
            if line.endswith(">:")
        )
        if name in exported and "endbr" not in first
    )


def is_program(segments):
    return "INTERP" in segments


def missing_options(commands, folders, options):
    """Of every source in the folders, which of the options it is compiled without."""
    with open(commands, encoding="utf-8") as file:
        entries = json.load(file)
    complaints = []
    seen = 0
    for entry in entries:
        path = os.path.realpath(os.path.join(entry["directory"], entry["file"]))
        if not any(path.startswith(os.path.realpath(folder) + os.sep) for folder in folders):
            continue
        seen += 1
        given = shlex.split(entry["command"])
        complaints += [f"{path}: without {option}" for option in options if option not in given]
    return complaints or ([] if seen else ["no source to look at"])


def read_back(arguments):
    if arguments[:1] == ["--options"]:
        end = arguments.index("--")
        return missing_options(arguments[1], arguments[2:end], arguments[end + 1 :])
    fortified = "--fortified" in arguments
    files = [argument for argument in arguments if argument != "--fortified"]
    if not files:
        return ["no file to read"]
    return [complaint for path in files for complaint in complaints_about(path, fortified)]


GOOD_OPTIONS = (
    "-O2",
    "-U_FORTIFY_SOURCE",
    "-D_FORTIFY_SOURCE=2",
    "-fstack-protector-strong",
    *(["-fcf-protection=full"] if platform.machine() in ("x86_64", "i686") else []),
    "-Wl,-z,relro,-z,now,-z,noexecstack,--build-id",
)
SOURCE = """
#include <stdio.h>
#include <string.h>
void fill(const char *source) { char text[64]; strcpy(text, source); puts(text); }
"""
TEXT_RELOCATION = """
#ifdef __LP64__
__asm__(".text\\n.quad here\\nhere:\\n.section .note.GNU-stack,\\"\\",@progbits\\n.text\\n");
#else
__asm__(".text\\n.long here\\nhere:\\n.section .note.GNU-stack,\\"\\",@progbits\\n.text\\n");
#endif
"""
MAIN = "\nint main(int argc, char **argv) { if (argc > 1) fill(argv[1]); return 0; }\n"


def self_check(workshop):
    def library(*options, source=SOURCE):
        return complaints_about(workshop.library(source, *GOOD_OPTIONS, *options), True)

    def program(*options):
        return complaints_about(
            workshop.build("program", SOURCE + MAIN, *GOOD_OPTIONS, *options), True
        )

    yield "a hardened library", library(), None
    yield "no RELRO", library("-Wl,-z,norelro"), "no segment is read-only"
    yield "lazy binding", library("-Wl,-z,lazy"), "bound lazily"
    yield "an executable stack", library("-Wl,-z,execstack"), "the stack is executable"
    yield "no stack protector", library("-fno-stack-protector"), "has a stack protector"
    yield "not fortified", library("-U_FORTIFY_SOURCE"), "checked form"
    yield (
        "a relocation in the code",
        library("-Wl,-z,notext", source=SOURCE + TEXT_RELOCATION),
        "written to by the loader",
    )
    if platform.machine() in ("x86_64", "i686"):
        yield "no landing pads", library("-fcf-protection=none"), "fill has no landing pad"
    yield "no build id", library("-Wl,--build-id=none"), "no build id"

    entry = {"directory": workshop.directory, "file": "a/x.c", "command": "cc -O2 -Da=\\\"b\\ c\\\" x.c"}
    commands = workshop.write("commands.json", json.dumps([entry]))
    folder = os.path.join(workshop.directory, "a")

    def options(*wanted, among=folder):
        return missing_options(commands, [among], wanted)

    yield "every option", options("-O2", '-Da="b c"'), None
    yield "an option less", options("-O2", "-O3"), "without -O3"
    yield "an option that only begins so", options("-O"), "without -O"
    yield "another folder", options("-O2", among=folder + "b"), "no source to look at"
    yield "a hardened program", program("-fPIE", "-pie"), None
    yield "a program at a fixed address", program("-fno-pie", "-no-pie"), "position-independent"


if __name__ == "__main__":
    readback.main(read_back, self_check)
