#!/usr/bin/env python3
"""Runs bomparser beside programs that know the layout of the file: awk and Perl scripts and a scanner in C++.

All of them write the entity list of the same generated input to a file. The lists are compared byte for byte, then all
programs run in turn, round by round. Ratios are medians over the rounds: a machine that is busy for a while hits both
sides. Exit status 1 when a list differs or a program fails, 2 when there is nothing to compare.

What it needs is built by: cmake --preset bench && cmake --build --preset bench
"""

import argparse
import dataclasses
import filecmp
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
PEERS = ROOT / "bench" / "peers"
KINDS = {"placement": "placement list", "bom": "bill of materials"}
EMPTY_LIST = b"<TN_FILEPARSER_ENTITIES></TN_FILEPARSER_ENTITIES>"
PRODUCT, MAWK, SCANNER = "bomparser", "mawk", "scanner"
HOSTILE_SIZE = 1_000_000
HOSTILE_GROWTH = 4
FIND_SIZE = 1_000_000
START_SIZE = 1_000
START_ROUNDS = 200
SECONDS = 120


@dataclasses.dataclass
class Program:
    """A program of the table. `command` writes the list to `output` or, with `piped`, to its standard output."""
    name: str
    command: list
    output: pathlib.Path
    piped: bool = False


@dataclasses.dataclass
class Run:
    """What one run took."""
    seconds: float
    peak: int  # Bytes.
    status: int
    output: bytes = b""
    errors: bytes = b""


class Failure(Exception):
    """A program failed, or its list differs."""


def size_of(text):
    factor = {"K": 10**3, "M": 10**6, "G": 10**9}.get(text[-1:].upper())
    return int(float(text[:-1]) * factor) if factor else int(text)


def run(command, output=None):
    """Runs a command; its standard output goes to the file `output`, or into the answer."""
    with tempfile.TemporaryFile() as errors, (open(output, "wb") if output else tempfile.TemporaryFile()) as out:
        start = time.perf_counter()
        process = subprocess.Popen(list(map(str, command)), stdin=subprocess.DEVNULL, stdout=out, stderr=errors,
                                   env={**os.environ, "LC_ALL": "C"})
        limit = threading.Timer(SECONDS, process.kill)
        limit.start()
        _, status, usage = os.wait4(process.pid, 0)
        seconds = time.perf_counter() - start
        limit.cancel()
        process.returncode = os.waitstatus_to_exitcode(status)
        texts = []
        for file in (out, errors):
            readable = file is errors or not output
            file.seek(0)
            texts.append(file.read() if readable else b"")
        unit = 1 if sys.platform == "darwin" else 1024
        return Run(seconds, usage.ru_maxrss * unit, process.returncode, *texts)


def run_well(command, output=None):
    """The same, for commands that must succeed."""
    done = run(command, output)
    if done.status != 0:
        said = done.errors.decode(errors="replace").strip() or f"no message; {SECONDS} s is the limit"
        raise Failure(f"{pathlib.Path(command[0]).name}: exit status {done.status}: {said}")
    return done


def seconds_of(program):
    """The wall-clock time of a run that takes hardly longer than starting it: no pipes, no copy of this script."""
    program.output.unlink(missing_ok=True)
    start = time.perf_counter()
    process = os.posix_spawn(program.command[0], list(map(str, program.command)), os.environ)
    _, status = os.waitpid(process, 0)
    seconds = time.perf_counter() - start
    if status != 0:
        raise Failure(f"{program.name}: exit status {os.waitstatus_to_exitcode(status)}")
    return seconds


