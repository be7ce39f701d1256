#pragma once

#include "platform/posix/SystemCalls.h"

#include <cerrno>
#include <unistd.h>

namespace test {

/// Fails call number @p first, or that and all later ones, with @p error; with kExit, exits the
/// process instead. Each write that succeeds writes only half of its bytes.
class FailingCalls final : public platform::posix::SystemCalls {
    using Real = platform::posix::SystemCalls;

  public:
    enum class Times { Once, ForGood };
    static constexpr int kExit = -1;
    FailingCalls(int first, int error, Times times) : left_(first), error_(error), times_(times) {}

    bool failed() const { return left_ <= 0; }

    int open(const std::string& path, int flags, mode_t mode) override {
        return fails() ? -1 : Real::open(path, flags, mode);
    }
    int openAt(int folder, const std::string& name, int flags, mode_t mode) override {
        return fails() ? -1 : Real::openAt(folder, name, flags, mode);
    }
    ssize_t write(int file, const char* bytes, std::size_t size) override {
        return fails() ? -1 : Real::write(file, bytes, (size + 1) / 2);
    }
    int setMode(int file, mode_t mode) override { return fails() ? -1 : Real::setMode(file, mode); }
    int flush(int file) override { return fails() ? -1 : Real::flush(file); }
    int makeFolder(int folder, const std::string& name, mode_t mode) override {
        return fails() ? -1 : Real::makeFolder(folder, name, mode);
    }
    int makeLink(const std::string& target, int folder, const std::string& name) override {
        return fails() ? -1 : Real::makeLink(target, folder, name);
    }
    int renameWithoutReplacing(int fromFolder, const std::string& from, int toFolder,
                               const std::string& to) override {
        return fails() ? -1 : Real::renameWithoutReplacing(fromFolder, from, toFolder, to);
    }
    int exchange(int oneFolder, int otherFolder, const std::string& name) override {
        return fails() ? -1 : Real::exchange(oneFolder, otherFolder, name);
    }
    int rename(int folder, const std::string& from, const std::string& to) override {
        return fails() ? -1 : Real::rename(folder, from, to);
    }

  private:
    bool fails() {
        --left_;
        if (left_ == 0 && error_ == kExit)
            ::_exit(0);
        errno = error_;
        return times_ == Times::Once ? left_ == 0 : left_ <= 0;
    }

    int left_;
    int error_;
    Times times_;
};

} // namespace test
