"""Starts the bars on a private X screen and session bus, measures them and prints the table.

Run by the script "run", which installs and builds what is needed. The exit code is 0 if everything
could be measured, whether or not the targets hold, and otherwise 1.
"""

import argparse
import os
import signal
import subprocess
import sys
import tempfile
import time
from contextlib import ExitStack, contextmanager
from pathlib import Path

import bars
import compare
import processes
import report
import toggle

START_LIMIT_MS = 10_000
WARM_UP_SECONDS = 10
FULL_ROUNDS = 20
FULL_SECONDS = 60
# The part of a period around the change of the minute that belongs to the tick (seconds).
TICK_BEFORE = 0.5
TICK_AFTER = 1.5


class NotMeasured(Exception):
    """Raised with the reason if something cannot be measured."""


def note(text: str) -> None:
    print(text, file=sys.stderr, flush=True)


class Desktop:
    """An X screen of 1920 x 1080 without a window manager, and a folder for temporary files."""

    def __init__(self, programs: Path, stack: ExitStack):
        self.folder = Path(stack.enter_context(tempfile.TemporaryDirectory(prefix="bar-")))
        # Not in /tmp: a bar that watches the parent folders of its settings would wake up whenever
        # another program creates or deletes a file there.
        self.homes = Path(stack.enter_context(
            tempfile.TemporaryDirectory(prefix="homes-", dir=programs)))
        self.watcher = str(programs / "screen-watch")
        self._log = open(self.folder / "log", "w+", encoding="utf-8", errors="replace")
        stack.callback(self._log.close)
        stack.callback(processes.end_all, os.getpid())
        reading, writing = os.pipe()
        self.spawn(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1920x1080x24", "-noreset",
             "-nolisten", "tcp"],
            dict(os.environ), pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise NotMeasured(f"Xvfb did not start: {self.last_words()}")
        self.display = f":{number}"
        subprocess.run([self.watcher, "prepare"], env={"DISPLAY": self.display}, check=True)

    def spawn(self, command: list[str], env: dict[str, str], **options) -> subprocess.Popen:
        return subprocess.Popen(command, env=env, stdin=subprocess.DEVNULL, stdout=self._log,
                                stderr=self._log, start_new_session=True, **options)

    def last_words(self) -> str:
        self._log.flush()
        lines = (self.folder / "log").read_text(encoding="utf-8", errors="replace").splitlines()
        return " / ".join(lines[-3:])

    @contextmanager
    def session(self, name: str, programs: list[bars.Bar]):
        """A session bus and a home folder with the bars' settings; yields their environment."""
        home = self.homes / name
        home.mkdir()
        for bar in programs:
            for path, text in bar.files.items():
                (home / path).parent.mkdir(parents=True, exist_ok=True)
                (home / path).write_text(text, encoding="utf-8")
        run = self.folder / name
        run.mkdir(mode=0o700)
        env = {"PATH": os.environ["PATH"], "LANG": "C.UTF-8", "HOME": str(home),
               "XDG_RUNTIME_DIR": str(run), "DISPLAY": self.display,
               "DBUS_SESSION_BUS_ADDRESS": f"unix:path={run}/bus"}
        bus = self.spawn(["dbus-daemon", "--session", "--nofork", "--nopidfile",
                          "--address", env["DBUS_SESSION_BUS_ADDRESS"]], env)
        try:
            wait_for(run / "bus")
            yield env
        finally:
            processes.end_all(bus.pid)


def wait_for(path: Path) -> None:
    deadline = time.monotonic() + 5
    while not path.exists():
        if time.monotonic() > deadline:
            raise NotMeasured("the session bus did not start")
        time.sleep(0.01)


class Problems:
    """Counts and reports what could not be measured."""

    def __init__(self) -> None:
        self.count = 0

    @contextmanager
    def caught(self, what: str):
        try:
            yield
        except (NotMeasured, OSError) as problem:
            self.count += 1
            note(f"NOT MEASURED: {what}: {problem}")


def measure_starts(desktop: Desktop, env: dict[str, str], chosen: list[bars.Bar],
                   results: dict[str, report.Result], rounds: int, problems: Problems) -> None:
    """Starts each bar once per round, so noise affects all alike. The first round is not counted."""
    failed: set[str] = set()
    for turn in range(rounds + 1):
        for bar in chosen:
            if bar.name in failed:
                continue
            with problems.caught(f"start of {bar.name}"):
                failed.add(bar.name)
                times = start_once(desktop, env, bar)
                failed.remove(bar.name)
                if turn > 0:
                    result = results[bar.name]
                    for series, value in zip((result.mapped, result.painted, result.text), times):
                        series.append(value)


