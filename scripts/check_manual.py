#!/usr/bin/env python3
"""Checks the manual: links and anchors, pictures, nesting, and that nothing the program knows is left out.

What the program knows is read from its sources: controls, messages, field types, record types and output tags. The help
of the program finds the text about a control by its anchor, so these sections have one exact form:
    <h3><a name="control-3006"></a>Load From File ...</h3>
    <p>What the pop-up says.</p>
"""

import argparse
import html.entities
import pathlib
import posixpath
import re
import sys
import tempfile
import urllib.parse
import xml.parsers.expat

ROOT = pathlib.Path(__file__).resolve().parent.parent
MANUAL = "docs/manual"

# Controls that nobody can ask about: (name, why).
CONTROLS_WITHOUT_HELP = {
    "Apply": "a button of sheets that stand alone; those of the main dialog show no buttons",
    "SheetExtra": "the same",
}
# Buttons that many windows have: one section in each of these.
SHARED_CONTROLS = {"Ok", "Cancel", "Help"}

# Messages that tell the user nothing to be done: (first, last, what they are). Every other one is quoted.
MESSAGES_NOT_QUOTED = [
    (502, 543, "words, names of settings, defaults, titles and identifiers"),
    (559, 572, "column titles and a caption"),
    (578, 578, "the description of a new record"),
    (585, 585, "a caption"),
    (608, 610, "units"),
    (645, 646, "menu items"),
    (664, 665, "the progress window's caption and button"),
    (701, 701, "the component's name"),
    (10000, 10011, "names of files and commands"),
    (10100, 10199, "formats"),
    (10211, 10212, "default expressions"),
    (10402, 10406, "what the progress window says"),
    (11027, 11027, "the progress window's caption"),
    (10410, 10411, "kinds of blocks"),
    (10500, 10500, "says that nothing is wrong"),
    (10600, 10699, "names of settings"),
    (10700, 10727, "columns, marks and labels of the input file view"),
    (10729, 10732, "buttons and counts of the input file view"),
    (10736, 10736, "the legend's name"),
    (10800, 10808, "captions and filters of file dialogs"),
    (10900, 10910, "menu items"),
    (11000, 11022, "labels of the main dialog"),
    (11100, 11115, "labels of the settings"),
    (11200, 11207, "labels of the template parameters"),
    (11300, 11312, "labels of the pages about the input file"),
    (11700, 11702, "buttons of sheets"),
    (11800, 11804, "labels of the viewer"),
    (11806, 11809, "commands of the viewer"),
    (11900, 11902, "states of rows"),
    (12500, 12503, "labels of the manual's window"),
]

# What the tables of the program must be called in the manual: (source, pattern of a name, page, what it is).
TABLES = [
    ("src/template/FieldTypes.h", r'\{FieldKind::\w+, "(\w+)"', "fields.html", "type", "field type"),
    ("src/template/FieldTypes.cpp", r'\{FieldKind::\w+, "(\w+)"', "fields.html", "type", "field type"),
    ("src/template/RecordTypes.cpp", r'\{"([\w -]+)", (?:true|false)\}', "records.html", "type", "record type"),
    ("src/template/OutputTags.cpp", r'\{"(\w+)", Value::\w+\}', "tags.html", "tag", "output tag"),
]


class Page:
    """One page: where its anchors, links, pictures and quotations are, each with its line."""

    def __init__(self, text):
        self.anchors, self.links, self.pictures = [], [], []
        self.quoted = {}  # Anchor of a <pre> -> its text.
        self.samples = []  # (line, file, text) of each <pre title="file">.
        self.faults = []  # (line, text)
        self._open, self._pre = [], None
        self._parser = xml.parsers.expat.ParserCreate()
        self._parser.UseForeignDTD(True)  # Names of characters are those of HTML, declared nowhere.
        self._parser.StartElementHandler = self._start
        self._parser.EndElementHandler = self._end
        self._parser.CharacterDataHandler = self._data
        self._parser.SkippedEntityHandler = self._entity
        try:
            self._parser.Parse(text, True)
        except xml.parsers.expat.ExpatError as error:
            self.faults.append((error.lineno, f"is not well-formed: {xml.parsers.expat.ErrorString(error.code)}"))

    def _start(self, tag, attributes):
        line = self._parser.CurrentLineNumber
        if self._open and self._open[-1] == "p" and tag in {"p", "ul", "ol", "table", "pre", "h1", "h2", "h3"}:
            self.faults.append((line, f"<{tag}> inside of <p>"))
        self._open.append(tag)
        if tag == "pre":
            self._pre = {"line": line, "anchors": [], "text": "", "file": attributes.get("title")}
        for name in ("name", "id"):
            if tag not in {"meta"} and name in attributes:
                self.anchors.append((line, attributes[name]))
                if self._pre:
                    self._pre["anchors"].append(attributes[name])
        if tag in {"a", "link"} and "href" in attributes:
            self.links.append((line, attributes["href"]))
        if tag == "img":
            self.pictures.append((line, attributes.get("src", ""), attributes.get("alt", "")))

    def _end(self, tag):
        self._open.pop()
        if tag == "pre":
            for anchor in self._pre["anchors"]:
                self.quoted[anchor] = self._pre["text"]
            if self._pre["file"]:
                self.samples.append((self._pre["line"], self._pre["file"], self._pre["text"]))
            self._pre = None

    def _data(self, text):
        if self._pre:
            self._pre["text"] += text

    def _entity(self, name, _):
        if name + ";" in html.entities.html5:
            self._data(html.entities.html5[name + ";"])
        else:
            self.faults.append((self._parser.CurrentLineNumber, f"&{name}; is no character"))


