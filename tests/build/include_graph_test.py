#!/usr/bin/env python3
"""Folders include only the folders that docs/architecture.md allows them, and no files in circles.

The page has a table: a folder, and the folders that its files may include besides their own. An
edge that the table does not have, one that the table has and no file uses, and a folder without a
row are complaints; so are two headers that include each other, however long the way around, and a
source whose declarations stand nowhere: one without a header of its own name.

usage: include_graph_test.py TREE
       include_graph_test.py --edges TREE        prints what includes what, to compare by eye
       include_graph_test.py --self-check COMPILER [OPTION]...
"""

import fnmatch
import os
import re
import subprocess
import sys

import readback

PAGE = "docs/architecture.md"
SOURCES = (".h", ".c", ".cpp")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
ROW = re.compile(r"^\| `([\w/]+)/` \| (.*) \|$", re.MULTILINE)
FOLDER = re.compile(r"`([\w/]+)/`")
# Sources without a header of their own: programs, and what implements a header of another name.
MAIN = re.compile(r"^(int main\(|extern \"C\" int LLVMFuzzerTestOneInput)", re.MULTILINE)


def rules_of(page):
    """The table as {folder: allowed folders}, and patterns of the sources that need no header."""
    rules = {folder: set(FOLDER.findall(cell)) for folder, cell in ROW.findall(page)}
    exempt = re.search(r"<!-- sources without a header of their own:(.*?)-->", page, re.DOTALL)
    return rules, set(exempt.group(1).split()) if exempt else set()


def folder_of(path, folders):
    """The longest folder of the table that holds the file; None when none does."""
    folder = os.path.dirname(path)
    while folder and folder not in folders:
        folder = os.path.dirname(folder)
    return folder or None


def includes_of(files):
    """{file: files of the tree that it includes}; what is built or the system's is left out."""
    graph = {}
    for path, text in files.items():
        graph[path] = set()
        for name in INCLUDE.findall(text):
            beside = os.path.normpath(os.path.join(os.path.dirname(path), name))
            if beside in files:
                graph[path].add(beside)
                continue
            found = [each for each in files if each == name or each.endswith("/" + name)]
            # Of headers of one name the nearest is meant: the one in the same top folder.
            near = [each for each in found if each.split("/")[0] == path.split("/")[0]]
            graph[path].update((near or found)[:1])
    return graph


def circles(graph):
    """Every circle of includes once, as the list of its files."""
    found, done = [], set()

    def visit(path, way):
        if path in way:
            circle = way[way.index(path) :]
            if sorted(circle) not in [sorted(each) for each in found]:
                found.append(circle)
            return
        if path in done:
            return
        for other in sorted(graph[path]):
            visit(other, way + [path])
        done.add(path)

    for path in sorted(graph):
        visit(path, [])
    return found


def edges_of(graph, folders):
    """{(folder, other folder): one include that makes the edge}."""
    edges = {}
    for path, others in graph.items():
        for other in sorted(others):
            pair = folder_of(path, folders), folder_of(other, folders)
            if None not in pair and pair[0] != pair[1]:
                edges.setdefault(pair, f"{path} includes {other}")
    return edges


def without_header(files, exempt):
    for path, text in sorted(files.items()):
        stem, ending = os.path.splitext(path)
        if ending == ".h" or any(fnmatch.fnmatch(path, each) for each in exempt):
            continue
        if stem + ".h" not in files and not MAIN.search(text):
            yield path


def complaints_about(files, page):
    rules, exempt = rules_of(page)
    if not rules:
        return [f"{PAGE} has no table of folders"]
    graph = includes_of(files)
    complaints = [
        f"{os.path.dirname(path)}/ has no row in {PAGE} ({path})"
        for path in sorted(files)
        if folder_of(path, rules) is None
    ]
    edges = edges_of(graph, rules)
    for (folder, other), example in sorted(edges.items()):
        if other not in rules[folder]:
            complaints.append(f"{folder}/ may not include {other}/: {example}")
    for folder, allowed in sorted(rules.items()):
        if not any(folder_of(path, rules) == folder for path in files):
            complaints.append(f"{PAGE} has a row for {folder}/, which holds no source")
        for other in sorted(allowed):
            if (folder, other) not in edges:
                complaints.append(f"{PAGE} allows {folder}/ to include {other}/, and nothing does")
    complaints += ["a circle of includes: " + " -> ".join(each) for each in circles(graph)]
    complaints += [f"{path} has no header of its own" for path in without_header(files, exempt)]
    complaints += [f"{path} needs no header, says {PAGE}; there is no such source"
                   for path in sorted(exempt) if not fnmatch.filter(files, path)]
    return complaints


def read_tree(tree):
    listed = subprocess.run(
        ["git", "-C", tree, "ls-files", "-z"], check=True, stdout=subprocess.PIPE
    ).stdout.decode().split("\0")
    files = {}
    for path in listed:
        full = os.path.join(tree, path)
        if path.endswith(SOURCES) and os.path.exists(full):
            with open(full, encoding="utf-8") as file:
                files[path] = file.read()
    with open(os.path.join(tree, PAGE), encoding="utf-8") as file:
        return files, file.read()


def read_back(arguments):
    return complaints_about(*read_tree(arguments[0]))


def self_check(_workshop):
    page = "| `low/` | – |\n| `high/` | `low/` |\n"
    sound = {
        "low/one.h": "", "low/one.cpp": '#include "one.h"\n',
        "high/two.h": '#include "one.h"\n', "high/two.cpp": '#include "two.h"\n',
    }

    def complaints(changes, text=page):
        return complaints_about({**sound, **changes}, text)

    yield "a tree that keeps the rule", complaints({}), None
    yield (
        "an include upwards", complaints({"low/one.cpp": '#include "two.h"\n#include "one.h"\n'}),
        "low/ may not include high/: low/one.cpp includes high/two.h",
    )
    yield (
        "a rule that nobody uses", complaints({"high/two.h": ""}),
        "allows high/ to include low/, and nothing does",
    )
    yield "a folder without a row", complaints({"other/x.h": ""}), "other/ has no row"
    yield (
        "a row without a folder", complaints({}, page + "| `gone/` | – |\n"),
        "a row for gone/, which holds no source",
    )
    yield (
        "a circle", complaints({"low/one.h": '#include "three.h"\n', "low/three.h": '#include "one.h"\n'}),
        "a circle of includes: low/one.h -> low/three.h",
    )
    yield "a source without a header", complaints({"low/four.cpp": "int four;\n"}), "low/four.cpp has no header"
    yield "a program", complaints({"low/main.cpp": "int main() {}\n"}), None
    yield (
        "an exemption", complaints({"low/four.cpp": ""}, page + "<!-- sources without a header of their own: low/four.cpp -->"),
        None,
    )
    yield (
        "an exemption of nothing", complaints({}, page + "<!-- sources without a header of their own: low/five.cpp -->"),
        "low/five.cpp needs no header",
    )
    yield "no table", complaints({}, ""), "has no table of folders"


if __name__ == "__main__":
    if sys.argv[1:2] == ["--edges"]:
        sources, text = read_tree(sys.argv[2])
        for (one, two), why in sorted(edges_of(includes_of(sources), rules_of(text)[0]).items()):
            print(f"{one} -> {two}   ({why})")
    else:
        readback.main(read_back, self_check)
