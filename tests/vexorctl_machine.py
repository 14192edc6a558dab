"""A virtual controller of a test's own: a state file in a temporary folder, its clock frozen.

What time it is, and how far an activity has come, changes only when a test says so.
"""

import functools
import os
import pathlib
import shutil
import subprocess
import tempfile


def _hxsimctl(programs, state, *words):
    return subprocess.run(
        [os.path.join(programs, "hxsimctl"), *map(str, words)], text=True, capture_output=True,
        env={**os.environ, "HXSIM_STATE": str(state)}, timeout=120, check=True).stdout


@functools.lru_cache(maxsize=None)
def _template(programs, topology):
    folder = tempfile.TemporaryDirectory(prefix="vexorctl-machine-")
    state = pathlib.Path(folder.name) / "machine.db"
    _hxsimctl(programs, state, "init", "--topology", topology)
    _hxsimctl(programs, state, "clock", "freeze")
    return folder, state  # the folder goes with the cache, at the end of the program


class Machine:
    """A fresh machine; `programs` is the folder of hxsimctl, `topology` a name or a file."""

    def __init__(self, programs, state, topology="default"):
        self.programs = str(programs)
        self.state = pathlib.Path(state)
        shutil.copyfile(_template(self.programs, str(topology))[1], self.state)

    def hxsimctl(self, *words):
        return _hxsimctl(self.programs, self.state, *words)
