#pragma once

#include "platform/Log.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace halvextest {

/// Replaces the system log, and records its lines, for the lifetime of the object.
class RecordingLog final : public platform::Log {
  public:
    void write(std::string_view line) override {
        const std::lock_guard lock(mutex_);
        lines_.emplace_back(line);
    }
    void beep() override { ++beeps_; }

    /// Returns the lines written since the last call, oldest first.
    std::vector<std::string> take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }
    bool contains(std::string_view part) const {
        const std::lock_guard lock(mutex_);
        return std::any_of(lines_.begin(), lines_.end(), [&](const std::string& line) {
            return line.find(part) != std::string::npos;
        });
    }
    int beeps() const { return beeps_; }

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
    std::atomic<int> beeps_ = 0;
    platform::ScopedService<platform::Log> service_{*this};
};

} // namespace halvextest
