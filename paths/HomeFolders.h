#pragma once

namespace platform {
class FileManager;
}

namespace paths {

/// Makes the user's Library and in it "Application Support" and "Preferences", where they are
/// missing. The system that this layout comes from puts them into every home folder; here a program
/// that is going to write there does. Failures show when it writes.
void makeHomeFolders(platform::FileManager& files);

} // namespace paths
