"""The bars to measure: how each is configured to show only a clock, and how it is started."""

from dataclasses import dataclass, field
from pathlib import Path

OURS = "halvex-menubar"
YARDSTICK = "polybar"

PREFERENCES = "Library/Preferences/com.quorvanesoftware.HalvexPro.plist"
PREFERENCES_TEXT = """<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
    <key>MenuClockFormat</key>
    <string>{format}</string>
</dict>
</plist>
"""


@dataclass(frozen=True)
class Bar:
    name: str
    command: list[str]
    # Path below the home folder -> text, written before the bar starts.
    files: dict[str, str] = field(default_factory=dict)

    def missing_program(self) -> str | None:
        """Returns the path in the command that does not exist, or None."""
        for word in self.command:
            if word.startswith("/") and not Path(word).exists():
                return word
        return None


def _peer_file(name: str, **values: str) -> str:
    text = (Path(__file__).parent / "peers" / name).read_text(encoding="utf-8")
    for key, value in values.items():
        text = text.replace(f"@{key}@", value)
    return text


def all_bars(build: Path, programs: Path, with_seconds: bool) -> list[Bar]:
    """Returns all bars, with seconds or only minutes. `build` is the build tree under test."""
    clock = "%H:%M:%S" if with_seconds else "%H:%M"
    preferences = {PREFERENCES: PREFERENCES_TEXT.format(format=clock)}
    menubar = str(build / "bin" / "halvex-menubar")
    time_menu = str(build / "extras" / "HalvexTimeMenu.menu")
    return [
        Bar(OURS, [menubar, time_menu], preferences),
        Bar(OURS + ", own clock only", [menubar], preferences),
        Bar("bare Qt", [str(programs / "bare-qt"), "HH:mm:ss" if with_seconds else "HH:mm"]),
        Bar(
            "polybar",
            ["polybar", "--quiet", "clock"],
            {
                ".config/polybar/config.ini": _peer_file(
                    "polybar.ini", FORMAT=clock, INTERVAL="1" if with_seconds else "60"
                )
            },
        ),
        Bar(
            "tint2",
            ["tint2"],
            {".config/tint2/tint2rc": _peer_file("tint2rc", FORMAT=clock)},
        ),
        Bar(
            "xfce4-panel",
            ["xfce4-panel", "--disable-wm-check"],
            {
                ".config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml": _peer_file(
                    "xfce4-panel.xml", FORMAT=clock
                )
            },
        ),
    ]
