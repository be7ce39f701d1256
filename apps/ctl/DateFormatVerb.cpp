#include "apps/ctl/Verbs.h"
#include "ui/NSMutableString-DateFormat.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace apps {
namespace {

struct Options {
    std::string format;
    std::optional<std::string> week;
    std::optional<std::string> zone;
};

using Replacement = std::string& (*)(std::string&, std::string_view);

/// Returns false if the library has rejected @p value and left the placeholder in @p format.
bool replace(std::string& format, Replacement replacement, const char* placeholder,
             const std::optional<std::string>& value) {
    return !value || replacement(format, *value).find(placeholder) == std::string::npos;
}

ExitStatus printFormat(const Options& options) {
    std::string format = options.format;
    if (!replace(format, HalvexDateFormat::fixWeekNum, "%W", options.week) ||
        !replace(format, HalvexDateFormat::fixTimeZone, "%Z", options.zone))
        return ExitStatus::Failure;
    return print(format + '\n');
}

} // namespace

void addDateFormatVerb(CLI::App& commands, Task& task) {
    const auto options = std::make_shared<Options>();
    CLI::App& verb =
        addVerb(commands, task, "date-format", "Replace the placeholders in a date format",
                [options] { return printFormat(*options); });
    verb.add_option("FORMAT", options->format, "The format")->required();
    verb.add_option("--week", options->week, "The text for %W");
    verb.add_option("--zone", options->zone, "The text for %Z");
}

} // namespace apps
