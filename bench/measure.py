"""Runs programs one after the other, and tells their time and their memory."""

import contextlib
import dataclasses
import json
import os
import pathlib
import statistics
import subprocess
import time

PIECE = 1 << 16


class Failure(Exception):
    """A program failed, or what it wrote is not what it should be."""


@dataclasses.dataclass
class Run:
    """What one run took."""
    seconds: float
    peak: int  # Bytes.


def processors():
    """Those that this process may use, in order; none where the system does not tell."""
    return sorted(os.sched_getaffinity(0)) if hasattr(os, "sched_getaffinity") else []


@contextlib.contextmanager
def on_processors(wanted):
    """Programs that are started inside may use these processors only."""
    before = processors()
    if before:
        os.sched_setaffinity(0, wanted)
    try:
        yield
    finally:
        if before:
            os.sched_setaffinity(0, before)


class Runner:
    """Starts programs through `starter`, the program bench_run. What they say goes to files in a folder."""

    def __init__(self, starter, folder):
        self.starter = starter
        self.said, self.errors, self.report = (folder / name for name in ("said.txt", "errors.txt", "report.txt"))
        self.environment = {**os.environ, "LC_ALL": "C"}

    def run(self, command, output=None):
        """Runs a command that must succeed. Its standard output goes to the file `output`."""
        with open(output or self.said, "wb") as out, open(self.errors, "wb") as errors:
            process = self.start(command, out, errors)
            process.wait()
        return self.outcome(command, process)

    def run_into_pipe(self, command, pause):
        """The same; its standard output goes through a pipe whose reader rests between pieces. Also how much came."""
        length = 0
        with open(self.errors, "wb") as errors, self.start(command, subprocess.PIPE, errors) as process:
            while piece := os.read(process.stdout.fileno(), PIECE):
                length += len(piece)
                time.sleep(pause)
        return self.outcome(command, process), length

    def start(self, command, out, errors):
        return subprocess.Popen([self.starter, self.report, *map(str, command)], stdin=subprocess.DEVNULL, stdout=out,
                                stderr=errors, env=self.environment)

    def outcome(self, command, process):
        if process.returncode != 0:
            said = self.errors.read_text(errors="replace").strip()
            raise Failure(f"{pathlib.Path(command[0]).name}: exit status {process.returncode}: {said}")
        seconds, _, peak = self.report.read_text().split()
        return Run(float(seconds), int(peak))

    def text_of(self, command):
        """What a command says."""
        self.run(command)
        return self.said.read_text()

    def in_turn(self, runs, rounds):
        """Calls `runs`, functions that give a Run, round by round: a machine that is busy for a while is busy for all.
        A list of runs for each, without the round that warms up."""
        taken = [[one() for one in runs] for _ in range(rounds + 1)]
        return [list(results) for results in zip(*taken[1:])]

    def benchmark(self, program, name, repetitions):
        """A benchmark of a program that is made of them, with its counters; the median of each."""
        report = self.report.with_suffix(".json")
        self.run([program, f"--benchmark_filter=^{name}$", f"--benchmark_out={report}", "--benchmark_out_format=json",
                  f"--benchmark_repetitions={repetitions}"])
        found = json.loads(report.read_text())["benchmarks"]
        for one in found:
            if one.get("error_occurred"):
                raise Failure(f"{one['name']}: {one['error_message']}")
        medians = [one for one in found if one.get("aggregate_name") == "median"] or found
        if not medians:
            raise Failure(f"{program.name} has no {name}")
        return medians[0]


def median_seconds(runs):
    return statistics.median(one.seconds for one in runs)


def highest_peak(runs):
    return max(one.peak for one in runs)


def median_ratio(runs, others):
    """How many times as long as the other runs, round by round."""
    return statistics.median(one.seconds / other.seconds for one, other in zip(runs, others))


def count_in(path, wanted):
    """How often a text stands in a file, which may be larger than memory."""
    count, rest = 0, b""
    with open(path, "rb") as file:
        while piece := file.read(PIECE):
            text = rest + piece
            count += text.count(wanted)
            rest = text[len(text) - len(wanted) + 1:]
    return count
