#pragma once

namespace warnings {

/// Starts the background application, which rings the warnings that are set while no clock runs,
/// unless it is running. It shows no window. Returns immediately: searches for the application on a
/// detached thread. Logs the reason if it cannot be started. Main thread only.
void startBackgroundKeeper();

} // namespace warnings