def unescape(text):
    """A text as the compiler reads it."""
    return re.sub(r"\\(.)", lambda found: {"n": "\n", "t": "\t"}.get(found.group(1), found.group(1)), text)


def read_messages(root):
    text = (root / "src/res/messages.def").read_text(encoding="utf-8")
    found = re.findall(r'^MESSAGE\((\w+), (\d+), "(.*)"\)$', text, re.MULTILINE)
    return {int(number): (name, unescape(words)) for name, number, words in found}


def read_controls(root):
    text = (root / "src/res/ControlIds.h").read_text(encoding="utf-8")
    body = re.search(r"enum class Ctrl : int \{(.*?)\};", text, re.DOTALL).group(1)
    return {int(number): name for name, number in re.findall(r"^\s*(\w+) = (\d+),", body, re.MULTILINE)}


def is_quoted(number):
    return not any(first <= number <= last for first, last, _ in MESSAGES_NOT_QUOTED)


def check_links(pages, folder):
    """Yields (page, line, text) for links that lead nowhere."""
    anchors = {name: [anchor for _, anchor in page.anchors] for name, page in pages.items()}
    for name, page in pages.items():
        for place, (line, anchor) in enumerate(page.anchors):
            if anchor in anchors[name][:place]:
                yield name, line, f"anchor {anchor} stands on this page already"
        for line, link in page.links:
            path, _, anchor = link.partition("#")
            if urllib.parse.urlsplit(path).scheme:
                yield name, line, f"links to {link}: a shipped manual leads to its own pages only"
                continue
            target = posixpath.normpath(posixpath.join(posixpath.dirname(name), path)) if path else name
            if target not in pages and not (folder / target).is_file():
                yield name, line, f"links to {path}, which is no page"
            elif anchor and anchor not in anchors.get(target, []):
                yield name, line, f"links to {link}, which is no anchor"


def check_pictures(pages, folder, missing_allowed):
    for name, page in pages.items():
        for line, source, text in page.pictures:
            if not text.strip():
                yield name, line, f"picture {source} has no alt text"
            if not (folder / source).is_file() and not missing_allowed:
                yield name, line, f"there is no picture {source}"


def check_controls(root, pages, texts):
    """Yields what is wrong with the sections about controls."""
    controls = read_controls(root)
    places = {number: [] for number in controls}
    for name, page in pages.items():
        for line, anchor in page.anchors:
            found = re.fullmatch(r"control-(\d+)", anchor)
            if not found:
                continue
            number = int(found.group(1))
            form = rf'<h3><a name="control-{number}"></a>[^<>]+</h3>\n<p>(?!</p>)'
            if not name.startswith("window"):
                yield name, line, f"{anchor} stands on a page that help does not look at"
            elif not re.search(form, texts[name]):
                yield name, line, f"{anchor} has not the form that help looks for"
            if number in places:
                places[number].append(name)
            else:
                yield name, line, f"{anchor} is about a control that does not exist"
    for number, control in controls.items():
        if control in CONTROLS_WITHOUT_HELP:
            continue
        if not places[number]:
            yield "windows.html", 1, f"no page has a section control-{number} ({control})"
        elif len(places[number]) > 1 and control not in SHARED_CONTROLS:
            yield places[number][1], 1, f"control-{number} ({control}) stands on {places[number][0]} already"


def check_messages(root, pages):
    """Yields what is wrong with the quotations of messages."""
    messages = read_messages(root)
    quoted = {}
    for name, page in pages.items():
        for line, anchor in page.anchors:
            found = re.fullmatch(r"message-(\d+)", anchor)
            if found:
                quoted[int(found.group(1))] = (name, line, page.quoted.get(anchor))
    for number, (name, line, text) in quoted.items():
        if number not in messages:
            yield name, line, f"quotes message {number}, which does not exist"
        elif text != messages[number][1]:
            yield name, line, f"message {number} says {messages[number][1]!r}, not {text!r}"
    for number, (message, text) in messages.items():
        if number not in quoted and is_quoted(number):
            yield "troubleshooting.html", 1, f"message {number} ({message}) is not quoted: {text!r}"


