#pragma once

#include "paths/WorldLocation.h"
#include "platform/base/NonCopyable.h"
#include "platform/base/Watch.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace extras {

/// A location of the user's list.
struct WorldClock {
    std::string name;     ///< to show; never empty
    std::string zoneName; ///< in the tz database; the zone may not exist
    std::optional<paths::Coordinates> coordinates{};
    bool isInBar = false;
    std::string barFormat{}; ///< a usable clock format, or empty for the default
};

/// What the clocks at a location show at some instant.
struct WorldTime {
    std::string time;                ///< without seconds, such as "14:05" or "2:05 PM"
    int dayDifference = 0;           ///< its date minus the local date, in days
    std::int32_t secondsFromUTC = 0; ///< positive east of Greenwich
    std::int32_t secondsAhead = 0;   ///< of the local time; negative if it is behind
    std::optional<bool> isDay{};     ///< whether the sun is up, if the coordinates are known
};

/// Returns the time at a location at @p instant, in seconds since 1970-01-01 00:00:00 UTC, or
/// std::nullopt if its zone cannot be used. Main thread only, like the other functions here.
std::optional<WorldTime> worldTime(const WorldClock& clock, std::int64_t instant);

/// Returns "+1", "−1", or an empty text for 0.
std::string dayDifferenceText(int days);
/// Returns a time difference as "+5:45 h", "−3 h" or "±0 h".
std::string offsetText(std::int32_t seconds);
/// Returns the time and, unless it is 0, the day difference: "07:05 +1".
std::string timeWithDay(const WorldTime& time);

/// The location list as the items show it. Read from the files when it is first needed, and again
/// after they have changed. Main thread only.
class WorldClocks : platform::NonCopyable {
  public:
    /// Reads nothing yet. After the list has been read, or watchFiles has been called, calls
    /// @p changeHandler when the files have changed. The list is read again when it is next needed.
    explicit WorldClocks(std::function<void()> changeHandler = {});

    /// Returns the locations that the user has chosen, in list order: all of them if there is a
    /// location file, otherwise only those of subscriptions. Leaves out records without a name.
    /// References stay valid until the next call after a change.
    const std::vector<WorldClock>& list();
    /// Returns the records of list(), in the same order.
    const std::vector<paths::WorldLocation>& records();
    /// Returns why the location file exists but cannot be read, or an empty text. Logged once.
    const std::string& error();

    /// Starts to observe the files, also if they do not exist, without reading them.
    void watchFiles();
    /// Returns whether there is a file with locations. Reads nothing.
    static bool exist();

  private:
    void load();

    std::function<void()> changeHandler_;
    std::vector<WorldClock> clocks_;
    std::vector<paths::WorldLocation> records_;
    std::string error_;
    std::vector<std::unique_ptr<platform::Watch>> watches_;
    bool isLoaded_ = false;
};

} // namespace extras
