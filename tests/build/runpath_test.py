#!/usr/bin/env python3
"""Nothing that is built or installed looks for libraries in the current folder.

usage: runpath_test.py FOLDER...
       runpath_test.py --installed CMAKE BUILD FILE=RUNPATH...
       runpath_test.py --self-check COMPILER [OPTION]...

Every ELF file in the folders, and in the folders below them, is read.

--installed  the build tree is installed into a temporary folder, twice, and each FILE there must have
             that path, entry for entry
"""

import os
import tempfile

import readback


def is_elf(path):
    with open(path, "rb") as file:
        return file.read(4) == b"\x7fELF"


def is_linked(path):
    """Whether it is a program or a shared library, and not an object that one is made of."""
    with open(path, "rb") as file:
        return file.read(17)[16:17] in (b"\x02", b"\x03")


def elf_files(folder):
    for parent, _, names in os.walk(folder):
        for name in sorted(names):
            path = os.path.join(parent, name)
            if os.path.isfile(path) and not os.path.islink(path) and is_elf(path):
                if is_linked(path):
                    yield path


def complaints_about(path):
    complaints = []
    for tag, value in readback.dynamic_entries(path):
        if tag not in ("RUNPATH", "RPATH"):
            continue
        # "Library runpath: [$ORIGIN:/lib]"
        folders = value[value.index("[") + 1 : value.rindex("]")].split(":")
        for folder in folders:
            if folder == "":
                complaints.append("an empty entry, which is the current folder")
            elif not folder.startswith(("/", "$ORIGIN/")) and folder != "$ORIGIN":
                complaints.append(f"{folder} is relative to the current folder")
    return [f"{path}: {complaint}" for complaint in complaints]


def run_paths(path):
    return [value for tag, value in readback.dynamic_entries(path) if tag in ("RUNPATH", "RPATH")]


def installed(cmake, build, *expectations):
    complaints = []
    with tempfile.TemporaryDirectory() as prefix:
        for _ in range(2):  # the second time over the files of the first
            readback.run(cmake, "--install", build, "--prefix", prefix)
            for expectation in expectations:
                name, expected = expectation.split("=", 1)
                found = run_paths(os.path.join(prefix, name))
                if len(found) != 1 or not found[0].endswith(f"[{expected}]"):
                    complaints.append(f"{name}: {found} instead of {expected}")
        complaints += read_back([prefix])
    return complaints


def read_back(folders):
    if folders[:1] == ["--installed"]:
        return installed(*folders[1:])
    files = [path for folder in folders for path in elf_files(folder)]
    if not files:
        return ["no file to read"]
    return [complaint for path in files for complaint in complaints_about(path)]


def self_check(workshop):
    source = "int f(void) { return 0; }\n"

    def library(*folders):
        options = [f"-Wl,-rpath,{folder}" for folder in folders]
        return read_back([os.path.dirname(workshop.library(source, *options))])

    def alone(*folders):
        with_others = library(*folders)
        newest = f"{workshop.count}lib.so"
        return [complaint for complaint in with_others if newest in complaint]

    yield "no folder at all", alone(), None
    yield "folders that stay where they are", alone("$ORIGIN", "$ORIGIN/../lib", "/opt/lib"), None
    yield "a colon at the end", alone("$ORIGIN:"), "an empty entry"
    yield "a colon at the beginning", alone(":/opt/lib"), "an empty entry"
    yield "two colons", alone("/opt::/lib"), "an empty entry"
    yield "a relative folder", alone("lib"), "lib is relative"
    yield "the folder itself", alone("."), ". is relative"
    yield "a name that only begins like the origin", alone("$ORIGINAL"), "$ORIGINAL is relative"
    yield "the older kind", alone("$ORIGIN:,--disable-new-dtags"), "an empty entry"
    yield "a folder without files", read_back([]), "no file to read"


if __name__ == "__main__":
    readback.main(read_back, self_check)
