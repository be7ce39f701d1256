"""The tables of results and targets, as text or Markdown."""

import statistics
from dataclasses import dataclass, field

import bars
from processes import Memory, Usage


@dataclass
class Result:
    """The measurements of one bar; what could not be measured stays empty."""

    name: str
    # Microseconds from exec, one per start.
    mapped: list[int] = field(default_factory=list)
    painted: list[int] = field(default_factory=list)
    text: list[int] = field(default_factory=list)
    memory: Memory | None = None
    with_seconds: Usage | None = None
    # With minutes only: the whole period, and its part away from the change of the minute.
    with_minutes: Usage | None = None
    between_ticks: Usage | None = None
    # Microseconds from the start of a second to changed pixels, one per second.
    ticks: list[int] = field(default_factory=list)


NOTHING = "-"


def _spread(microseconds: list[int]) -> str:
    if len(microseconds) < 2:
        return NOTHING
    low, middle, high = statistics.quantiles([value / 1000 for value in microseconds], n=4)
    return f"{middle:.1f} ({low:.1f}-{high:.1f})"


def _mib(kib: int) -> str:
    return f"{kib / 1024:.1f}"


def _cpu(usage: Usage | None) -> str:
    return f"{usage.cpu_ms():.1f}" if usage else NOTHING


def _wakeups(usage: Usage | None) -> str:
    return str(usage.total_wakeups()) if usage else NOTHING


COLUMNS = {
    "bar": lambda r: r.name,
    "mapped ms": lambda r: _spread(r.mapped),
    "first pixel ms": lambda r: _spread(r.painted),
    "clock drawn ms": lambda r: _spread(r.text),
    "PSS MiB": lambda r: _mib(r.memory.pss) if r.memory else NOTHING,
    "RSS MiB": lambda r: _mib(r.memory.rss) if r.memory else NOTHING,
    "dirty MiB": lambda r: _mib(r.memory.private_dirty) if r.memory else NOTHING,
    "s: CPU ms": lambda r: _cpu(r.with_seconds),
    "s: wake-ups": lambda r: _wakeups(r.with_seconds),
    "min: CPU ms": lambda r: _cpu(r.with_minutes),
    "min: wake-ups": lambda r: _wakeups(r.with_minutes),
    "between ticks": lambda r: _wakeups(r.between_ticks),
    "tick to pixels ms": lambda r: _spread(r.ticks),
}


@dataclass(frozen=True)
class Target:
    title: str
    value: object
    # The highest value that meets the target; a multiple of the yardstick's value if `relative`.
    limit: float
    relative: bool = True


TARGETS = [
    Target("first pixel ms", lambda r: statistics.median(r.painted) / 1000 if r.painted else None,
           1.5),
    Target("clock drawn ms", lambda r: statistics.median(r.text) / 1000 if r.text else None, 1.5),
    Target("PSS MiB", lambda r: r.memory.pss / 1024 if r.memory else None, 1.6),
    Target("CPU ms with seconds",
           lambda r: r.with_seconds.cpu_ms() if r.with_seconds else None, 1.5),
    Target("wake-ups between the minutes' ticks",
           lambda r: r.between_ticks.total_wakeups() if r.between_ticks else None, 0,
           relative=False),
]


def _target_row(target: Target, ours: Result, yardstick: Result | None) -> list[str]:
    value = target.value(ours)
    base = 1.0
    if target.relative:
        base = target.value(yardstick) if yardstick else None
    if value is None or base is None:
        return [target.title, NOTHING, NOTHING, "not measured"]
    limit = target.limit * base
    wanted = f"{limit:.1f}"
    if target.relative:
        wanted += f" ({target.limit} x {bars.YARDSTICK}'s {base:.1f})"
    return [target.title, f"{value:.1f}", wanted, "holds" if value <= limit else "MISSED"]


def _table(header: list[str], rows: list[list[str]], markdown: bool) -> str:
    widths = [max(len(row[i]) for row in [header, *rows]) for i in range(len(header))]

    def line(cells: list[str]) -> str:
        padded = [cells[0].ljust(widths[0])]
        padded += [cell.rjust(width) for cell, width in zip(cells[1:], widths[1:])]
        return "| " + " | ".join(padded) + " |" if markdown else "  ".join(padded).rstrip()

    rule = ["-" * width if i == 0 else "-" * (width - 1) + ":" for i, width in enumerate(widths)]
    return "\n".join([line(header), line(rule if markdown else ["-" * w for w in widths])]
                     + [line(row) for row in rows])


def render(results: list[Result], caption: str, markdown: bool) -> str:
    """Returns the caption, the tables, and our bar's wake-ups by thread."""
    parts = [caption]
    parts.append(_table(list(COLUMNS), [[cell(result) for cell in COLUMNS.values()]
                                        for result in results], markdown))
    by_name = {result.name: result for result in results}
    ours = by_name.get(bars.OURS)
    if ours:
        rows = [_target_row(target, ours, by_name.get(bars.YARDSTICK)) for target in TARGETS]
        parts.append(_table(["target", bars.OURS, "at most", "verdict"], rows, markdown))
        parts += [_threads(title, measured) for title, measured in (
            ("with seconds", ours.with_seconds),
            ("with minutes", ours.with_minutes),
            ("between the minutes' ticks", ours.between_ticks)) if measured]
    return "\n\n".join(parts)


def _threads(title: str, measured: Usage) -> str:
    threads = ", ".join(f"{name} {n}" for name, n in measured.wakeups_by_thread().items())
    return f"Wake-ups by thread of {bars.OURS} {title}: {threads or 'none'}."
