#include "platform/posix/PosixScriptRunner.h"

#include "platform/Defaults.h"
#include "platform/Operation.h"
#include "platform/posix/SystemPreferences.h"

#include <string_view>

namespace platform::posix {
namespace {

constexpr std::string_view kBefore =
    "tell application \"System Preferences\"\nactivate\nset the current pane to pane id \"";
constexpr std::string_view kAfter = "\"\nend tell\n";

/// Returns the pane's identifier, or std::nullopt for another script. An identifier with a
/// quotation mark, a backslash or a line break is rejected: it could add commands to the script.
std::optional<std::string> paneIdentifier(std::string_view script) {
    const bool matches = script.size() > kBefore.size() + kAfter.size() &&
                         script.starts_with(kBefore) && script.ends_with(kAfter);
    if (!matches)
        return std::nullopt;
    script.remove_prefix(kBefore.size());
    script.remove_suffix(kAfter.size());
    const bool plain = script.find_first_of(std::string_view("\"\\\r\n\0", 5)) == script.npos;
    return plain ? std::optional(std::string(script)) : std::nullopt;
}

} // namespace

std::optional<std::string> PosixScriptRunner::run(const std::string& script) {
    return guardedOperation(
        [&]() -> std::optional<std::string> {
            const auto identifier = paneIdentifier(script);
            if (!identifier)
                return "unsupported script: it does not select a pane of System Preferences";
            std::string reason;
            if (startSystemPreferences({"--select", *identifier}, reason))
                return std::nullopt;
            return reason;
        },
        "out of memory");
}

} // namespace platform::posix

platform::ScriptRunner& platform::defaults::scriptRunner() {
    static posix::PosixScriptRunner runner;
    return runner;
}
