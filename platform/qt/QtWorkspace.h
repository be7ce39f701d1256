#pragma once

#include "platform/Workspace.h"
#include "platform/posix/OpenURL.h"
#include "platform/posix/Trash.h"

namespace platform::qt {

/// The freedesktop services of the session.
class QtWorkspace final : public Workspace {
  public:
    /// Asks the file manager on the session bus (org.freedesktop.FileManager1); when there is none
    /// it opens the folder that the file is in.
    bool selectFile(const std::string& path, const std::string& rootPath) override;
    bool openFile(const std::string& path) override;
    /// Not through Qt, whose URLs are not spelled as they came: "%0d" would become "%0D".
    bool openURL(const std::string& url) override { return posix::openURL(url); }
    bool recycle(const std::string& path) override { return posix::moveToTrash(path); }
};

} // namespace platform::qt
