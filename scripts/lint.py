#!/usr/bin/env python3
"""Runs clang-tidy on every source file of the project whose text, headers, flags or checks have changed."""

import argparse
import collections
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("src", "tests", "bench", "fuzz")
INCLUDE = re.compile(rb'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
HEADER = re.compile(r'^#include (?:<[^>]+>|"[^"]+\.h").*\n', re.MULTILINE)
AT_ONCE = 8


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


def configurations_of(path):
    """All files that say what is checked in the file."""
    folders = [folder for folder in path.parents if folder == ROOT or ROOT in folder.parents]
    return [folder / ".clang-tidy" for folder in folders if (folder / ".clang-tidy").is_file()]


def lint(tool, path, *how):
    """Returns the complaints about one file, empty when there are none."""
    done = subprocess.run([tool, "--quiet", str(path), *how], capture_output=True, text=True, check=False)
    # Standard error holds little but the number of warnings in system headers, unless the tool itself failed.
    return "" if done.returncode == 0 else done.stdout or done.stderr


def options_of(path, command):
    """What of a compile command says how the file is read."""
    words = shlex.split(command)[1:]
    output = words.index("-o")
    return tuple(word for word in words[:output] + words[output + 2:] if word not in ("-c", str(path)))


def batches_of(units):
    """Files of one folder that are read alike, so many at a time that what they include is looked at once for all."""
    alike = collections.defaultdict(list)
    for path, command in units.items():
        alike[path.parent, options_of(path, command)].append(path)
    return [(paths[first:first + AT_ONCE], options) for (_, options), paths in alike.items()
            for first in range(0, len(paths), AT_ONCE)]


def joined(paths):
    """The files as one text, in which each header is included once."""
    texts = [path.read_text() for path in paths]
    headers = dict.fromkeys(header for text in texts for header in HEADER.findall(text))
    return "".join([*headers, *(HEADER.sub("", text) for text in texts)])


def lint_batch(tool, build, batch):
    """Returns the complaints about each file. Files that cannot be read together are looked at one by one."""
    paths, options = batch
    if len(paths) > 1:
        # Stands in a copy of the tree, where the tool finds what is checked in the folder.
        copy = build / "lint/joined"
        source = copy / paths[0].relative_to(ROOT)
        source.parent.mkdir(parents=True, exist_ok=True)
        for configuration in configurations_of(paths[0]):
            shutil.copyfile(configuration, copy / configuration.relative_to(ROOT))
        source.write_text(joined(paths))
        # What one file calls its own may shadow the same name of another.
        if not lint(tool, source, "--", *options, f"-I{paths[0].parent}", "-Wno-shadow"):
            return [""] * len(paths)
    return [lint(tool, path, "-p", str(build)) for path in paths]


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
    changed, wanted = {}, {}
    for path, command in units_of(build).items():
        stamp = stamps / (str(path.relative_to(ROOT)).replace("/", "!") + ".ok")
        checks = "".join(file.read_text() for file in configurations_of(path))
        digest = digests.of(path, checks + version + command)
        if not stamp.is_file() or stamp.read_text() != digest:
            changed[path], wanted[path] = command, (stamp, digest)

    failed = 0
    batches = list(batches_of(changed))
    with concurrent.futures.ThreadPoolExecutor(arguments.j) as pool:
        for batch, results in zip(batches, pool.map(lambda batch: lint_batch(tool, build, batch), batches)):
            for path, complaints in zip(batch[0], results):
                stamp, digest = wanted[path]
                if complaints:
                    failed += 1
                    print(complaints, flush=True)
                else:
                    stamp.write_text(digest)
    print(f"clang-tidy: {len(changed)} files looked at, {failed} with complaints")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