def check_tables(root, pages):
    for source, pattern, name, kind, what in TABLES:
        anchors = [anchor for _, anchor in pages[name].anchors] if name in pages else []
        found = re.findall(pattern, (root / source).read_text(encoding="utf-8"))
        if not found:
            yield name, 1, f"no {what} was found in {source}: the check is out of date"
        for entry in dict.fromkeys(found):
            if f"{kind}-{entry.replace(' ', '-')}" not in anchors:
                yield name, 1, f"{what} {entry} has no anchor {kind}-{entry.replace(' ', '-')}"


def check_samples(root, pages):
    """Yields samples that are not what the files that they are taken from hold."""
    for name, page in pages.items():
        for line, file, text in page.samples:
            path = root / file
            if not path.is_file() or path.read_text(encoding="utf-8").rstrip("\n") != text.rstrip("\n"):
                yield name, line, f"is not what {file} holds"


def check_manual(root, missing_allowed=False):
    """Returns the complaints about the manual of the project at `root`, each as file:line: text."""
    folder = root / MANUAL
    texts = {path.relative_to(folder).as_posix(): path.read_text(encoding="utf-8")
             for path in sorted(folder.rglob("*.html"))}
    pages = {name: Page(text) for name, text in texts.items()}
    faults = [(name, *fault) for name, page in pages.items() for fault in page.faults]
    faults += check_links(pages, folder)
    faults += check_pictures(pages, folder, missing_allowed)
    faults += check_controls(root, pages, texts)
    faults += check_messages(root, pages)
    faults += check_tables(root, pages)
    faults += check_samples(root, pages)
    return [f"{MANUAL}/{name}:{line}: {text}" for name, line, text in faults]


def missing_pictures(root):
    folder = root / MANUAL
    sources = {source for path in folder.rglob("*.html")
               for _, source, _ in Page(path.read_text(encoding="utf-8")).pictures}
    return sorted(source for source in sources if not (folder / source).is_file())


def page_of(body):
    return f'<!DOCTYPE html>\n<html>\n<body>\n{body}\n</body>\n</html>\n'


SECTION = '<h3><a name="control-3006"></a>Load</h3>\n<p>Loads.</p>\n'
OK_SECTION = '<h3><a name="control-1"></a>OK</h3>\n<p>Ends.</p>\n'
QUOTE = '<pre><a name="message-544"></a>Not &lt;output&gt;.\n\nNow?</pre>'

GOOD_PROJECT = {
    "src/res/messages.def": '// Texts.\nMESSAGE(Word, 502, "TRUE")\nMESSAGE(Ask, 544, "Not <output>.\\n\\nNow?")\n',
    "src/res/ControlIds.h": "enum class Ctrl : int {\n  None = -1,\n  Ok = 1,\n  LoadFromFile = 3006,\n  Apply = 12321,\n};\n",
    "src/template/FieldTypes.h": '{FieldKind::String, "STRING", true},\n',
    "src/template/FieldTypes.cpp": '{FieldKind::Undefined, "UNDEFINED", true}\n',
    "src/template/RecordTypes.cpp": '{"Single Match", true},\n{"", true},\n',
    "src/template/OutputTags.cpp": '{"DCODE", Value::Number},\n{"", Value::Text},\n',
    "examples/a.txt": "R1  10\nR2  <2>\n",
    f"{MANUAL}/fields.html": page_of('<a name="type-STRING"></a><a name="type-UNDEFINED"></a>'),
    f"{MANUAL}/records.html": page_of('<a name="type-Single-Match"></a>'),
    f"{MANUAL}/tags.html": page_of('<p><a name="tag-DCODE"></a>&nbsp;<br/></p>'),
    f"{MANUAL}/window-702.html": page_of(SECTION + OK_SECTION),
    f"{MANUAL}/window-758.html": page_of(OK_SECTION),
    f"{MANUAL}/troubleshooting.html": page_of(QUOTE),
    f"{MANUAL}/index.html": page_of('<p><a href="other.html#place">x</a><img src="images/a.png" alt="A"/></p>\n'
                                    '<pre title="examples/a.txt">R1  10\nR2  &lt;2&gt;\n</pre>'),
    f"{MANUAL}/other.html": page_of('<p><a name="place"></a><a href="index.html">x</a></p>'),
    f"{MANUAL}/images/a.png": "",
}

