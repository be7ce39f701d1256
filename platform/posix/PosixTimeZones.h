#pragma once

#include "platform/TimeZones.h"

#include <array>
#include <cstdint>
#include <map>
#include <mutex>
#include <set>

namespace platform::posix {

/// Reads the files of the tz database and keeps their rules until the files change.
class PosixTimeZones final : public TimeZones {
  public:
    /// @p zoneFile is the file, or the link to it, that holds the system's time zone.
    PosixTimeZones();
    explicit PosixTimeZones(std::string zoneFile);

    std::optional<ZoneRules> zone(std::string_view name) override;
    std::vector<std::string> names() override;
    ZoneRules local() override;
    std::string localName() override;
    std::unique_ptr<Watch> watchLocal(std::function<void()> handler) override;

  private:
    /// Equal as long as a file has not changed.
    using Version = std::array<std::int64_t, 6>;
    struct Entry {
        std::optional<Version> version; ///< std::nullopt if the file is missing
        std::optional<ZoneRules> rules;
    };

    static std::optional<Version> versionOf(const std::string& path);
    std::optional<ZoneRules> find(std::string_view name);
    std::optional<ZoneRules> findLocal();
    std::optional<ZoneRules> read(const std::string& path);
    void refuseName(std::string_view name);

    std::string zoneFile_;
    std::mutex mutex_;
    std::map<std::string, Entry, std::less<>> entries_; ///< by path
    std::set<std::string, std::less<>> invalidNames_;   ///< that have been logged
};

} // namespace platform::posix
