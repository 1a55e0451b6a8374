#!/usr/bin/env python3
"""Applies the templates of tests/samples/ to real-world files and compares every entity with an independent reading.

Each file that tests/samples/extract.py can read has a template of its own name. The template must be valid
throughout, the entity list must hold the entities of the reading, all and no others, value by value, and no line may be
left unmatched. The files stand in a folder of their own, named by --samples or BOMPARSER_SAMPLES; without it the check
is skipped, with exit status 77.
"""

import argparse
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
TEMPLATES = ROOT / "tests" / "samples"
SKIPPED = 77
SECONDS = 60
LIST = re.compile(r"<TN_FILEPARSER_ENTITIES>(.*)</TN_FILEPARSER_ENTITIES>", re.S)
ENTITY = re.compile(r"<ENTITY>(Aperture|Drill|Part|Undefined)(.*?)</ENTITY>", re.S)

sys.path.insert(0, str(TEMPLATES))
sys.dont_write_bytecode = True
import extract  # noqa: E402  (stands beside the templates)


class Difference(Exception):
    """What is wrong with one sample, in words."""


def known_tags():
    """The tags that the values stand between, read from the table of the sources."""
    source = (ROOT / "src" / "template" / "OutputTags.cpp").read_text(encoding="utf-8")
    return sorted(set(re.findall(r'"([A-Z][A-Za-z0-9_]+)"', source)) - {"NONE", "UNDEFINED"})


def parse_list(text, tags):
    """The entities of a list. Values are not escaped: only the known tags end them."""
    whole = LIST.fullmatch(text)
    if not whole:
        raise Difference("the entity list has no root element")
    element = re.compile(f"<({'|'.join(tags)})>(.*?)</\\1>", re.S)
    found = [(kind, element.findall(body), element.sub("", body)) for kind, body in ENTITY.findall(whole.group(1))]
    rest = ENTITY.sub("", whole.group(1)) + "".join(left for _, _, left in found)
    if rest:
        raise Difference(f"text outside of entities and elements: {rest[:80]!r}")
    return [(kind, pairs) for kind, pairs, _ in found]


def run(program, *arguments):
    done = subprocess.run([program, *map(str, arguments)], stdin=subprocess.DEVNULL, capture_output=True, check=False,
                          timeout=SECONDS)
    if done.returncode != 0:
        said = (done.stdout + done.stderr).decode("utf-8", "replace")
        raise Difference(f"bomparser {arguments[0]} ended with {done.returncode}:\n{said}")
    return done


def compare(found, expected):
    for number, (have, want) in enumerate(zip(found, expected), 1):
        if have != want:
            raise Difference(f"entity {number}:\n    expected {want}\n    found    {have}")
    if len(found) != len(expected):
        raise Difference(f"{len(found)} entities instead of {len(expected)}")


def check_sample(program, sample, name, tags, scratch):
    """Returns the number of entities and of unmatched lines."""
    template = TEMPLATES / f"{sample.name.split('.')[0]}.xml"
    run(program, "check", template)
    out = scratch / "list.xml"
    done = run(program, "apply", "-t", template, "-o", out, "--stats", "-", sample)
    stats = json.loads(done.stderr)
    expected = extract.entities(name, sample.read_bytes())
    if not expected:
        raise Difference("the independent reading found nothing")
    compare(parse_list(out.read_bytes().decode("latin-1"), tags), expected)
    if stats["entity_blocks"] != len(expected):
        raise Difference(f"{stats['entity_blocks']} entity blocks instead of {len(expected)}")
    if stats["unmatched_lines"] != 0:
        raise Difference(f"{stats['unmatched_lines']} unmatched lines")
    return len(expected), stats["unmatched_lines"]


def templates_without_sample():
    used = {pathlib.PurePath(name).name.split(".")[0] for name in extract.READERS}
    return sorted(path.stem for path in TEMPLATES.glob("*.xml") if path.stem not in used)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--bin", required=True, help="the program under test")
    parser.add_argument("--samples", default=os.environ.get("BOMPARSER_SAMPLES") or ROOT.parent / "shared" / "samples",
                        help="folder of the real-world files")
    parser.add_argument("name", nargs="*", help="only the samples whose folder and file contain one of these")
    options = parser.parse_args()

    samples = pathlib.Path(options.samples)
    if not samples.is_dir():
        print(f"skipped: there is no folder of sample files at {samples}; set BOMPARSER_SAMPLES to check them")
        return SKIPPED

    tags = known_tags()
    failures = [f"{stem}.xml: nothing reads its sample" for stem in templates_without_sample()]
    with tempfile.TemporaryDirectory() as scratch:
        for name in extract.READERS:
            if options.name and not any(word in name for word in options.name):
                continue
            try:
                count, unmatched = check_sample(options.bin, samples / name, name, tags, pathlib.Path(scratch))
                print(f"{name}: {count} entities, {unmatched} unmatched lines")
            except (Difference, OSError, subprocess.TimeoutExpired) as problem:
                failures.append(f"{name}: {problem}")
    for failure in failures:
        print(f"FAILED {failure}", file=sys.stderr)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
