#!/usr/bin/env python3
"""A handful of requests, good and hostile, touch no memory that they should not, and leak none.

usage: memcheck_test.py --commands VEXORCTL FILE...  these example commands, all carried out
       memcheck_test.py --declined VEXORCTL          commands that the library must turn away
       memcheck_test.py --self-check COMPILER [OPTION]...
"""

import os
import shutil
import subprocess
import sys
import tempfile

VALGRIND = (
    "valgrind",
    "--quiet",
    "--leak-check=full",
    "--errors-for-leak-kinds=definite,indirect,possible",
    "--error-exitcode=99",
)

NOT_CARRIED_OUT = 6  # vexorctl's exit code for a command that was declined or is malformed
DECLINED = {
    "malformed": "<HX_Adapter_GetInfo",
    "cut-short": '<?xml version="1.0"?>\n<HX_Adapter_GetInfo type="function"><AdapterID>25',
    "no-such-function": '<HX_Nothing type="function"></HX_Nothing>',
    "no-type": "<HX_Adapter_GetInfo></HX_Adapter_GetInfo>",
    "three-thousand-deep": "<a>" * 3000 + "</a>" * 3000,
    "many-declarations": "<!DOCTYPE a ["
    + "".join(f'<!ENTITY e{i} "&#38;e{i + 1};">' for i in range(300))
    + "]><a>&e0;</a>",
    "long-names-and-texts": "<" + "n" * 5000 + ">" + "t" * 5000 + "</" + "n" * 5000 + ">",
}


EXAMPLE_ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../examples/root")


def under_valgrind(command, expected):
    """Complaints about one run; expected is the exit code that the command itself is to have."""
    with tempfile.TemporaryDirectory() as root:
        # What the example commands need: users, and a folder for what they make.
        shutil.copytree(EXAMPLE_ROOT, root, dirs_exist_ok=True)
        os.mkdir(os.path.join(root, "build"))
        result = subprocess.run(
            [*VALGRIND, *command],
            check=False,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            errors="replace",
            cwd=root,
            env=dict(os.environ, VEXORAPI_ROOT=root),
        )
    if result.returncode == expected:
        return []
    return [f"{command}: exit code {result.returncode}, not {expected}\n{result.stdout}"]


def carried_out(vexorctl, files):
    return under_valgrind([vexorctl, "xml", *files], 0) if files else ["no command file"]


def declined(vexorctl):
    complaints = []
    with tempfile.TemporaryDirectory() as directory:
        for name, text in DECLINED.items():
            path = os.path.join(directory, name + ".xml")
            with open(path, "w", encoding="ascii") as file:
                file.write(text)
            complaints += under_valgrind([vexorctl, "xml", path], NOT_CARRIED_OUT)
    return complaints


FAULTS = {
    "a leak": "char *volatile p = malloc(10); p = malloc(10); free(p);",
    "a read past a block": "volatile char *p = malloc(10); char c = p[10]; free((void *)p); (void)c;",
    "a choice by an unset byte": 'char *p = malloc(10); if (p[3] == 7) puts("seven"); free(p);',
}


def self_check(compiler):
    """Complaints about valgrind not noticing a fault, or finding one in a sound program."""
    with tempfile.TemporaryDirectory() as directory:
        program = os.path.join(directory, "program")

        def run(body):
            source = f"#include <stdio.h>\n#include <stdlib.h>\nint main(void) {{ {body} return 0; }}\n"
            command = [*compiler, "-O0", "-g", "-w", "-x", "c", "-", "-o", program]
            subprocess.run(command, check=True, input=source, text=True)
            return under_valgrind([program], 0)

        complaints = run('puts("sound");')
        for fault, body in FAULTS.items():
            if not run(body):
                complaints.append(f"{fault} is not noticed")
        return complaints


def main():
    mode, arguments = sys.argv[1], sys.argv[2:]
    if mode == "--commands":
        complaints = carried_out(arguments[0], arguments[1:])
    elif mode == "--declined":
        complaints = declined(arguments[0])
    elif mode == "--self-check":
        complaints = self_check(arguments)
    else:
        sys.exit(__doc__)
    for complaint in complaints:
        print(complaint)
    sys.exit(1 if complaints else 0)


if __name__ == "__main__":
    main()
