"""The results that a stand-in for the library gives: one file each, in a folder that it reads
(vexorctl_library.c)."""

import pathlib

from vexorctl_machine import VERSION

VIRTUAL_CONTROLLER = f"{VERSION} (virtual controller)"


class Script:
    """A folder of results. The controller is ours unless another one is named."""

    def __init__(self, folder, controller=VIRTUAL_CONTROLLER, adapters=1):
        self.folder = pathlib.Path(folder)
        self.answer("HX_API_Version", f'<RetVal type="string">{controller}</RetVal>')
        self.answer("HX_Adapter_GetCount", f'<RetVal type="U8">{adapters}</RetVal>')

    def environment(self, library):
        """For a run over the library in this folder. A function without a file is refused: the
        adapter does not have it."""
        return {
            "LD_LIBRARY_PATH": str(library), "STANDIN": "", "STANDIN_RESULTS": str(self.folder),
            "STANDIN_RESULT": '<X type="function"><RetVal type="U8">202</RetVal></X>',
        }

    def whole(self, function, text, adapter=None):
        """The whole text of a function's result."""
        folder = self.folder if adapter is None else self.folder / f"a{adapter}"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / function).write_text(text)

    def answer(self, function, elements, adapter=None):
        """A function's result; the elements are those below its own."""
        self.whole(function, f'<{function} type="function">{elements}</{function}>', adapter)

    def item(self, function, number, text, adapter=0):
        """One item of a paged list."""
        folder = self.folder / f"a{adapter}"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / f"{function}.{number}").write_text(text)
