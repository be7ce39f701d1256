#pragma once

#include "platform/posix/PosixWorkspace.h"

namespace platform::qt {

/// A workspace that uses the desktop's programs and the session bus.
class QtWorkspace final : public posix::PosixWorkspace {
  public:
    /// Calls org.freedesktop.FileManager1.ShowItems on the session bus without waiting, and always
    /// returns true. If the call fails, opens the parent folder; if no program can open it, logs
    /// "folder %@ cannot be shown: no program opens it". @p rootPath is ignored.
    bool selectFile(const std::string& path, const std::string& rootPath) override;
    using PosixWorkspace::openFile;
    bool openFile(const std::string& path) override;
    void bringToFront(ProcessSerialNumber process) override;
};

} // namespace platform::qt
