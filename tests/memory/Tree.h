#pragma once

#include "tests/memory/FailedAllocations.h"
#include "tests/paths/SupportTree.h"

namespace test {

/// The real system calls, but without waiting for the disk.
class UnflushedCalls final : public platform::posix::SystemCalls {
    int flush(int) override { return 0; }
};

/// The real file manager in a temporary home folder and /Library.
class Tree : public testing::Test {
  protected:
    /// Returns @p text, and whether the tree contains a temporary entry.
    std::string withLeftovers(const std::string& text) const {
        for (const std::string& entry : tree.entries())
            if (entry.find("/.halvex-") != std::string::npos)
                return text + ", " + entry;
        return text;
    }

    SupportTree tree{{kUserProduct, kLocalMaker}};
    CountingLog log;
    UnflushedCalls calls;
    platform::posix::PosixFileManager files{tree.systemPath("/"), calls};
    platform::ScopedService<platform::FileManager> service{files};
};

} // namespace test
