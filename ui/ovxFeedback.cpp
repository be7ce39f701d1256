#include "ui/ovxFeedback.h"

#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/SystemInfo.h"
#include "platform/Workspace.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

using platform::SystemFact;
using platform::SystemInfo;

namespace {

#ifdef __i386__
constexpr std::string_view kProcessor = "Intel";
#else
// All other processors share this label, for compatibility.
constexpr std::string_view kProcessor = "PPC";
#endif

constexpr std::string_view kMessage =
    "?Subject=%@ %@ Feedback&body=I am using MacOS X %@ (%@) with %@ %@.\n\n"
    "My Local Time Zone: %@ [%@, GMT: %@]\nQuickTime Version: %@"
    "\n\nFeedback / Bug Report:\n\n";

/// Formats a version that is encoded like SystemFact::SystemVersion.
std::string versionText(std::uint32_t version) {
    return platform::formatLogLine("%x.%d.%d",
                                   {version >> 8 & 0xFF, (version & 0xFF) >> 4, version & 0x0F});
}

std::string systemVersion(const SystemInfo& system) {
    const std::uint32_t version = system.query(SystemFact::SystemVersion).value_or(0);
    // Queried for compatibility; the mail does not use them.
    for (const SystemFact fact : {SystemFact::BusClock, SystemFact::ProcessorClock,
                                  SystemFact::LogicalMemory, SystemFact::PhysicalMemory})
        system.query(fact);
    return versionText(version);
}

std::string mediaVersion(const SystemInfo& system) {
    return versionText(system.query(SystemFact::MediaVersion).value_or(0) >> 16);
}

/// Formats @p seconds as hours with two decimals, independently of the locale.
std::string hoursText(std::int32_t seconds) {
    const double hours = static_cast<double>(static_cast<float>(seconds)) / 3600.0;
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), hours, std::chars_format::fixed, 2)
            .ptr;
    return {text.data(), end};
}

std::string messageText(const std::optional<std::string>& version, const std::string& product) {
    const SystemInfo& system = platform::systemInfo();
    const platform::TimeZone zone = system.systemTimeZone();
    const std::string systemText = systemVersion(system);
    const std::string mediaText = mediaVersion(system);
    const std::string offset = hoursText(zone.secondsFromGMT);
    return platform::formatLogLine(kMessage,
                                   {product, version, systemText, kProcessor, product, version,
                                    zone.name, zone.abbreviation, offset, mediaText});
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : text) {
        switch (character) {
        case ' ':
            result += "%20";
            break;
        case '\n':
            result += "%0d";
            break;
        case ':':
            result += "%3A";
            break;
        default:
            result += character;
        }
    }
    return result;
}

bool isHexadecimal(char character) {
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F') ||
           (character >= 'a' && character <= 'f');
}

bool isAllowedInURL(char character) {
    constexpr std::string_view kPunctuation = "-._~:/?#[]@!$&'()*+,;=";
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') ||
           kPunctuation.find(character) != std::string_view::npos;
}

bool isValidURL(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            if (!isAllowedInURL(text[i]))
                return false;
            continue;
        }
        const std::string_view digits = text.substr(i + 1, 2);
        if (digits.size() != 2 || !std::ranges::all_of(digits, isHexadecimal))
            return false;
    }
    return true;
}

} // namespace

namespace ovxFeedback {

void ovxSendFeedBackViaMail(const std::shared_ptr<platform::Bundle>& bundle,
                            const std::string& product) {
    platform::guardedOperation([&] {
        std::optional<std::string> version;
        if (bundle)
            version = bundle->textForInfoDictionaryKey("CFBundleShortVersionString");
        const std::string address =
            "mailto:" HALVEX_SUPPORT_ADDRESS + escaped(messageText(version, product));
        if (!isValidURL(address)) {
            platform::logLine("Bad feedback URL: %@", address);
            return;
        }
        platform::sharedWorkspace().openURL(address);
    });
}

} // namespace ovxFeedback