# (file, its text, what the one complaint must hold)
BAD_FILES = [
    ("index.html", page_of('<p><a href="nowhere.html">x</a></p>'), "index.html:4: links to nowhere.html, which is no page"),
    ("index.html", page_of('<p><a href="fields.html#x">x</a></p>'), "links to fields.html#x, which is no anchor"),
    ("index.html", page_of('<p><a href="#x">x</a></p>'), "links to #x, which is no anchor"),
    ("index.html", page_of('<p><a href="https://example.org/">x</a></p>'), "its own pages only"),
    ("index.html", page_of('<p><img src="images/a.png"/></p>'), "has no alt text"),
    ("index.html", page_of('<p><img src="images/b.png" alt="B"/></p>'), "there is no picture images/b.png"),
    ("index.html", page_of("<p><b>x</p></b>"), "index.html:4: is not well-formed: mismatched tag"),
    ("index.html", page_of("<p>x<ul><li>y</li></ul></p>"), "<ul> inside of <p>"),
    ("index.html", page_of("<p>&unheard;</p>"), "&unheard; is no character"),
    ("index.html", page_of('<p><a name="x"></a></p><p id="x">y</p>'), "anchor x stands on this page already"),
    ("index.html", page_of('<pre title="examples/a.txt">R1 10</pre>'), "is not what examples/a.txt holds"),
    ("index.html", page_of(OK_SECTION), "on a page that help does not look at"),
    ("window-702.html", page_of(OK_SECTION), "no page has a section control-3006 (LoadFromFile)"),
    ("window-702.html", page_of(SECTION.replace("h3", "h2")), "has not the form that help looks for"),
    ("window-702.html", page_of(SECTION.replace("<p>Loads.</p>", "<p></p>")), "has not the form that help looks for"),
    ("window-758.html", page_of(SECTION), "control-3006 (LoadFromFile) stands on window-702.html already"),
    ("window-758.html", page_of(SECTION.replace("3006", "4711")), "about a control that does not exist"),
    ("troubleshooting.html", page_of("<p>Nothing.</p>"), "message 544 (Ask) is not quoted"),
    ("troubleshooting.html", page_of(QUOTE.replace("Now", "now")), "troubleshooting.html:4: message 544 says"),
    ("troubleshooting.html", page_of(QUOTE + QUOTE.replace("544", "999")), "quotes message 999, which does not exist"),
    ("fields.html", page_of('<a name="type-UNDEFINED"></a>'), "field type STRING has no anchor type-STRING"),
    ("fields.html", page_of('<a name="type-STRING"></a>'), "field type UNDEFINED has no anchor"),
    ("records.html", page_of('<a name="type-Single"></a>'), "record type Single Match has no anchor type-Single-Match"),
    ("tags.html", page_of("<p>None.</p>"), "output tag DCODE has no anchor tag-DCODE"),
]


def write_project(folder, files):
    for name, text in files.items():
        path = pathlib.Path(folder, name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
    return pathlib.Path(folder)


def complaints_of(files, missing_allowed=False):
    with tempfile.TemporaryDirectory() as folder:
        return check_manual(write_project(folder, files), missing_allowed)


def self_test():
    """Returns what this script gets wrong: it must pass a good manual and say why it fails each bad one."""
    wrong = [f"good manual: {text}" for text in complaints_of(GOOD_PROJECT)]
    for name, text, expected in BAD_FILES:
        complaints = complaints_of({**GOOD_PROJECT, f"{MANUAL}/{name}": text})
        if len(complaints) != 1 or expected not in complaints[0]:
            wrong.append(f"{name}: expected one complaint with '{expected}', got {complaints}")
    no_picture = {name: text for name, text in GOOD_PROJECT.items() if not name.endswith(".png")}
    if complaints_of(no_picture, missing_allowed=True):
        wrong.append("a missing picture was not allowed")
    with tempfile.TemporaryDirectory() as folder:
        if missing_pictures(write_project(folder, no_picture)) != ["images/a.png"]:
            wrong.append("a missing picture was not listed")
    empty_table = {**GOOD_PROJECT, "src/template/OutputTags.cpp": ""}
    if not any("the check is out of date" in text for text in complaints_of(empty_table)):
        wrong.append("a table without a name passed")
    return wrong


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--self-test", action="store_true", help="check this script on small good and bad manuals")
    parser.add_argument("--missing-pictures", choices=("refuse", "list"), default="refuse",
                        help="what to do about pictures that are not there (default: %(default)s)")
    parser.add_argument("--root", type=pathlib.Path, default=ROOT, help="the project (default: the one of this script)")
    arguments = parser.parse_args()
    if arguments.self_test:
        complaints = self_test()
    else:
        missing_allowed = arguments.missing_pictures == "list"
        complaints = check_manual(arguments.root, missing_allowed)
        if missing_allowed:
            print("".join(f"no picture yet: {source}\n" for source in missing_pictures(arguments.root)), end="")
    print("\n".join(complaints) or "The manual is in order.")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
