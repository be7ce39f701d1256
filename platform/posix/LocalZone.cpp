#include "platform/posix/LocalZone.h"

#include "platform/FileManager.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <utility>

namespace platform::posix {
namespace {

/// Returns the name of a file in the tz database, or an empty string for any other file.
std::string zoneOfFile(std::string_view path) {
    constexpr std::string_view kDatabase = "/zoneinfo/";
    const auto found = path.find(kDatabase);
    return std::string(found == std::string_view::npos ? ""
                                                       : path.substr(found + kDatabase.size()));
}

} // namespace

std::string_view zoneInEnvironment() {
    const char* const value = std::getenv("TZ");
    std::string_view zone = value ? value : "";
    if (zone.starts_with(':'))
        zone.remove_prefix(1);
    return zone;
}

std::string localZoneName(const std::string& zoneFile) {
    const std::string_view zone = zoneInEnvironment();
    if (zone.starts_with('/'))
        return zoneOfFile(zone);
    if (!zone.empty() || std::getenv("TZ"))
        return std::string(zone);
    std::error_code ignored;
    return zoneOfFile(std::filesystem::read_symlink(zoneFile, ignored).string());
}

std::unique_ptr<Watch> watchLocalZone(const std::string& zoneFile, std::function<void()> handler) {
    return fileManager().watchFile(zoneFile, [handler = std::move(handler)] {
        tzset();
        handler();
    });
}

} // namespace platform::posix
