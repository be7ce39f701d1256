#pragma once

#include "platform/base/Service.h"
#include "platform/posix/PosixFileManager.h"

namespace apps {

/// While it lives the library's operations make no folders, so that asking them where things are
/// leaves no trace. Everything else is as the system's files are.
class Looking {
  public:
    /// @p root is put before /Library.
    explicit Looking(const std::string& root) : files_(root) {}

  private:
    class Files final : public platform::posix::PosixFileManager {
      public:
        using PosixFileManager::PosixFileManager;
        bool createDirectory(const std::string&) override { return true; }
    };

    Files files_;
    platform::ScopedService<platform::FileManager> guard_{files_};
};

} // namespace apps
