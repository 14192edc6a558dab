"""Lets a program that looks at every source of a build folder remember what it has found: scripts/tidy
and scripts/includes.

A source is looked at again when it, its command, one of our headers that it reaches, the program, or
any package of this machine has changed. What is remembered holds for every copy of the tree; it stands
in ~/.cache (XDG_CACHE_HOME is followed).
"""

import hashlib
import json
import os
import pathlib
import re
import subprocess

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(rb'^[ \t]*#[ \t]*include[ \t]*["<]([^">]+)[">]', re.M)


def cache_folder(name):
    home = os.environ.get("XDG_CACHE_HOME") or os.path.expanduser("~/.cache")
    return pathlib.Path(home) / f"vexorapi-{name}"


def surroundings(checker, *files):
    """What every source depends on besides our own files: the checker, the files that steer it, and the
    headers of the system, for which the list of the installed packages with their versions stands.
    None where there is no such list: nothing is remembered then."""
    packages = pathlib.Path("/var/lib/dpkg/status")
    if not packages.exists():
        return None
    version = subprocess.run([checker, "--version"], check=True, stdout=subprocess.PIPE).stdout
    # The host's processor is among what the version says.
    version = re.sub(rb"Host CPU:.*", b"", version)
    parts = [version, packages.read_bytes(), *(pathlib.Path(file).read_bytes() for file in files)]
    return hashlib.sha256(b"\0".join(hashlib.sha256(part).digest() for part in parts)).digest()


class Tree:
    """The files of the tree and of the build folder, as far as sources reach them."""

    def __init__(self, build):
        self.build = build
        self.files = {}  # by path: digest of the content, names that it includes; None when absent

    def look(self, path):
        if path not in self.files:
            try:
                content = pathlib.Path(path).read_bytes()
                names = [name.decode() for name in INCLUDE.findall(content)]
                self.files[path] = (hashlib.sha256(content).digest(), names)
            except OSError:
                self.files[path] = None
        return self.files[path]

    def reach(self, source, folders):
        """A source and all of our headers that it could read, by path as look() tells them. Conditions
        are not looked at, and a name is followed into every folder that has it: a header too many
        costs a check too many."""
        waiting, reached = [str(source)], {}
        while waiting:
            path = waiting.pop()
            if path in reached:
                continue
            reached[path] = self.look(path)
            here = os.path.dirname(path)
            for name in reached[path][1]:
                for folder in (here, *folders):
                    header = os.path.normpath(os.path.join(folder, name))
                    if self.look(header) is not None:
                        waiting.append(header)
        return reached

    def digest(self, source, folders):
        """Of a source and all of our headers that it could read."""
        total = hashlib.sha256()
        for path, (content, _) in sorted(self.reach(source, folders).items()):
            total.update(os.path.relpath(path, ROOT).encode() + b"\0" + content)
        return total.digest()


class Source:
    """One source and its command."""

    def __init__(self, entry):
        self.path = pathlib.Path(entry["file"])
        self.name = os.path.relpath(self.path, ROOT)
        self.folder = entry["directory"]
        self.command = entry["command"]
        self.folders = re.findall(r"-I(\S+)", self.command)

    def key(self, tree, around):
        """The name under which it is remembered what was found."""
        command = self.command.replace(str(tree.build), "BUILD").replace(str(ROOT), "ROOT")
        parts = [around, command.encode(), tree.digest(self.path, self.folders)]
        return hashlib.sha256(b"\0".join(parts)).hexdigest()


def sources_of(build):
    """The tree's sources that the build folder compiles; what is written while building is not ours."""
    with open(build / "compile_commands.json", encoding="utf-8") as file:
        sources = {entry["file"]: Source(entry) for entry in json.load(file)}
    return [source for source in sources.values()
            if ROOT in source.path.parents and build not in source.path.parents]