class Comparison:
    """One call of this script: where everything is, and what went wrong."""

    def __init__(self, arguments, folder):
        self.product = arguments.bin
        self.runs = arguments.runs
        self.templates = arguments.templates
        self.tools = arguments.tools
        self.folder = folder
        self.failures = []

    def make(self, kind, size):
        """Generates an input and its template."""
        paths = self.folder / f"{kind}-{size}.txt", self.folder / f"{kind}.xml"
        if not paths[0].exists():
            run_well([self.tools / "bench_inputs", kind, size, *paths])
        return paths

    def programs(self, kind, source, template):
        """The programs that can be run, the scanner first, and the names of those that are missing."""
        def out(name):
            return self.folder / f"{name}.list"

        found = [Program(SCANNER, [self.tools / "bench_scanner", kind, source, out(SCANNER)], out(SCANNER)),
                 Program(PRODUCT, [self.product, "apply", "-t", template, "-o", out(PRODUCT), source], out(PRODUCT)),
                 Program(PRODUCT + " --threads 1", [self.product, "apply", "-t", template, "--threads", "1",
                                                    "-o", out("single"), source], out("single"))]
        missing = []
        for name, script in ((MAWK, [MAWK, "-f", PEERS / f"{kind}.awk"]), ("perl", ["perl", PEERS / f"{kind}.pl"])):
            if shutil.which(name):
                found.append(Program(name, [*script, source], out(name), piped=True))
            else:
                missing.append(name)
        return found, missing

    @staticmethod
    def start(program):
        program.output.unlink(missing_ok=True)
        return run_well(program.command, program.output if program.piped else None)

    def check(self, kind, programs):
        """Runs every program once and keeps those whose list is that of the first."""
        good = []
        for program in programs:
            try:
                self.start(program)
                if not filecmp.cmp(program.output, programs[0].output, shallow=False):
                    raise Failure(f"{program.name}: its list differs from that of {programs[0].name}")
                good.append(program)
            except (Failure, OSError) as failure:
                self.failures.append(f"{KINDS[kind]}: {failure}")
        return good

    def compare(self, kind, size):
        source, template = self.make(kind, size)
        programs, missing = self.programs(kind, source, template)
        good = self.check(kind, programs)
        length, listed = source.stat().st_size, programs[0].output.stat().st_size
        results = {program.name: [] for program in good}
        for _ in range(self.runs):
            for program in good:
                results[program.name].append(self.start(program))
        print(f"\n{KINDS[kind]}: {length:,} bytes in, {listed:,} bytes of list, {self.runs} rounds, "
              f"load {os.getloadavg()[0]:.1f}")
        self.print_table(results, length)
        for name in missing:
            print(f"{name:<24} left out: not installed")
        for program in programs:
            program.output.unlink(missing_ok=True)

    def peak_floor(self):
        """A child starts with the peak of this script itself: what stays below that cannot be seen. Bytes."""
        return run([self.tools / "bench_inputs"]).peak * 1.05

    def print_table(self, results, length):
        floor = self.peak_floor()
        row = "{:<24}{:>9}{:>11}{:>10}{:>10}{:>9}{:>11}".format
        print(row("program", "MB/s", "median ms", "peak MB", "of input", "x mawk", "x scanner"))
        for name, runs in sorted(results.items(), key=lambda item: statistics.median(r.seconds for r in item[1])):
            seconds = statistics.median(one.seconds for one in runs)
            peak = max(one.peak for one in runs)
            part = f"{peak / length:.2f}" if peak > floor else "-"
            ratios = [ratio_text(results.get(other), runs) for other in (MAWK, SCANNER)]
            print(row(name, f"{length / 1e6 / seconds:.1f}", f"{seconds * 1e3:.1f}", peak_text(peak, floor), part,
                      *ratios))

    def small(self):
        """A small file, beside a program that only parses the template and copies the input."""
        source, template = self.make("placement", START_SIZE)
        listed, copied = self.folder / "small.list", self.folder / "small.copy"
        programs = (Program(PRODUCT, [self.product, "apply", "-t", template, "-o", listed, source], listed),
                    Program("minimal", [self.tools / "bench_minimal", template, source, copied], copied))
        rounds = [[seconds_of(program) for program in programs] for _ in range(START_ROUNDS)]
        if not filecmp.cmp(source, copied, shallow=False) or b"<ENTITY>" not in listed.read_bytes():
            raise Failure("small file: it was not copied, or nothing was found in it")
        product, minimal = (statistics.median(one[i] for one in rounds) * 1e3 for i in range(2))
        ratio = statistics.median(one / least for one, least in rounds)
        print(f"\n{source.stat().st_size:,} bytes: {product:.2f} ms, parsing the template and copying the file "
              f"{minimal:.2f} ms; x{ratio:.2f}")

    def find(self):
        """Find Template, in milliseconds for each template."""
        source, _ = self.make("placement", FIND_SIZE)
        folder = self.folder / "templates"
        wanted = run_well([self.tools / "bench_inputs", "folder", self.templates, folder]).output
        runs = [run_well([self.product, "find", "-s", folder, source]) for _ in range(self.runs)]
        if any(one.output != wanted for one in runs):
            raise Failure(f"find: {runs[0].output.decode().strip()} instead of {wanted.decode().strip()}")
        milliseconds = statistics.median(one.seconds for one in runs) * 1e3
        peak = peak_text(max(one.peak for one in runs), self.peak_floor())
        print(f"\nfind over {self.templates} templates, {source.stat().st_size:,} bytes: {milliseconds:.1f} ms, "
              f"{milliseconds / self.templates:.3f} ms a template, peak {peak} MB")

    def hostile(self):
        """A literal that never comes: the time must grow as the input does. Starting the program is not counted."""
        nothing = self.folder / "empty.txt"
        nothing.write_bytes(b"")
        sizes = (HOSTILE_SIZE, HOSTILE_SIZE * HOSTILE_GROWTH)
        sources = [self.make("hostile", size) for size in sizes]
        sources.insert(0, (nothing, sources[0][1]))
        rounds = [[self.hostile_run(*source) for source in sources] for _ in range(self.runs)]
        start, small, large = (statistics.median(one[i] for one in rounds) * 1e3 for i in range(3))
        growth = f"x{(large - start) / (small - start):.1f}" if small > start else "not to be measured"
        print(f"\nliteral that never comes: {sizes[0]:,} bytes {small:.1f} ms, {sizes[1]:,} bytes {large:.1f} ms, "
              f"nothing {start:.1f} ms; growth {growth} for x{HOSTILE_GROWTH}")

    def hostile_run(self, source, template):
        output = self.folder / "hostile.list"
        seconds = run_well([self.product, "apply", "-t", template, "-o", output, source]).seconds
        if output.read_bytes() != EMPTY_LIST:
            raise Failure("literal that never comes: the list is not empty")
        return seconds

    def attempt(self, step, *arguments):
        try:
            step(*arguments)
        except (Failure, OSError) as failure:
            self.failures.append(str(failure))