def start_once(desktop: Desktop, env: dict[str, str], bar: bars.Bar) -> list[int]:
    watch = subprocess.run(
        [desktop.watcher, "start", str(START_LIMIT_MS), *bar.command],
        env=env, stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace",
        check=False)
    if watch.returncode != 0:
        raise NotMeasured(" / ".join(watch.stderr.splitlines()[-3:]))
    return [int(word) for word in watch.stdout.split()]


@contextmanager
def running(desktop: Desktop, env: dict[str, str], bar: bars.Bar):
    """Runs a bar and, after the warm-up, yields its processes. Raises if these change in between."""
    leader = desktop.spawn(bar.command, env)
    try:
        time.sleep(WARM_UP_SECONDS)
        pids = processes.family(leader.pid)
        if not pids:
            raise NotMeasured(f"it exited: {desktop.last_words()}")
        yield pids
        if processes.family(leader.pid) != pids:
            raise NotMeasured("its processes changed during the measurement")
    finally:
        processes.end_all(leader.pid)


def sleep_until(wall: float) -> None:
    time.sleep(max(0.0, wall - time.time()))


def measure_with_seconds(desktop: Desktop, env: dict[str, str], bar: bars.Bar,
                         result: report.Result, seconds: int) -> None:
    """Measures memory after the warm-up, then CPU time, wake-ups and the delay of each tick."""
    with running(desktop, env, bar) as pids:
        result.memory = processes.memory(pids)
        strangers = processes.strangers_sharing_toolkits()
        begin = int(time.time()) + 1.5
        sleep_until(begin)
        before = processes.usage(pids)
        watch = subprocess.Popen([desktop.watcher, "ticks", str(seconds)], env=env,
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        sleep_until(begin + seconds)
        result.with_seconds = processes.usage(pids).since(before)
        if strangers:
            measure_memory_again(bar, pids, result)
        output, errors = watch.communicate(timeout=5)
        if watch.returncode != 0:
            raise NotMeasured(errors.strip())
        result.ticks = [int(line) for line in output.split()]


def measure_memory_again(bar: bars.Bar, pids: list[int], result: report.Result) -> None:
    """Measures memory again, because other programs shared the bar's libraries the first time."""
    strangers = processes.strangers_sharing_toolkits()
    if strangers:
        note(f"PSS of {bar.name} reads low: it may share libraries with {', '.join(strangers)}")
    result.memory = max(result.memory, processes.memory(pids), key=lambda memory: memory.pss)


def measure_with_minutes(desktop: Desktop, chosen: list[bars.Bar],
                         results: dict[str, report.Result], seconds: int,
                         problems: Problems) -> None:
    """Measures CPU time and wake-ups of all bars together around one change of the minute.

    Each bar has its own session, so two of them can own the same bus name.
    """
    with ExitStack() as stack:
        leaders = {}
        for number, bar in enumerate(chosen):
            env = stack.enter_context(desktop.session(f"minutes-{number}", [bar]))
            leaders[bar.name] = desktop.spawn(bar.command, env).pid
            stack.callback(processes.end_all, leaders[bar.name])
        time.sleep(WARM_UP_SECONDS)
        half = seconds / 2
        minute = 60 * (int(time.time() + half + 1) // 60 + 1)
        families = {name: processes.family(leader) for name, leader in leaders.items()}
        moments: dict[str, list[processes.Usage]] = {name: [] for name in leaders}
        for offset in (-half, -TICK_BEFORE, TICK_AFTER, half):
            sleep_until(minute + offset)
            for name, pids in families.items():
                if pids and processes.family(leaders[name]) == pids:
                    moments[name].append(processes.usage(pids))
        for name, usages in moments.items():
            with problems.caught(f"{name} with minutes"):
                store_minutes(results[name], usages)


def store_minutes(result: report.Result, usages: list[processes.Usage]) -> None:
    if len(usages) != 4:
        raise NotMeasured("it exited or its processes changed during the measurement")
    first, tick_begins, tick_ended, last = usages
    result.with_minutes = last.since(first)
    between, after = tick_begins.since(first), last.since(tick_ended)
    result.between_ticks = processes.Usage(between.cpu_ns + after.cpu_ns,
                                           between.wakeups + after.wakeups)


def parse_options() -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        prog="benchmarks/bar/run", description="Measures halvex-menubar beside other bars.")
    parser.add_argument("--rounds", type=int, default=FULL_ROUNDS, metavar="N",
                        help="starts of each bar (default: %(default)s)")
    parser.add_argument("--seconds", type=int, default=FULL_SECONDS, metavar="N",
                        help="length of each period, 10 to 60 (default: %(default)s)")
    parser.add_argument("--only", action="append", metavar="NAME",
                        help="measure only this bar; can be repeated")
    parser.add_argument("--toggle", action="store_true",
                        help="only measure how long halvexctl takes to turn the product's clock on")
    parser.add_argument("--against", type=Path, metavar="DIR",
                        help="compare with the bar of another build tree: starts in pairs, "
                             "instructions, system calls")
    parser.add_argument("--markdown", action="store_true", help="print Markdown tables")
    parser.add_argument("--build", type=Path, metavar="DIR",
                        help="the build tree under test (default: build/release)")
    parser.add_argument("--programs", type=Path, required=True, help=argparse.SUPPRESS)
    parser.add_argument("--tree", type=Path, required=True, help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.rounds < 2 or not 10 <= options.seconds <= 60:
        parser.error("--rounds must be at least 2, and --seconds 10 to 60")
    options.build = (options.build or options.tree / "build" / "release").resolve()
    known = [bar.name for bar in bars.all_bars(options.build, options.programs, True)]
    for name in options.only or []:
        if name not in known:
            parser.error(f"unknown bar '{name}'; known bars: {'; '.join(known)}")
    options.only = options.only or known
    return options


def caption(options: argparse.Namespace) -> str:
    text = (f"{options.rounds} starts each, median (quartiles); memory after {WARM_UP_SECONDS} s; "
            f"CPU and wake-ups over {options.seconds} s with seconds shown (s) and with minutes "
            "(min).")
    if options.rounds < FULL_ROUNDS or options.seconds < FULL_SECONDS:
        text = "QUICK LOOK, not comparable with full runs. " + text
    return text


def measure(options: argparse.Namespace, stack: ExitStack) -> tuple[list[report.Result], int]:
    problems = Problems()

    def chosen(with_seconds: bool) -> list[bars.Bar]:
        every = bars.all_bars(options.build, options.programs.resolve(), with_seconds)
        return [bar for bar in every if bar.name in options.only and not bar.missing_program()]

    results = {name: report.Result(name) for name in options.only}
    for bar in bars.all_bars(options.build, options.programs.resolve(), True):
        missing = bar.missing_program()
        if bar.name in options.only and missing:
            problems.count += 1
            note(f"NOT MEASURED: {bar.name}: {Path(missing).name} is not built; ./run builds it")

    desktop = Desktop(options.programs.resolve(), stack)
    with desktop.session("seconds", chosen(True)) as env:
        note("Starts ...")
        measure_starts(desktop, env, chosen(True), results, options.rounds, problems)
        for bar in chosen(True):
            note(f"{bar.name} with seconds ...")
            with problems.caught(f"{bar.name} with seconds"):
                measure_with_seconds(desktop, env, bar, results[bar.name], options.seconds)
    note("All with minutes ...")
    with problems.caught("the bars with minutes"):
        measure_with_minutes(desktop, chosen(False), results, options.seconds, problems)
    return list(results.values()), problems.count


def main() -> int:
    options = parse_options()
    processes.adopt_orphans()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    try:
        with ExitStack() as stack:
            if options.toggle:
                return toggle.measure(Desktop(options.programs, stack), options.build)
            if options.against:
                return compare.measure(Desktop(options.programs, stack), start_once,
                                       options.build, options.against.resolve(),
                                       max(options.rounds, compare.LEAST_PAIRS))
            results, problems = measure(options, stack)
    except KeyboardInterrupt:
        note("Interrupted.")
        return 1
    except (NotMeasured, OSError, subprocess.SubprocessError) as problem:
        note(f"NOT MEASURED: {problem}")
        return 1
    print(report.render(results, caption(options), options.markdown))
    if problems:
        note(f"{problems} measurement(s) failed, see above.")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
