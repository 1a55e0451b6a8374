#!/usr/bin/env python3
"""Checks that a module exports what it shall and nothing else, by its dynamic symbol table."""

import argparse
import subprocess
import sys

MEMBER = "CTNFileParserInterface::"
STRING = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >"
EXPECTED = {
    "component": {
        "FileParser_component_init",
        f"{MEMBER}CTNFileParserInterface()",
        f"{MEMBER}CTNFileParserInterface(CTNFileParserInterface const&)",
        f"{MEMBER}operator=(CTNFileParserInterface const&)",
        f"{MEMBER}~CTNFileParserInterface()",
        f"{MEMBER}DisplayFileParserAsImportBOM({STRING}&)",
        "typeinfo for CTNFileParserInterface",
        "typeinfo name for CTNFileParserInterface",
        "vtable for CTNFileParserInterface",
    },
    "desktop": {"BomParserDesktopMain"},
}


def exported_by(module, nm):
    lines = subprocess.run([nm, "--dynamic", "--defined-only", "--demangle", "--format=posix", module],
                           check=True, capture_output=True, text=True).stdout.splitlines()
    # NAME TYPE VALUE SIZE; a name that is no function's or object's may have no size.
    return {line.rsplit(" ", 3)[0] if line.count(" ") >= 3 else line for line in lines}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("kind", choices=sorted(EXPECTED))
    parser.add_argument("module")
    parser.add_argument("--nm", default="nm")
    arguments = parser.parse_args()
    exported, expected = exported_by(arguments.module, arguments.nm), EXPECTED[arguments.kind]
    for name in sorted(exported - expected):
        print(f"exported and should not be: {name}")
    for name in sorted(expected - exported):
        print(f"not exported: {name}")
    return 0 if exported == expected else 1


if __name__ == "__main__":
    sys.exit(main())
