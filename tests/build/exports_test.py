#!/usr/bin/env python3
"""The library exports the functions of a written list, all of them and nothing else.

usage: exports_test.py LIBRARY LIST
       exports_test.py --self-check COMPILER [OPTION]...
"""

import readback


def complaints_about(library, list_path):
    with open(list_path, encoding="ascii") as file:
        return readback.export_complaints(library, file.read().split(), "listed")


def self_check(workshop):
    listed = workshop.write("list", "alpha\nbeta\n")

    def complaints(source, *options):
        return complaints_about(workshop.library(source, *options), listed)

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
        "a variable by a listed name",
        complaints("void alpha(void) {} int beta = 1;"),
        "beta is exported as D, not as a function",
    )


if __name__ == "__main__":
    readback.main(lambda arguments: complaints_about(*arguments), self_check)
