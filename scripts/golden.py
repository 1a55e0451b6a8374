#!/usr/bin/env python3
"""Compares what command lines do with what is stored of them.

A case is a folder of tests/golden/ with its inputs and these files:
  cmd       shell lines, run in a copy of the folder; `bomparser` is the program under test, $SOURCE_DIR the project
  stdout    the expected standard output; missing: nothing
  stderr    the expected standard error; missing: nothing
  status    the expected exit status; missing: 0
  expect/   files that the lines must have written, under the names and with the bytes that they have here
"""

import argparse
import contextlib
import difflib
import io
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
OWN_FILES = ("cmd", "stdout", "stderr", "status", "expect")
SECONDS = 120


def environment(program, scratch):
    """Nothing of the caller's settings but the options of the sanitizers."""
    kept = {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
    folders = {name: scratch / name for name in ("bin", "tmp", "home")}
    for folder in folders.values():
        folder.mkdir()
    (folders["bin"] / "bomparser").symlink_to(program)
    return {**kept, "PATH": f"{folders['bin']}:{os.environ.get('PATH', os.defpath)}", "LC_ALL": "C",
            "TMPDIR": str(folders["tmp"]), "HOME": str(folders["home"]), "SOURCE_DIR": str(ROOT)}


def run_case(case, program):
    """Runs one case. Returns what it gave, by the name of the file that holds the expected bytes."""
    with tempfile.TemporaryDirectory() as folder:
        scratch = pathlib.Path(folder)
        work = scratch / "work"
        shutil.copytree(case, work, ignore=lambda at, _: OWN_FILES if pathlib.Path(at) == case else ())
        lines = (case / "cmd").read_text(encoding="utf-8")
        try:
            done = subprocess.run(["bash", "-c", lines], cwd=work, env=environment(program, scratch), timeout=SECONDS,
                                  stdin=subprocess.DEVNULL, capture_output=True, check=False)
        except subprocess.TimeoutExpired:
            return {"status": f"none: still running after {SECONDS} seconds\n".encode()}
        given = {"stdout": done.stdout, "stderr": done.stderr, "status": b"%d\n" % done.returncode}
        for path in expected_files(case):
            written = work / path.relative_to(case / "expect")
            given[path.relative_to(case).as_posix()] = written.read_bytes() if written.is_file() else None
        return given


def expected_files(case):
    return sorted(path for path in (case / "expect").rglob("*") if path.is_file())


def expectation(case, name):
    path = case / name
    if path.is_file():
        return path.read_bytes()
    return b"0\n" if name == "status" else b""


def difference(case, name, given):
    """Returns how `given` differs from what is expected, empty when it does not."""
    expected = expectation(case, name)
    if given == expected:
        return ""
    if given is None:
        return f"{case.name}/{name}: was not written\n"
    before, after = (bytes_.decode("utf-8", "backslashreplace").splitlines(keepends=True)
                     for bytes_ in (expected, given))
    lines = difflib.unified_diff(before, after, f"{case.name}/{name}", "now")
    text = "".join(line if line.endswith("\n") else line + "\n(no line end)\n" for line in lines)
    return text or f"{case.name}/{name}: differs in bytes that are no text\n"


def approve(case, name, given):
    path = case / name
    if given is None or (given == b"" and name == "stderr"):
        path.unlink(missing_ok=True)
    else:
        path.write_bytes(given)


def run_all(cases, program, rewrite):
    """Returns how many cases passed and how many failed. With `rewrite` what differs is stored and passes."""
    passed = failed = 0
    for case in cases:
        given = run_case(case, program)
        different = {name: text for name in given if (text := difference(case, name, given[name]))}
        for text in different.values():
            print(text, end="")
        if rewrite:
            for name in different:
                approve(case, name, given[name])
        if different and not rewrite:
            failed += 1
            print(f"FAILED {case.name}")
        else:
            passed += 1
    return passed, failed


def cases_of(folder, wanted):
    cases = sorted(path.parent for path in folder.glob("*/cmd"))
    return [case for case in cases if not wanted or case.name in wanted]


FAKE_PROGRAM = """#!/bin/sh
echo "out $1"; [ -z "$2" ] || echo "said $2" >&2; [ -z "$3" ] || cp input.txt "$3"; exit ${4:-0}
"""

# (name, files of the case, whether it passes)
SELF_TEST = [
    ("good", {"cmd": "bomparser a b copy 3", "stdout": "out a\n", "stderr": "said b\n", "status": "3\n",
              "input.txt": "\x01", "expect/copy": "\x01"}, True),
    ("defaults", {"cmd": "bomparser a", "stdout": "out a\n"}, True),
    ("other_output", {"cmd": "bomparser a", "stdout": "out b\n"}, False),
    ("no_line_end", {"cmd": "bomparser a", "stdout": "out a"}, False),
    ("unexpected_error_text", {"cmd": "bomparser a b", "stdout": "out a\n"}, False),
    ("other_status", {"cmd": "bomparser a '' '' 1", "stdout": "out a\n"}, False),
    ("other_file", {"cmd": "bomparser a '' copy", "stdout": "out a\n", "input.txt": "1", "expect/copy": "2"}, False),
    ("missing_file", {"cmd": "bomparser a", "stdout": "out a\n", "expect/copy": ""}, False),
]


def self_test():
    """Returns how many of the cases above turn out as they must, and how many do not; then each is approved."""
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        program = root / "fake"
        program.write_text(FAKE_PROGRAM)
        program.chmod(0o755)
        for name, files, _ in SELF_TEST:
            for file, text in files.items():
                path = root / name / file
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
        wrong = 0
        for name, _, passes in SELF_TEST:
            outcomes = []
            with contextlib.redirect_stdout(io.StringIO()):
                for rewrite in (False, True, False):
                    outcomes.append(run_all([root / name], program, rewrite) == (1, 0))
            if outcomes != [passes, True, True]:
                wrong += 1
                print(f"{name}: passed {outcomes}, not {[passes, True, True]}")
        return len(SELF_TEST) - wrong, wrong


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bin", type=pathlib.Path, default=ROOT / "build/dev/bomparser", help="the program under test")
    parser.add_argument("--approve", action="store_true", help="show what differs and store it as expected")
    parser.add_argument("--self-test", action="store_true", help="check this script with a program of its own")
    parser.add_argument("cases", nargs="*", help="names of cases; default all")
    arguments = parser.parse_args()
    if arguments.self_test:
        passed, failed = self_test()
    else:
        cases = cases_of(ROOT / "tests/golden", arguments.cases)
        if len(cases) < len(set(arguments.cases)):
            sys.exit("no such case: " + " ".join(sorted(set(arguments.cases) - {case.name for case in cases})))
        if cases and not arguments.bin.is_file():
            sys.exit(f"no program {arguments.bin}: build it first, or name it with --bin")
        passed, failed = run_all(cases, arguments.bin.resolve(), arguments.approve)
    print(f"{passed} cases passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
