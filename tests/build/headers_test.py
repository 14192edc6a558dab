#!/usr/bin/env python3
"""Each public header compiles alone, as C and as C++, without a warning.

usage: headers_test.py HEADER -- C-COMPILER [OPTION]... -- C++-COMPILER [OPTION]...
       headers_test.py --self-check C-COMPILER [OPTION]...
"""

import os
import subprocess

import readback

WARNINGS = ("-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wshadow", "-Werror")


def complaints_about(header, languages):
    """languages: (name of the language, its standard, compiler command) triples."""
    # Twice, so that the guard is tried as well; nothing before it that it could lean on.
    source = f'#include "{os.path.basename(header)}"\n' * 2 + "int after;\n"
    complaints = []
    for language, standard, compiler in languages:
        command = [*compiler, "-x", language, f"-std={standard}", "-fsyntax-only", *WARNINGS]
        command += ["-I", os.path.dirname(os.path.abspath(header)), "-"]
        result = subprocess.run(
            command, check=False, input=source, text=True, stderr=subprocess.PIPE
        )
        if result.returncode != 0:
            complaints.append(f"{header} does not compile as {standard}:\n{result.stderr}")
    return complaints


def read_back(arguments):
    first = arguments.index("--")
    second = arguments.index("--", first + 1)
    c_compiler, cxx_compiler = arguments[first + 1 : second], arguments[second + 1 :]
    languages = (
        ("c", "c11", c_compiler),
        ("c++", "c++11", cxx_compiler),
        ("c++", "c++20", cxx_compiler),
    )
    return [
        complaint
        for header in arguments[:first]
        for complaint in complaints_about(header, languages)
    ]


def self_check(workshop):
    languages = (("c", "c11", workshop.compiler), ("c++", "c++20", workshop.compiler))

    def complaints(text):
        return complaints_about(workshop.write("header.h", text), languages)

    guarded = "#ifndef HEADER_H\n#define HEADER_H\n{}\n#endif\n".format
    yield "a self-contained header", complaints(guarded("#include <stdint.h>\nstruct s { uint32_t a; };")), None
    yield "a header that needs another", complaints(guarded("struct s { uint32_t a; };")), "c11"
    yield "a header of C only", complaints(guarded("struct s { int class; };")), "c++20"
    yield "a header of C++ only", complaints(guarded("struct s { bool a; };")), "c11"
    yield "a header without a guard", complaints("struct s { int a; };\n"), "c11"


if __name__ == "__main__":
    readback.main(read_back, self_check)
