#pragma once

namespace platform {
class FileManager;
}

namespace paths {

/// Creates the user's Library folder, and "Application Support" and "Preferences" in it, if they
/// are missing. Call this before writing there, because new home folders on this system do not
/// contain them. Failures are not reported: writing to a missing folder then fails.
void makeHomeFolders(platform::FileManager& files);

} // namespace paths
