#pragma once

#include "platform/posix/PosixWorkspace.h"

namespace platform::qt {

/// The freedesktop services of the session.
class QtWorkspace final : public posix::PosixWorkspace {
  public:
    /// Asks the file manager on the session bus (org.freedesktop.FileManager1); when there is none
    /// it opens the folder that the file is in.
    bool selectFile(const std::string& path, const std::string& rootPath) override;
    using PosixWorkspace::openFile;
    bool openFile(const std::string& path) override;
    void bringToFront(ProcessSerialNumber process) override;
};

} // namespace platform::qt
