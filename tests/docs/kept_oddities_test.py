#!/usr/bin/env python3
"""docs/kept-oddities.md and the tests whose names begin with Kept agree.

usage: kept_oddities_test.py ROOT-OF-THE-PROJECT
"""

import os
import re
import sys

NAME = re.compile(r"\b(?:[A-Z][A-Za-z]*And)?Kept[A-Z0-9][A-Za-z0-9_]*\b")
IN_TESTS = re.compile(
    r'(?:TEST(?:_F|_P)?\(\s*\w+,\s*|")((?:[A-Z][A-Za-z]*And)?Kept[A-Z0-9][A-Za-z0-9_]*)'
)


def names_in_tests(folder):
    names = set()
    for where, _, files in os.walk(folder):
        for file in files:
            if file.endswith("Test.cpp"):
                with open(os.path.join(where, file), encoding="utf-8") as source:
                    names.update(IN_TESTS.findall(source.read()))
    return names


def main():
    root = sys.argv[1]
    with open(os.path.join(root, "docs", "kept-oddities.md"), encoding="utf-8") as page:
        documented = set(NAME.findall(page.read()))
    tested = names_in_tests(os.path.join(root, "tests"))
    for name in sorted(documented - tested):
        print(f"{name}: named on the page, but there is no such test")
    for name in sorted(tested - documented):
        print(f"{name}: a test that the page does not name")
    print(f"{len(tested)} tests, {len(documented)} on the page")
    return 0 if tested and tested == documented else 1


if __name__ == "__main__":
    sys.exit(main())
