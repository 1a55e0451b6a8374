#!/usr/bin/env python3
"""Makes the Debian package of a build and tries it: unpacked into an empty folder, with nothing of the build around it."""

import argparse
import contextlib
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
SKIPPED = 77
PATIENCE = 50  # Seconds for anything that has to come at some time.
TOOLS = ("cpack", "dpkg-deb", "dpkg-shlibdeps", "readelf", "file")
EXAMPLE = "usr/share/bomparser/examples/placement"

COMMAND_LINE_FILES = """
usr/bin/bomparser
usr/share/bash-completion/completions/bomparser
usr/share/doc/bomparser/CHANGELOG.md
usr/share/doc/bomparser/README.md
usr/share/doc/bomparser/TEMPLATE_FORMAT.md
usr/share/doc/bomparser/changelog.gz
usr/share/doc/bomparser/copyright
usr/share/fish/vendor_completions.d/bomparser.fish
usr/share/man/man1/bomparser.1.gz
usr/share/zsh/vendor-completions/_bomparser
""".split()
COMPONENT_FILES = """
usr/include/bomparser/entry/component/CTNFileParserInterface.h
usr/include/bomparser/entry/component/FileParserComponent.h
usr/include/bomparser/ui/controls/CTNHostApp.h
usr/lib/bomparser/libbomparser_component.so
""".split()
DESKTOP_FILES = """
usr/lib/bomparser/libbomparser_desktop.so
usr/share/applications/bomparser.desktop
usr/share/icons/hicolor/scalable/apps/bomparser.svg
usr/share/metainfo/bomparser.metainfo.xml
""".split()
MODULES = [pathlib.PurePath(name).name for name in COMPONENT_FILES + DESKTOP_FILES if name.endswith(".so")]


class Wrong(Exception):
    """Something about the package is not as it must be."""


def demand(condition, text):
    if not condition:
        raise Wrong(text)


def run(command, **how):
    done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, timeout=PATIENCE, check=False, **how)
    demand(done.returncode == 0, f"{command[0]} gave {done.returncode}:\n{(done.stdout + done.stderr).decode()}")
    return done.stdout.decode()


def make_package(build, folder):
    run(["cpack", "-G", "DEB", "--config", str(build / "CPackConfig.cmake"), "-B", str(folder),
         "-D", "CPACK_DEBIAN_COMPRESSION_TYPE=gzip"])
    packages = list(folder.glob("*.deb"))
    demand(len(packages) == 1, f"cpack left {packages}")
    return packages[0]


def files_below(folder):
    return sorted(path.relative_to(folder).as_posix() for path in folder.rglob("*") if not path.is_dir())


def expected_files(arguments):
    expected = list(COMMAND_LINE_FILES)
    for name in arguments.libraries:
        if pathlib.Path("/usr/share/doc", name, "copyright").exists():
            expected.append(f"usr/share/doc/bomparser/libraries/{name}")
    for source in ("examples", "docs/manual"):
        folder = f"usr/share/bomparser/{pathlib.PurePath(source).name}"
        expected += [f"{folder}/{name}" for name in files_below(ROOT / source)]
    if arguments.component:
        expected += COMPONENT_FILES
    if arguments.desktop:
        expected += DESKTOP_FILES
    return sorted(expected)


def check_files(root, arguments):
    there, expected = files_below(root), expected_files(arguments)
    extra, missing = sorted(set(there) - set(expected)), sorted(set(expected) - set(there))
    demand(not extra and not missing, f"files that should not be there: {extra}; that are missing: {missing}")
    for name in there:
        mode = (root / name).stat().st_mode & 0o777
        wanted = 0o755 if name.startswith("usr/bin/") else 0o644
        demand(mode == wanted or name.endswith(".so"), f"{name} has the mode {mode:o}")


def needed_libraries(file):
    return re.findall(r"\(NEEDED\).*\[(.*)\]", run(["readelf", "-d", str(file)]))


def check_libraries(root, package):
    """What the files are linked with is in the package, or comes with one that it depends on."""
    depends = run(["dpkg-deb", "-f", str(package), "Depends"])
    packages = {re.match(r"[^ (:]+", part.strip()).group() for part in depends.replace("|", ",").split(",")}
    own = {path.name for path in (root / "usr/lib").rglob("*.so")} if (root / "usr/lib").exists() else set()
    program_files = [root / name for name in files_below(root) if name.startswith("usr/bin/") or name.endswith(".so")]
    for file in program_files:
        for library in set(needed_libraries(file)) - own:
            owners = {line.split(":")[0] for line in run(["dpkg", "-S", f"*/{library}"]).splitlines()}
            demand(owners & packages, f"{file.name} needs {library} of {owners}; the package depends on {packages}")
        dynamic = run(["readelf", "-d", str(file)])
        demand(not re.search(r"\((RPATH|RUNPATH)\)", dynamic), f"{file.name} looks for libraries in the build")
        demand(".debug_info" not in run(["readelf", "-SW", str(file)]), f"{file.name} is not stripped")