def peak_text(peak, floor):
    return f"{peak / 1e6:.1f}" if peak > floor else f"<{floor / 1e6:.1f}"


def ratio_text(others, runs):
    """How many times as fast as the other program, round by round."""
    if not others:
        return "-"
    return f"{statistics.median(other.seconds / one.seconds for other, one in zip(others, runs)):.2f}"


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bin", type=pathlib.Path, default=ROOT / "build/release/bomparser",
                        help="the program under test (default: build/release/bomparser)")
    parser.add_argument("--tools", type=pathlib.Path, default=ROOT / "build/bench/bench",
                        help="the folder of the programs bench_* (default: build/bench/bench)")
    parser.add_argument("--size", type=size_of, default="10M", help="bytes of input, K, M or G behind (default: 10M)")
    parser.add_argument("--kind", choices=KINDS, help="one layout only")
    parser.add_argument("--runs", type=int, default=5, help="counted rounds (default: 5)")
    parser.add_argument("--templates", type=int, default=50, help="how many templates find tries (default: 50)")
    arguments = parser.parse_args()
    if min(arguments.runs, arguments.templates, arguments.size) < 1:
        parser.error("sizes and counts start at 1")
    tools = [arguments.tools / name for name in ("bench_inputs", "bench_minimal", "bench_scanner")]
    for path in (arguments.bin, *tools):
        if not os.access(path, os.X_OK):
            parser.error(f"{path} is no program; --help tells what builds it")
    arguments.bin = arguments.bin.resolve()
    return arguments


def main():
    arguments = parse_arguments()
    with tempfile.TemporaryDirectory(prefix="bomparser-compare-") as folder:
        comparison = Comparison(arguments, pathlib.Path(folder))
        for kind in [arguments.kind] if arguments.kind else KINDS:
            comparison.attempt(comparison.compare, kind, arguments.size)
        comparison.attempt(comparison.small)
        comparison.attempt(comparison.find)
        comparison.attempt(comparison.hostile)
    for failure in comparison.failures:
        print(f"FAILED {failure}", file=sys.stderr)
    return 1 if comparison.failures else 0


if __name__ == "__main__":
    sys.exit(main())
