#!/usr/bin/env python3
"""Runs clang-tidy on every source file of the project whose text, headers, flags or checks have changed."""

import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("src", "tests", "bench", "fuzz")
INCLUDE = re.compile(rb'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


class Digests:
    """Digests of source files together with all project headers that they include."""

    def __init__(self):
        self.included = {}

    def includes(self, path):
        if path not in self.included:
            names = [os.fsdecode(name) for name in INCLUDE.findall(path.read_bytes())]
            places = [place / name for name in names for place in (ROOT / "src", ROOT, path.parent)]
            self.included[path] = [place.resolve() for place in places if place.is_file()]
        return self.included[path]

    def of(self, path, extra):
        seen, waiting = set(), [path]
        while waiting:
            file = waiting.pop()
            if file not in seen:
                seen.add(file)
                waiting += self.includes(file)
        digest = hashlib.sha256(extra.encode())
        for file in sorted(seen):
            digest.update(str(file.relative_to(ROOT)).encode() + b"\0" + file.read_bytes())
        return digest.hexdigest()


def find_tool():
    return shutil.which("clang-tidy-14") or shutil.which("clang-tidy")


def units_of(build):
    """The project's own entries of the compilation database: path and command."""
    entries = json.loads((build / "compile_commands.json").read_text())
    units = {pathlib.Path(entry["file"]).resolve(): entry["command"] for entry in entries}
    own = [ROOT / folder for folder in FOLDERS]
    return {path: units[path] for path in sorted(units)
            if build not in path.parents and any(folder in path.parents for folder in own) and path.is_file()}


def checks_for(path):
    """The texts of all that says what is checked in the file."""
    folders = [folder for folder in path.parents if folder == ROOT or ROOT in folder.parents]
    files = [folder / ".clang-tidy" for folder in folders]
    return "".join(file.read_text() for file in files if file.is_file())


def lint(tool, build, path):
    """Returns the complaints about one file, empty when there are none."""
    done = subprocess.run([tool, "--quiet", "-p", str(build), str(path)], capture_output=True, text=True, check=False)
    # Standard error holds little but the number of warnings in system headers, unless the tool itself failed.
    return "" if done.returncode == 0 else done.stdout or done.stderr


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build/dev", help="folder of a configured build")
    parser.add_argument("-j", type=int, default=len(os.sched_getaffinity(0)), help="how many at a time")
    arguments = parser.parse_args()
    build, tool = arguments.build.resolve(), find_tool()
    if tool is None:
        sys.exit("clang-tidy is not installed")

    version = subprocess.run([tool, "--version"], capture_output=True, text=True, check=True).stdout
    digests, stamps = Digests(), build / "lint"
    stamps.mkdir(exist_ok=True)
    changed = {}
    for path, command in units_of(build).items():
        stamp = stamps / (str(path.relative_to(ROOT)).replace("/", "!") + ".ok")
        digest = digests.of(path, checks_for(path) + version + command)
        if not stamp.is_file() or stamp.read_text() != digest:
            changed[path] = (stamp, digest)

    failed = 0
    with concurrent.futures.ThreadPoolExecutor(arguments.j) as pool:
        results = pool.map(lambda path: lint(tool, build, path), changed)
        for (path, (stamp, digest)), complaints in zip(changed.items(), results):
            if complaints:
                failed += 1
                print(complaints, flush=True)
            else:
                stamp.write_text(digest)
    print(f"clang-tidy: {len(changed)} files looked at, {failed} with complaints")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
