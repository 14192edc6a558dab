#!/usr/bin/env python3
"""The diffs in the guides (docs/adding-a-*.md) apply to the tree as it is.

A guide whose diff does not apply any more tells its reader to change lines that are not there.

usage: guides_test.py TREE
       guides_test.py --self-check COMPILER [OPTION]...
"""

import os
import pathlib
import re
import subprocess

import readback

DIFF = re.compile(r"^```diff\n(.*?)^```$", re.DOTALL | re.MULTILINE)


def complaints_about(tree, guides):
    """guides: {name: text}."""
    complaints = []
    for name, text in guides.items():
        diffs = DIFF.findall(text)
        if not diffs:
            complaints.append(f"{name} has no diff")
        # Without the repository around the tree: a folder below its top would be taken for none.
        environment = dict(os.environ, LC_ALL="C", GIT_DIR=os.devnull)
        for diff in diffs:
            result = subprocess.run(
                ["git", "apply", "--check", "-"], check=False, cwd=tree, env=environment,
                input=diff, text=True, stderr=subprocess.PIPE,
            )
            if result.returncode != 0:
                complaints.append(f"{name}: a diff does not apply: {result.stderr}")
    return complaints


def read_back(arguments):
    docs = pathlib.Path(arguments[0]) / "docs"
    guides = {path.name: path.read_text() for path in docs.glob("adding-a*.md")}
    return complaints_about(arguments[0], guides) if guides else [f"{docs} has no guide"]


def self_check(workshop):
    workshop.write("row.h", "one\ntwo\nthree\n")

    def complaints(*lines):
        diff = "\n".join(("--- a/row.h", "+++ b/row.h", "@@ -1,3 +1,4 @@", *lines))
        return complaints_about(workshop.directory, {"guide": f"Do:\n\n```diff\n{diff}\n```\n"})

    yield "a diff that applies", complaints(" one", "+and a half", " two", " three"), None
    yield (
        "a diff of lines that are not there", complaints(" one", "+and a half", " 2", " three"),
        "guide: a diff does not apply",
    )
    yield "a guide without a diff", complaints_about(workshop.directory, {"guide": "Do it.\n"}), "has no diff"


if __name__ == "__main__":
    readback.main(read_back, self_check)
