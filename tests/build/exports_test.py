#!/usr/bin/env python3
"""The library exports the functions of a written list, all of them and nothing else, under one version.

usage: exports_test.py LIBRARY LIST VERSION
       exports_test.py --self-check COMPILER [OPTION]...
"""

import readback


def complaints_about(library, list_path, version):
    with open(list_path, encoding="ascii") as file:
        listed = file.read().split()
    # The linker writes the version itself as a symbol that no program can ask for.
    complaints = [
        complaint
        for complaint in readback.export_complaints(library, listed, "listed")
        if complaint != f"{version} is exported and not listed"
    ]
    for name, found in readback.exported_versions(library):
        if name in listed and found != version:
            complaints.append(f"{name} has the version {found or 'none'}")
    return complaints


def self_check(workshop):
    listed = workshop.write("list", "alpha\nbeta\n")

    def complaints(source, *options, map_text="V_1 { global: *; };"):
        script = workshop.write("map", map_text)
        library = workshop.library(source, f"-Wl,--version-script={script}", *options)
        return complaints_about(library, listed, "V_1")

    yield "the listed functions", complaints("void alpha(void) {} void beta(void) {}"), None
    yield (
        "one more function",
        complaints("void alpha(void) {} void beta(void) {} void gamma_(void) {}"),
        "gamma_ is exported and not listed",
    )
    yield (
        "one function short",
        complaints("void alpha(void) {}"),
        "beta is listed and not exported",
    )
    yield (
        "one function hidden",
        complaints(
            'void alpha(void) {} __attribute__((visibility("hidden"))) void beta(void) {}'
        ),
        "beta is listed and not exported",
    )
    yield (
        "another version",
        complaints(
            "void alpha(void) {} void beta(void) {}",
            map_text="V_1 { global: alpha; }; V_2 { global: beta; } V_1;",
        ),
        "beta has the version V_2",
    )
    yield (
        "no version",
        complaints("void alpha(void) {} void beta(void) {}", map_text="{ global: *; };"),
        "alpha has the version none",
    )
    yield (
        "a variable by a listed name",
        complaints("void alpha(void) {} int beta = 1;"),
        "beta is exported as D, not as a function",
    )


if __name__ == "__main__":
    readback.main(lambda arguments: complaints_about(*arguments), self_check)
