#pragma once

namespace platform {
class FileManager;
}

namespace paths {

/// Creates the user's Library folder, and "Application Support" and "Preferences" in it, if they
/// are missing. A program calls this before it writes there, because home folders on this system do
/// not come with them. Failures are not reported: they show when the program writes.
void makeHomeFolders(platform::FileManager& files);

} // namespace paths
