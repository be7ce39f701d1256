#pragma once

/// How the menu bar and its watcher start each other. The watcher's command line is
///
///     PROCESS HANDLE JOURNAL TIMER PROGRAM ARGUMENT...
///
/// the bar's process identifier, three inherited file descriptors (a process handle of the bar, the
/// crash journal, the hang timer or -1), and the bar's program and arguments.
namespace apps {

/// Set in the environment of a bar that the watcher starts, to "WATCHER JOURNAL TIMER": the
/// watcher's process identifier and two inherited file descriptors.
inline constexpr const char* kWatcherVariable = "HALVEX_MENUBAR_WATCHER";

} // namespace apps
