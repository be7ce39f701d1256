#pragma once

#include "extras/icalendar/Calendar.h"
#include "platform/base/NonCopyable.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace extras::icalendar {

/// The iCalendar files in a folder. Main thread only.
class CalendarFolder : platform::NonCopyable {
  public:
    explicit CalendarFolder(std::string path) : path_(std::move(path)) {}

    struct File {
        /// What changes when the file is replaced or written to.
        struct Version {
            std::uint64_t device = 0;
            std::uint64_t number = 0;
            std::int64_t size = 0;
            std::array<std::int64_t, 4> times{};
            friend bool operator==(const Version&, const Version&) = default;
        };
        Version version;
        Calendar calendar{};
        bool isBroken = false; ///< whether something in it could not be read
    };

    /// Reads the files that are new or have changed, and forgets those that have been removed. Logs
    /// what cannot be read, once until the file changes.
    void update();

    const std::string& path() const { return path_; }
    /// By name. At most 64.
    std::map<std::string, File>& files() { return files_; }
    const std::map<std::string, File>& files() const { return files_; }

  private:
    std::vector<std::string> names();
    void read(const std::string& name, File& file) const;

    std::string path_;
    std::map<std::string, File> files_;
    bool isReadable_ = true;
    bool hasTooMany_ = false;
};

} // namespace extras::icalendar
