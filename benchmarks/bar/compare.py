"""Compares the bars of two build trees: paired starts, instructions and system calls.

Run by "run --against DIR". Prints the ratio of this build to the other one.
"""

import os
import re
import signal
import statistics
import subprocess
import time
from pathlib import Path

import bars
import processes

STEPS = ("mapped", "first pixel", "clock drawn")
LEAST_PAIRS = 21
# The bar is run for each of these times (seconds). The counts differ by those of LONG - SHORT ticks.
SHORT, LONG = 6, 26


def _bar(build: Path, programs: Path, with_seconds: bool) -> bars.Bar:
    return bars.all_bars(build, programs, with_seconds)[0]


def _median_interval(values: list[float]) -> tuple[float, float]:
    """Returns the 95 % confidence interval of the median, by the sign test."""
    ordered = sorted(values)
    outside = 0.0
    rank = 0
    while True:
        outside += 2 * _binomial(len(ordered), rank)
        if outside > 0.05:
            return ordered[rank - 1], ordered[-rank]
        rank += 1


def _binomial(n: int, k: int) -> float:
    result = 0.5 ** n
    for i in range(k):
        result *= (n - i) / (i + 1)
    return result


def paired_starts(desktop, start_once, this: Path, other: Path, rounds: int) -> None:
    """Starts both bars alternately and prints the ratios of the paired times."""
    programs = desktop.homes.parent
    pair = [_bar(build, programs, True) for build in (this, other)]
    ratios: list[list[float]] = [[], [], []]
    medians: list[list[list[int]]] = [[[], [], []], [[], [], []]]
    with desktop.session("compare", pair) as env:
        for turn in range(rounds + 1):
            times: list[list[int]] = [[], []]
            for index in (0, 1) if turn % 2 else (1, 0):
                times[index] = start_once(desktop, env, pair[index])
            if turn == 0:
                continue
            for step in range(len(STEPS)):
                ratios[step].append(times[0][step] / times[1][step])
                for index in (0, 1):
                    medians[index][step].append(times[index][step])
    for step, name in enumerate(STEPS):
        low, high = _median_interval(ratios[step])
        ours, theirs = (statistics.median(medians[index][step]) / 1000 for index in (0, 1))
        print(f"{name}: {ours:.1f} ms, other {theirs:.1f} ms, paired ratio "
              f"{statistics.median(ratios[step]):.3f} ({low:.3f} to {high:.3f}), {rounds} pairs")


def _run_for(desktop, env, command: list[str], seconds: float) -> None:
    program = desktop.spawn(command, env)
    time.sleep(seconds)
    # Under valgrind, the bar is the process that was started; strace is its parent.
    for pid in processes.family(program.pid):
        if pid != program.pid or command[0] == "valgrind":
            os.kill(pid, signal.SIGTERM)
    program.wait(timeout=30)


def _instructions(desktop, env, bar: bars.Bar, seconds: float) -> int:
    output = desktop.folder / "callgrind"
    _run_for(desktop, env, ["valgrind", "--tool=callgrind", f"--callgrind-out-file={output}",
                            *bar.command], seconds)
    return int(re.search(r"^(?:totals|summary): (\d+)", output.read_text(), re.M)[1])


def _system_calls(desktop, env, bar: bars.Bar, seconds: float) -> int:
    output = desktop.folder / "strace"
    _run_for(desktop, env, ["strace", "-f", "-c", "-o", str(output), *bar.command], seconds)
    return int(re.search(r"^\S+\s+\S+\s+(?:\S+\s+)?(\d+)\s+(?:\d+\s+)?total$", output.read_text(),
                         re.M)[1])


def counts(desktop, this: Path, other: Path) -> None:
    """Prints the instructions and system calls of a start and stop, and of one tick."""
    programs = desktop.homes.parent
    for name, count, delay in (("instructions", _instructions, 4), ("system calls", _system_calls, 0)):
        starts, ticks = [], []
        for index, build in enumerate((this, other)):
            with desktop.session(f"{count.__name__}{index}", [_bar(build, programs, True)]) as env:
                bar = _bar(build, programs, True)
                short = count(desktop, env, bar, SHORT + delay)
                ticks.append((count(desktop, env, bar, LONG + delay) - short) / (LONG - SHORT))
                starts.append(short - ticks[-1] * SHORT)
        for what, (ours, theirs) in (("start and stop", starts), ("per tick", ticks)):
            print(f"{name}, {what}: {ours:,.0f}, other {theirs:,.0f}, ratio {ours / theirs:.3f}")


def measure(desktop, start_once, this: Path, other: Path, rounds: int) -> int:
    paired_starts(desktop, start_once, this, other, rounds)
    counts(desktop, this, other)
    return 0
