"""The processes of a program, and their memory, CPU time and wake-ups."""

import ctypes
import os
import signal
import time
from collections import Counter
from dataclasses import dataclass
from pathlib import Path

PR_SET_CHILD_SUBREAPER = 36


def adopt_orphans() -> None:
    """Makes this process the parent of every descendant whose own parent exits."""
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def _parents_and_sessions() -> dict[int, tuple[int, int]]:
    table = {}
    for entry in Path("/proc").iterdir():
        if not entry.name.isdigit():
            continue
        try:
            fields = (entry / "stat").read_text().rpartition(")")[2].split()
        except OSError:
            continue
        if fields[0] != "Z":
            table[int(entry.name)] = (int(fields[1]), int(fields[3]))
    return table


def family(leader: int) -> list[int]:
    """Returns the process, its descendants, and orphans in its session."""
    table = _parents_and_sessions()

    def belongs(pid: int) -> bool:
        if pid in table and table[pid][1] == leader:
            return True
        while pid in table and pid != leader:
            pid = table[pid][0]
        return pid == leader

    return sorted(pid for pid in table if belongs(pid))


def end_all(leader: int, patience: float = 2.0) -> None:
    """Stops the process and its family with SIGTERM, then SIGKILL."""
    for sig in (signal.SIGTERM, signal.SIGKILL):
        for pid in family(leader):
            if pid != os.getpid():
                _kill(pid, sig)
        deadline = time.monotonic() + patience
        while time.monotonic() < deadline:
            _reap(leader)
            if not [pid for pid in family(leader) if pid != os.getpid()]:
                return
            time.sleep(0.01)


def _kill(pid: int, sig: int) -> None:
    try:
        os.kill(pid, sig)
    except ProcessLookupError:
        pass


def _reap(leader: int) -> None:
    try:
        os.waitpid(leader if leader != os.getpid() else -1, os.WNOHANG)
    except ChildProcessError:
        pass


@dataclass(frozen=True)
class Memory:
    """The sum over all processes, in KiB."""

    pss: int
    rss: int
    private_dirty: int


# PSS divides a page among all processes that map it, so another process that maps these libraries
# lowers the PSS of a bar.
SHARED_TOOLKITS = ("/libQt6Gui.so", "/libgtk-3.so", "/libcairo.so")


def strangers_sharing_toolkits() -> list[str]:
    """Returns the names of the processes outside this one's family that map a toolkit's library."""
    ours = set(family(os.getpid()))
    names = []
    for pid in _parents_and_sessions().keys() - ours:
        try:
            maps = Path(f"/proc/{pid}/maps").read_text(errors="replace")
            if any(toolkit in maps for toolkit in SHARED_TOOLKITS):
                names.append(Path(f"/proc/{pid}/comm").read_text().strip())
        except OSError:
            continue
    return sorted(set(names))


def memory(pids: list[int]) -> Memory:
    total: Counter[str] = Counter()
    for pid in pids:
        for line in Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()[1:]:
            key, value, *_ = line.split()
            total[key] += int(value)
    return Memory(total["Pss:"], total["Rss:"], total["Private_Dirty:"])


@dataclass(frozen=True)
class Usage:
    """CPU time and wake-ups, either since the start or between two moments."""

    cpu_ns: Counter[int]
    # (process, thread, name of the thread) -> voluntary context switches
    wakeups: Counter[tuple[int, int, str]]

    def since(self, earlier: "Usage") -> "Usage":
        cpu = Counter(self.cpu_ns)
        cpu.subtract({pid: ns for pid, ns in earlier.cpu_ns.items() if pid in self.cpu_ns})
        wakeups = Counter(self.wakeups)
        wakeups.subtract({key: n for key, n in earlier.wakeups.items() if key in self.wakeups})
        return Usage(cpu, wakeups)

    def cpu_ms(self) -> float:
        return sum(self.cpu_ns.values()) / 1e6

    def total_wakeups(self) -> int:
        return sum(self.wakeups.values())

    def wakeups_by_thread(self) -> dict[str, int]:
        by_name: Counter[str] = Counter()
        for (_, _, name), count in self.wakeups.items():
            by_name[name] += count
        return dict(by_name.most_common())


def usage(pids: list[int]) -> Usage:
    """Returns CPU time, which includes that of exited threads, and wake-ups since the start."""
    cpu: Counter[int] = Counter()
    wakeups: Counter[tuple[int, int, str]] = Counter()
    for pid in pids:
        cpu[pid] = time.clock_gettime_ns(_cpu_clock(pid))
        for task in Path(f"/proc/{pid}/task").iterdir():
            status = dict(
                line.split(":\t", 1) for line in (task / "status").read_text().splitlines()
            )
            key = (pid, int(task.name), status["Name"])
            wakeups[key] = int(status["voluntary_ctxt_switches"])
    return Usage(cpu, wakeups)


def _cpu_clock(pid: int) -> int:
    """Returns the clock of clock_getcpuclockid(): the CPU time of all threads of `pid`."""
    return (~pid << 3) | 2
