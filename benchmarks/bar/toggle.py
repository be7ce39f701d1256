"""Measures 20 times how long it takes from the start of halvexctl until the product's clock is drawn.

Run by "run --toggle", with the same bar and screen as the other measurements. The exit code is 1 if
something could not be measured or the target is missed.
"""

import statistics
import subprocess
import time
from pathlib import Path

ROUNDS = 20
LIMIT_MS = 10_000
TARGET_MS = 150
SETTLE_SECONDS = 0.5


def measure(desktop, build: Path) -> int:
    ctl = str(build / "bin" / "halvexctl")
    with desktop.session("toggle", []) as env:
        def run(*words: str) -> str:
            return subprocess.run(words, env=env, check=True, stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL, text=True).stdout

        run(ctl, "pane", "install")
        run(ctl, "menubar", "start")
        times = []
        for _ in range(ROUNDS):
            time.sleep(SETTLE_SECONDS)
            output = run(desktop.watcher, "change", str(LIMIT_MS), ctl, "toggle", "1", "on")
            times.append(int(output) / 1000)
            time.sleep(SETTLE_SECONDS)
            run(ctl, "toggle", "1", "off")
        run(ctl, "menubar", "stop")
    median = statistics.median(times)
    print(f"toggle on, from the start of halvexctl to the clock on the screen, {ROUNDS} times: "
          f"median {median:.1f} ms, {min(times):.1f} to {max(times):.1f} (target: {TARGET_MS})")
    return 0 if median < TARGET_MS else 1
