"""Sources that a program looks at several in one run, because most of a run's time goes into the headers
that they share: for scripts/tidy and scripts/includes.
"""

import contextlib
import pathlib
import re
import shlex
import tempfile

BATCH = 8
# A constant at the left margin: two sources that each have their own of that name in the same namespace
# stay apart.
CONSTANT = re.compile(r"^[a-z].*?\b(k[A-Z]\w*)\b(?:\[\w*\])*(?: =|\{)", re.M)
NAMESPACE = re.compile(r"^namespace ([\w:]+) \{", re.M)


def flags_of(source):
    """The compiler's words but for what names this one source."""
    words = shlex.split(source.command)[1:]
    for word in ("-o", "-c"):
        at = words.index(word)
        del words[at:at + 2]
    return words


def constants_of(source):
    text = source.path.read_text()
    space = NAMESPACE.search(text)
    return {(space and space.group(1), name) for name in CONSTANT.findall(text)}


def batches_of(sources):
    """The sources, several in a batch where their flags are the same and no constants meet. Neighbours
    are dealt out to different batches: those that define what the others call are mostly neighbours,
    and what a source sees of them should be their headers."""
    groups = {}
    for source in sources:
        groups.setdefault(tuple(flags_of(source)), []).append(source)
    whole = []
    for group in groups.values():
        batches = [([], set()) for _ in range(-(-len(group) // BATCH))]
        for turn, source in enumerate(group):
            names = constants_of(source)
            order = batches[turn % len(batches):] + batches[:turn % len(batches)]
            batch = next((batch for batch in order if not batch[1] & names), None)
            if batch is None:
                batches.append(batch := ([], set()))
            batch[0].append(source)
            batch[1].update(names)
        whole += [batch for batch, _ in batches if batch]
    return sorted(whole, key=len, reverse=True)


@contextlib.contextmanager
def written(batch):
    """The path of a source that includes those of the batch, one after the other."""
    with tempfile.TemporaryDirectory(prefix="batch") as folder:
        whole = pathlib.Path(folder) / "batch.cpp"
        whole.write_text("".join(f'#include "{source.path}"\n' for source in batch))
        yield str(whole)
