#!/usr/bin/env python3
"""Checks what the floors of src/ include: nothing upwards, no circle, libraries behind their own door."""

import argparse
import pathlib
import re
import sys
import tempfile

# A floor is a folder; a file belongs to the longest that holds it. Each names the floors that it stands on, its own
# included.
FLOORS = {
    "res": {"res"},
    "tnbase": {"res", "tnbase"},
    "input": {"res", "tnbase", "input"},
    "template": {"res", "tnbase", "input", "template"},
    "entry": {"res", "tnbase", "input", "template", "entry"},
    "cli": {"res", "tnbase", "input", "template", "entry", "cli"},
    "ui/controls": {"res", "tnbase", "input", "template", "entry", "ui/controls"},
    "ui/views": {"res", "tnbase", "input", "template", "entry", "ui/controls", "ui/views"},
    "ui/dialogs": {"res", "tnbase", "input", "template", "entry", "ui/controls", "ui/views", "ui/dialogs"},
    "entry/component": {"res", "tnbase", "input", "template", "entry", "ui/controls", "ui/views", "ui/dialogs",
                        "entry/component"},
    "host": {"res", "tnbase", "input", "template", "entry", "ui/controls", "ui/views", "ui/dialogs",
             "entry/component", "host"},
}

# (what is included, who may include it, what is said of anybody else)
DOORS = [
    (re.compile(r"libxml/"), re.compile(r"template/XmlDom\w*\.(h|cpp)$"), "libxml2 outside template/XmlDom"),
    (re.compile(r"(Q[A-Z]|Qt[A-Z]\w*/)"), re.compile(r"(ui|host|entry/component)/"), "Qt below the dialog"),
    (re.compile(r"(sys/|unistd\.h|fcntl\.h|dirent\.h|pthread\.h|windows\.h)", re.IGNORECASE),
     re.compile(r".*\.cpp$"), "a header of the system in a header"),
]

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def floor_of(path):
    holders = [floor for floor in FLOORS if path.startswith(floor + "/")]
    return max(holders, key=len, default=None)


def includes_of(root, path):
    text = (root / path).read_text(encoding="utf-8", errors="replace")
    for number, line in enumerate(text.splitlines(), 1):
        found = INCLUDE.match(line)
        if found:
            yield number, found.group(1) == '"', found.group(2)


def check_include(root, path, quoted, name):
    """Yields what is wrong with one include of the file `path`."""
    for library, allowed, complaint in DOORS:
        if library.match(name) and not allowed.match(path):
            yield f"includes {name}: {complaint}"
    if not quoted:
        return
    target, floor = floor_of(name), floor_of(path)
    if target is None or not (root / name).is_file():
        yield f"includes {name}, which is no file of src/ (paths start there)"
    elif target not in FLOORS[floor]:
        yield f"includes {name}: {floor} may not include {target}"


def check_first_include(root, path):
    """Yields what is wrong with a source file that has a header of its own: that comes first, so that it compiles alone."""
    own = re.sub(r"\.cpp$", ".h", path)
    if own == path or not (root / own).is_file():
        return
    first = next(includes_of(root, path), None)
    if first is None or first[2] != own:
        yield f"includes something before its own header {own}"


def find_circle(graph):
    """Returns the files of one circle of includes, first and last the same, or None."""
    done, trail = set(), []

    def visit(path):
        if path in trail:
            return trail[trail.index(path):] + [path]
        if path in done:
            return None
        trail.append(path)
        for target in graph.get(path, []):
            circle = visit(target)
            if circle:
                return circle
        done.add(trail.pop())
        return None

    return next(filter(None, map(visit, sorted(graph))), None)


def check_tree(root):
    """Returns the complaints about the tree whose src/ is `root`, each as file:line: text."""
    complaints, graph = [], {}
    files = (path.relative_to(root).as_posix() for path in root.rglob("*") if path.suffix in (".h", ".cpp", ".def"))
    for path in sorted(files):
        if floor_of(path) is None:
            complaints.append(f"src/{path}:1: stands on no floor that scripts/check_layers.py knows")
            continue
        complaints += [f"src/{path}:1: {text}" for text in check_first_include(root, path)]
        for number, quoted, name in includes_of(root, path):
            complaints += [f"src/{path}:{number}: {text}" for text in check_include(root, path, quoted, name)]
            if quoted:
                graph.setdefault(path, []).append(name)
    circle = find_circle(graph)
    if circle:
        complaints.append(f"src/{circle[0]}:1: includes itself: " + " -> ".join(circle))
    return complaints


GOOD_TREE = {
    "res/messages.def": "",
    "tnbase/A.h": "#include <string>\n",
    "tnbase/A.cpp": '#include "tnbase/A.h"\n#include <unistd.h>\n',
    "input/roles/B.h": '#include "tnbase/A.h"\n#include "res/messages.def"\n',
    "template/XmlDom.cpp": "#include <libxml/tree.h>\n",
    "entry/component/C.cpp": '#include "ui/dialogs/D.h"\n#include <QString>\n',
    "ui/dialogs/D.h": '#include "input/roles/B.h"\n',
}

# (file, its text, what the complaint must hold)
BAD_FILES = [
    ("tnbase/Up.h", '\n#include "input/roles/B.h"\n', "src/tnbase/Up.h:2: includes input/roles/B.h: tnbase may not"),
    ("entry/Up.cpp", '#include "ui/dialogs/D.h"\n', "entry may not include ui/dialogs"),
    ("cli/Up.cpp", '#include "ui/dialogs/D.h"\n', "cli may not include ui/dialogs"),
    ("template/Xml.cpp", "#include <libxml/parser.h>\n", "libxml2 outside"),
    ("input/Q.cpp", "#include <QString>\n", "Qt below"),
    ("entry/Q.cpp", "#include <QtWidgets/QWidget>\n", "Qt below"),
    ("tnbase/S.h", "#include <sys/stat.h>\n", "a header of the system"),
    ("input/Lost.cpp", '#include "Lost.h"\n', "no file of src/"),
    ("input/B.h", '#include "input/B.h"\n', "includes itself: input/B.h -> input/B.h"),
    ("tnbase/A.cpp", '#include <string>\n#include "tnbase/A.h"\n', "before its own header tnbase/A.h"),
    ("attic/Z.h", "", "stands on no floor"),
]


def complaints_of(files):
    with tempfile.TemporaryDirectory() as folder:
        for name, text in files.items():
            path = pathlib.Path(folder, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        return check_tree(pathlib.Path(folder))


def self_test():
    """Returns what this script gets wrong: it must pass a good tree and say why it fails each bad one."""
    wrong = [f"good tree: {text}" for text in complaints_of(GOOD_TREE)]
    for name, text, expected in BAD_FILES:
        complaints = complaints_of({**GOOD_TREE, name: text})
        if len(complaints) != 1 or expected not in complaints[0]:
            wrong.append(f"{name}: expected one complaint with '{expected}', got {complaints}")
    long_circle = {"input/X.h": '#include "input/Y.h"\n', "input/Y.h": '#include "input/X.h"\n'}
    if not any("input/X.h -> input/Y.h -> input/X.h" in text for text in complaints_of({**GOOD_TREE, **long_circle})):
        wrong.append("a circle of two headers was not found")
    return wrong


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--self-test", action="store_true", help="check this script on small good and bad trees")
    arguments = parser.parse_args()
    source = pathlib.Path(__file__).resolve().parent.parent / "src"
    complaints = self_test() if arguments.self_test else check_tree(source)
    print("\n".join(complaints) or "The floors are in order.")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
