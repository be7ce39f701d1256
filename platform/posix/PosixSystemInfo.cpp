#include "platform/posix/PosixSystemInfo.h"

#include "platform/Defaults.h"
#include "platform/Operation.h"
#include "platform/posix/LocalZone.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <sys/utsname.h>
#include <system_error>
#include <utility>

namespace platform::posix {
namespace {

/// Removes a number and the dot after it from the start of @p text. Returns the number, UINT32_MAX
/// for a larger one, or std::nullopt if @p text does not start with a number.
std::optional<std::uint32_t> takeNumber(std::string_view& text) {
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() && error != std::errc::result_out_of_range)
        return std::nullopt;
    text = std::string_view(next, end);
    if (text.starts_with('.'))
        text.remove_prefix(1);
    else
        text = {};
    return error == std::errc() ? number : UINT32_MAX;
}

} // namespace

std::optional<std::uint32_t> encodedVersion(std::string_view release) {
    const auto major = takeNumber(release);
    if (!major)
        return std::nullopt;
    const std::uint32_t whole = std::min(*major, 99U);
    const std::uint32_t minor = std::min(takeNumber(release).value_or(0), 15U);
    const std::uint32_t patch = std::min(takeNumber(release).value_or(0), 15U);
    return (whole / 10) << 12 | (whole % 10) << 8 | minor << 4 | patch;
}

PosixSystemInfo::PosixSystemInfo(std::string zoneFile) : zoneFile_(std::move(zoneFile)) {}

std::optional<std::uint32_t> PosixSystemInfo::query(SystemFact fact) const {
    utsname system{};
    if (fact != SystemFact::SystemVersion || ::uname(&system) != 0)
        return std::nullopt;
    return encodedVersion(system.release);
}

TimeZone PosixSystemInfo::systemTimeZone() const {
    return guardedOperation([&]() -> TimeZone {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        tzset(); // localtime_r alone may use the previous zone
        localtime_r(&now, &local);
        const std::string name = localZoneName(zoneFile_);
        return {.name = name.empty() ? local.tm_zone : name,
                .abbreviation = local.tm_zone,
                .secondsFromGMT = static_cast<std::int32_t>(local.tm_gmtoff)};
    });
}

} // namespace platform::posix

platform::SystemInfo& platform::defaults::systemInfo() {
    static posix::PosixSystemInfo info;
    return info;
}
