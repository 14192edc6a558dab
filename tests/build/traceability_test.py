#!/usr/bin/env python3
"""Every promise that the documents make has a test: tests/traceability.md says which.

A quoted sentence there stands in its document, word for word but for line breaks, and the tests under it
exist. The other way round, every sentence of the documents that promise something is quoted, so that a
new one has its test, or says why it needs none.

usage: traceability_test.py TREE
       traceability_test.py --self-check COMPILER [OPTION]...
       traceability_test.py --missing TREE    the sentences that are not quoted yet
"""

import pathlib
import re
import sys

import readback

LIST = "tests/traceability.md"
THREATS = "docs/reliability.md"  # its first table names tests, too

# The documents whose every sentence is quoted, and where each ends that is not read as a whole.
DOCUMENTS = {
    "backend/vexorapi/vexorapi.h": None,
    "backend/hxraid/hxraid.h": None,
    "docs/event-store.md": None,
    "docs/xml-api.md": "## The controller's functions",
}

COMMENT = re.compile(r"/\*+(.*?)\*/", re.DOTALL)
# Behind a full stop and before a capital, a name in backticks or a bracket.
END = re.compile(r"(?<=[^.])\.\s+(?=[A-Z`\"(*<])")
TEST = r"TEST(?:_F|_P)?\(\s*{suite}\s*,\s*{name}\s*\)"


def in_one_line(text):
    return " ".join(text.split())


def paragraphs_of_header(text):
    for comment in COMMENT.finditer(text):
        line = text[text.rfind("\n", 0, comment.start()) + 1:comment.start()]
        if line.strip():
            continue  # beside a field or a value: what it is
        lines = [re.sub(r"^\s*\*+ ?", "", line) for line in comment[1].splitlines()]
        if not in_one_line(comment[1]).startswith("---"):
            yield from re.split(r"\n\s*\n|\n\s*-\s", "\n".join(lines))


def paragraphs_of_page(text):
    text = re.sub(r"<!--.*?-->", "", text, flags=re.DOTALL)
    text = re.sub(r"^```.*?^```$", "\n", text, flags=re.DOTALL | re.MULTILINE)
    text = re.sub(r"^(\||#).*$", "\n", text, flags=re.MULTILINE)
    yield from re.split(r"\n\s*\n|\n\s*(?:-|\d+\.)\s", "\n" + text)


def sentences_of(name, text, end=None):
    if end is not None:
        text = text[:text.index(end)]
    paragraphs = paragraphs_of_header if name.endswith(".h") else paragraphs_of_page
    for paragraph in paragraphs(text):
        # An item's mark, where a blank line stands before it.
        paragraph = re.sub(r"^\s*(?:-|\d+\.)\s", "", paragraph)
        for sentence in END.split(in_one_line(paragraph)):
            sentence = sentence.strip().removesuffix(".").strip()
            if re.search(r"\w", sentence):
                yield sentence


def read_list(text):
    """(document, quoted sentence, its items) of each entry."""
    document = None
    entries = []
    for block in re.split(r"\n\s*\n", text):
        lines = block.strip().splitlines()
        if lines and lines[0].startswith("## "):
            document = lines[0][3:].strip()
        elif lines and lines[0].startswith(">"):
            quoted = [line[1:] for line in lines if line.startswith(">")]
            items = re.split(r"^- ", "\n".join(line for line in lines if not line.startswith(">")),
                             flags=re.MULTILINE)[1:]
            for sentence in in_one_line(" ".join(quoted)).split(" / "):
                entries.append((document, sentence.strip().removesuffix("."),
                                [in_one_line(item) for item in items]))
    return entries


def complaint_about_item(tree, item):
    """What is wrong with "path: Suite.Name, Name, ..." or with "none: reason"; None if nothing."""
    path, colon, names = item.partition(":")
    if path == "none":
        return None if names.strip() else "gives no reason"
    if not colon or not (tree / "tests" / path).is_file():
        return f"names no file of tests/: {path}"
    text = (tree / "tests" / path).read_text()
    suite = ""
    for name in names.split(","):
        name = name.strip()
        if path.endswith((".py", ".sh")):
            if name not in text:
                return f"names what {path} has not: {name}"
            continue
        if "." in name:
            suite, name = name.split(".", 1)
        if not re.search(TEST.format(suite=re.escape(suite), name=re.escape(name)), text):
            return f"names a test that {path} has not: {suite}.{name}"
    return None


