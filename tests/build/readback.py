"""What the tests that read built files share: the readers, and the frame of a test program.

A test program is called with the files to read, and complains about each of them. Called with
--self-check and the compiler's command it makes small objects that break one rule each, and shows
that every rule is noticed: a check that cannot fail proves nothing.
"""

import os
import subprocess
import sys
import tempfile


def run(*command):
    """The output of a command that must succeed, in the C locale."""
    environment = dict(os.environ, LC_ALL="C")
    return subprocess.run(
        command, check=True, stdout=subprocess.PIPE, text=True, env=environment
    ).stdout


def dynamic_entries(path):
    """The dynamic section as (tag, value) pairs, e.g. ("NEEDED", "Shared library: [libc.so.6]")."""
    entries = []
    for line in run("readelf", "-dW", path).splitlines():
        words = line.split(None, 2)
        if len(words) >= 2 and words[0].startswith("0x"):
            entries.append((words[1].strip("()"), words[2] if len(words) > 2 else ""))
    return entries


def program_headers(path):
    """The flags of each program header by its type, e.g. {"GNU_STACK": "RW "}."""
    headers = {}
    for line in run("readelf", "-lW", path).splitlines():
        words = line.split()
        if len(words) >= 7 and words[1].startswith("0x"):
            headers[words[0]] = "".join(words[6:-1])
    return headers


def section_sizes(path):
    """The size in bytes of every section by its name."""
    sizes = {}
    for line in run("readelf", "-SW", path).splitlines():
        if "]" in line:
            words = line.split("]", 1)[1].split()
            if len(words) >= 6 and words[0].startswith("."):
                sizes[words[0]] = int(words[4], 16)
    return sizes


def dynamic_symbols(path, which):
    """The (name, type letter) of the dynamic symbols; which is "defined" or "undefined"."""
    symbols = []
    for line in run("nm", "-D", "--format=posix", f"--{which}-only", path).splitlines():
        words = line.split()
        symbols.append((words[0].split("@", 1)[0], words[1]))
    return symbols


def exported_versions(path):
    """The (name, version) of the exported symbols; the version is empty where there is none."""
    lines = run("nm", "-D", "--format=posix", "--defined-only", path).splitlines()
    return [tuple(line.split()[0].replace("@@", "@").partition("@")[::2]) for line in lines]


def export_complaints(library, functions, are):
    """Exports that are not exactly these functions, which `are` "listed" or "declared"."""
    exported = dict(dynamic_symbols(library, "defined"))
    complaints = [f"{name} is {are} and not exported" for name in functions if name not in exported]
    for name, kind in exported.items():
        if name not in functions:
            complaints.append(f"{name} is exported and not {are}")
        elif kind != "T":
            complaints.append(f"{name} is exported as {kind}, not as a function")
    return complaints


def symbols(path):
    """The names of all symbols, local ones too."""
    lines = run("nm", "--format=posix", path).splitlines()
    return [line.split()[0] for line in lines if line]


class Workshop:
    """Builds small objects for a self-check with the compiler that built the library."""

    def __init__(self, compiler, directory):
        self.compiler = compiler
        self.directory = directory
        self.count = 0

    def build(self, name, source, *options):
        """Compiles and links one C source with those options; the path of the result."""
        self.count += 1
        path = os.path.join(self.directory, f"{self.count}{name}")
        # The source is C whatever the compiler; the options may name libraries to link.
        command = [*self.compiler, "-o", path, "-x", "c", "-", "-x", "none", *options]
        subprocess.run(command, check=True, input=source, text=True)
        return path

    def library(self, source, *options):
        """A shared library of one C source; the path of it."""
        return self.build("lib.so", source, "-shared", "-fPIC", *options)

    def write(self, name, text):
        """A file with that text; the path of it."""
        path = os.path.join(self.directory, name)
        with open(path, "w", encoding="ascii") as file:
            file.write(text)
        return path


def main(read_back, self_check):
    """Runs read_back(arguments) or, for --self-check, self_check(workshop).

    read_back returns its complaints. self_check returns (what, complaints, expected) triples: the
    complaints made of something, and a text that must be part of one of them, or None where there
    must be no complaint at all.
    """
    if sys.argv[1:2] != ["--self-check"]:
        complaints = read_back(sys.argv[1:])
        for complaint in complaints:
            print(complaint)
        sys.exit(1 if complaints else 0)

    failures = 0
    with tempfile.TemporaryDirectory() as directory:
        for what, complaints, expected in self_check(Workshop(sys.argv[2:], directory)):
            if expected is None:
                right = not complaints
            else:
                right = any(expected in complaint for complaint in complaints)
            print("ok  " if right else "FAIL", what, complaints)
            failures += not right
    sys.exit(1 if failures else 0)