def check_headers(root):
    """What the headers for hosts include of this project is there."""
    folder = root / "usr/include/bomparser"
    for header in folder.rglob("*.h"):
        for name in re.findall(r'#include "([^"]+)"', header.read_text(encoding="utf-8")):
            demand((folder / name).is_file(), f"{header.name} includes {name}, which is not in the package")


def clean_environment(scratch):
    home = scratch / "home"
    home.mkdir(exist_ok=True)
    home.chmod(0o700)
    return {"HOME": str(home), "TMPDIR": str(home), "XDG_RUNTIME_DIR": str(home), "PATH": "/usr/bin:/bin"}


def check_commands(root, scratch, version):
    program, how = str(root / "usr/bin/bomparser"), {"cwd": scratch, "env": clean_environment(scratch)}
    told = run([program, "--version"], **how)
    demand(version in told.split(), f"--version says {told!r}, the package {version}")
    demand("apply" in run([program, "--help"], **how), "--help does not name the command apply")
    template, text, expected = (root / EXAMPLE / name for name in ("template.xml", "input.txt", "expected.xml"))
    output = scratch / "list.xml"
    run([program, "apply", "-t", str(template), "-o", str(output), str(text)], **how)
    demand(output.read_bytes() == expected.read_bytes(), "the list of the example is not the one beside it")


def loaded_files(process):
    with contextlib.suppress(OSError):
        text = pathlib.Path(f"/proc/{process.pid}/maps").read_text(encoding="utf-8")
        return {line.split()[-1] for line in text.splitlines() if "/" in line}
    return set()


def wait_for_files(process, wanted, log):
    """Waits until a process that must not end has loaded all that is wanted."""
    end = time.monotonic() + PATIENCE
    while wanted - loaded_files(process):
        said = log.read_text(encoding="utf-8", errors="replace")
        demand(process.poll() is None, f"the dialog ended by itself with {process.returncode}:\n{said}")
        demand(time.monotonic() < end, f"the dialog did not load {wanted - loaded_files(process)}:\n{said}")
        time.sleep(0.02)


def check_dialog(root, scratch):
    """The dialog opens with the modules of the package and stays open until it is told to end."""
    command = [str(root / "usr/bin/bomparser"), "--template", str(root / EXAMPLE / "template.xml"), "--input="]
    environment = {**clean_environment(scratch), "QT_QPA_PLATFORM": "offscreen"}
    log = scratch / "dialog.log"
    with log.open("wb") as messages:
        process = subprocess.Popen(command, cwd=scratch, env=environment, stdin=subprocess.DEVNULL, stdout=messages,
                                   stderr=messages)
    try:
        wait_for_files(process, {str(root / "usr/lib/bomparser" / name) for name in MODULES}, log)
        process.terminate()
        process.wait(PATIENCE)
        # As shells tell it; or by the signal itself, where it came before anybody listened.
        demand(process.returncode in (-signal.SIGTERM, 128 + signal.SIGTERM),
               f"told to end, the dialog gave {process.returncode}")
    finally:
        process.kill()
        process.wait()


def check_with_tool(command, missing):
    if shutil.which(command[0]):
        run(command)
    else:
        missing.append(command[0])


def check_descriptions(root, missing):
    check_with_tool(["desktop-file-validate", str(root / "usr/share/applications/bomparser.desktop")], missing)
    # The project has no domain name that its id could begin with.
    check_with_tool(["appstreamcli", "validate", "--no-net", "--override=cid-desktopapp-is-not-rdns=info",
                     str(root / "usr/share/metainfo/bomparser.metainfo.xml")], missing)


def check(arguments, folder):
    """Raises Wrong with what is not in order; returns the tools that were missing."""
    root, scratch, missing = folder / "root", folder / "scratch", []
    scratch.mkdir()
    package = make_package(arguments.build, folder / "package")
    run(["dpkg-deb", "-x", str(package), str(root)])
    check_files(root, arguments)
    check_libraries(root, package)
    check_headers(root)
    check_commands(root, scratch, run(["dpkg-deb", "-f", str(package), "Version"]).strip())
    if arguments.desktop:
        check_descriptions(root, missing)
        check_dialog(root, scratch)
    return missing


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, required=True, help="the build folder")
    parser.add_argument("--component", action="store_true", help="the package holds the component")
    parser.add_argument("--desktop", action="store_true", help="the package holds the dialog")
    parser.add_argument("--libraries", nargs="*", default=[], help="packages of libraries that are in the program")
    arguments = parser.parse_args()
    lacking = [tool for tool in TOOLS if not shutil.which(tool)]
    if lacking:
        print("SKIPPED: no", ", ".join(lacking))
        return SKIPPED
    with tempfile.TemporaryDirectory() as folder:
        try:
            missing = check(arguments, pathlib.Path(os.path.realpath(folder)))
        except (Wrong, subprocess.TimeoutExpired) as wrong:
            print("The package is not in order:", wrong)
            return 1
    for tool in missing:
        print("NOT CHECKED: there is no", tool)
    print("The package is in order.")
    return 0


if __name__ == "__main__":
    sys.exit(main())