def complaints_about_items(tree, where, items):
    if not items:
        return [f"{where} has no test"]
    wrong = [complaint_about_item(tree, item) for item in items]
    return [f"{where} {each}" for each in wrong if each]


def complaints_about(tree, documents):
    path = tree / LIST
    entries = read_list(path.read_text()) if path.is_file() else []
    complaints = []
    quoted = {}
    for document, sentence, items in entries:
        where = f"{LIST}: {document}: \"{sentence[:70]}\""
        quoted.setdefault(document, set()).add(sentence)
        complaints += complaints_about_items(tree, where, items)
    for document, end in documents.items():
        stands = list(sentences_of(document, (tree / document).read_text(), end))
        for sentence in stands:
            if sentence not in quoted.get(document, ()):
                complaints.append(f"{document}: nothing tells how this is tested: {sentence}")
        for sentence in sorted(quoted.get(document, set()) - set(stands)):
            complaints.append(f"{LIST}: {document} does not say: {sentence}")
    for document in sorted(set(quoted) - set(documents), key=str):
        complaints.append(f"{LIST}: {document} is none of the documents")
    return complaints


def complaints_about_table(tree, name, text):
    """About the tests that the first table of a page names, one row a threat."""
    complaints = []
    rows = re.findall(r"^\|(?! ?from outside|-)(.*)\|$", text.split("## What is not protected")[0],
                      flags=re.MULTILINE)
    for row in rows:
        items = re.findall(r"`([^`]+: [^`]+)`", row)
        where = f"{name}: {row.split('|')[0].strip()}"
        complaints += complaints_about_items(tree, where, items)
    return complaints if rows else [f"{name} has no table of tests"]


def read_back(arguments):
    tree = pathlib.Path(arguments[0])
    return complaints_about(tree, DOCUMENTS) + complaints_about_table(
        tree, THREATS, (tree / THREATS).read_text())


def self_check(workshop):
    tree = pathlib.Path(workshop.directory)
    (tree / "tests").mkdir()
    (tree / "docs").mkdir()
    (tree / "tests/a_test.cpp").write_text("TEST(Suite, Name) {}\nTEST_P(Suite, Other) {}\n")
    (tree / "api.h").write_text("/** It holds.\n *  It stands. */\nint f(void); /* a field. */\n")
    (tree / "docs/page.md").write_text("# Page\n\nIt is\nread. `f` is, too.\n\n| no | row |\n")

    documents = {"api.h": None, "docs/page.md": None}
    whole = ("## api.h\n\n> It holds\n- a_test.cpp: Suite.Name, Other\n\n> It stands\n- none: why\n\n"
             "## docs/page.md\n\n> It is read / `f` is, too\n- a_test.cpp: Suite.Other\n")

    def complaints(text):
        (tree / LIST).write_text(text)
        return complaints_about(tree, documents)

    yield "a whole list", complaints(whole), None
    yield "a sentence that is missing", complaints(whole.replace("> It holds\n", "")), "It holds"
    yield ("a sentence that stands there no more", complaints(whole.replace("is read", "was read")),
           "docs/page.md does not say: It was read")
    yield "a test that is gone", complaints(whole.replace("Suite.Name", "Suite.Gone")), "Suite.Gone"
    yield ("a test of another suite", complaints(whole.replace("Suite.Other", "Else.Other")),
           "has not: Else.Other")
    yield "a file that is gone", complaints(whole.replace("a_test", "b_test")), "names no file"
    yield "no test", complaints(whole.replace("- none: why\n", "")), "has no test"
    yield "no reason", complaints(whole.replace("none: why", "none: ")), "gives no reason"
    def of_row(row):
        page = f"| from outside | tests |\n|---|---|\n{row}\n\n## What is not protected\n"
        return complaints_about_table(tree, "page", page)

    yield "a threat with its test", of_row("| command | `a_test.cpp: Suite.Name` |"), None
    yield "a threat without a test", of_row("| command | none |"), "page: command has no test"
    yield ("a threat whose test is gone", of_row("| command | `a_test.cpp: Suite.Gone` |"),
           "page: command names a test")
    yield "a document that is none", complaints(whole + "\n## x.h\n\n> It is\n- none: why\n"), "x.h"


if __name__ == "__main__":
    if sys.argv[1:2] == ["--missing"]:
        for complaint in read_back(sys.argv[2:]):
            print(complaint)
    else:
        readback.main(read_back, self_check)
