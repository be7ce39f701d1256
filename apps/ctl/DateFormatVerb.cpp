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

using Fix = std::string& (*)(std::string&, std::string_view);

/// False when the value was refused, which leaves a format without the placeholder nothing to lose.
bool fill(std::string& format, Fix fix, const char* placeholder,
          const std::optional<std::string>& value) {
    return !value || fix(format, *value).find(placeholder) == std::string::npos;
}

ExitStatus fill(const Options& options) {
    std::string format = options.format;
    if (!fill(format, HalvexDateFormat::fixWeekNum, "%W", options.week) ||
        !fill(format, HalvexDateFormat::fixTimeZone, "%Z", options.zone))
        return ExitStatus::Refused;
    return print(format + '\n');
}

} // namespace

void addDateFormatVerb(CLI::App& commands, Action& chosen) {
    const auto options = std::make_shared<Options>();
    CLI::App* verb = commands.add_subcommand("date-format", "Fill a date format's placeholders");
    verb->add_option("FORMAT", options->format, "The format")->required();
    verb->add_option("--week", options->week, "What stands for %W");
    verb->add_option("--zone", options->zone, "What stands for %Z");
    verb->callback([options, &chosen] { chosen = [options] { return fill(*options); }; });
}

} // namespace apps
