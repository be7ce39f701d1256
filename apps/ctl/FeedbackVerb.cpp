#include "apps/ctl/Verbs.h"
#include "apps/ctl/WorkspaceDecorator.h"
#include "apps/shared/AbsolutePath.h"
#include "menuextras/MenuExtraTools.h"
#include "platform/Bundle.h"
#include "platform/SystemInfo.h"
#include "ui/ovxFeedback.h"

#include <charconv>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

using platform::SystemFact;
using platform::TimeZone;

namespace apps {
namespace {

struct Options {
    std::string product;
    std::string bundle;
    bool print = false;
    std::optional<std::uint32_t> system;
    std::optional<std::uint32_t> media;
    std::optional<TimeZone> zone;
};

template <class Number>
bool parse(std::string_view text, Number& number, int base) {
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, base);
    return result.ec == std::errc() && result.ptr == end;
}

bool parseVersion(std::string_view text, std::optional<std::uint32_t>& version) {
    if (text.starts_with("0x") || text.starts_with("0X"))
        text.remove_prefix(2);
    return parse(text, version.emplace(), 16);
}

bool parseZone(std::string_view text, std::optional<TimeZone>& result) {
    TimeZone& zone = result.emplace();
    const auto first = text.find(',');
    const auto last = text.rfind(',');
    if (first == last)
        return false;
    zone.name = text.substr(0, first);
    zone.abbreviation = text.substr(first + 1, last - first - 1);
    return parse(text.substr(last + 1), zone.secondsFromGMT, 10);
}

/// Replaces the system's facts with those given on the command line.
class OverriddenSystemInfo final : public platform::SystemInfo {
  public:
    explicit OverriddenSystemInfo(const Options& options) : options_(options) {}

    std::optional<std::uint32_t> query(SystemFact fact) const override {
        if (fact == SystemFact::SystemVersion && options_.system)
            return options_.system;
        if (fact == SystemFact::MediaVersion && options_.media)
            return options_.media;
        return original_.query(fact);
    }
    TimeZone systemTimeZone() const override {
        return options_.zone ? *options_.zone : original_.systemTimeZone();
    }

  private:
    const Options& options_;
    const platform::SystemInfo& original_ = platform::systemInfo();
    platform::ScopedService<platform::SystemInfo> guard_{*this};
};

/// Records the URL instead of opening it.
class RecordingWorkspace final : public WorkspaceDecorator {
  public:
    std::optional<std::string> url;

    bool openURL(const std::string& toOpen) override {
        url = toOpen;
        return true;
    }
};

std::optional<std::string> feedbackURL(const std::shared_ptr<platform::Bundle>& bundle,
                                       const Options& options) {
    const OverriddenSystemInfo system(options);
    const RecordingWorkspace workspace;
    ovxFeedback::ovxSendFeedBackViaMail(bundle, options.product);
    return workspace.url;
}

ExitStatus send(const Options& options) {
    const auto path = options.bundle.empty() ? HalvexMenuExtraTools::HalvexPrefsPanelPath()
                                             : absolutePath(options.bundle);
    std::string reason;
    const auto bundle = path ? platform::Bundle::bundleWithPath(*path, &reason) : nullptr;
    if (path && !bundle)
        return fail(*path + ": " + reason);
    const auto url = feedbackURL(bundle, options);
    if (!url)
        return ExitStatus::Failure;
    if (options.print)
        return print(*url + '\n');
    return platform::sharedWorkspace().openURL(*url)
               ? ExitStatus::Success
               : fail("no mail program can be started: xdg-open is not installed");
}

/// Adds an option whose text is parsed by @p parseText. Rejected text is a usage error.
template <class Value>
void addParsedOption(CLI::App& verb, const char* name, const char* description,
                     std::optional<Value>& value,
                     bool (*parseText)(std::string_view, std::optional<Value>&)) {
    const auto parseAll = [&value, parseText](const CLI::results_t& texts) {
        return parseText(texts.front(), value);
    };
    verb.add_option(name, parseAll, description);
}

} // namespace

void addFeedbackVerb(CLI::App& commands, Task& task) {
    const auto options = std::make_shared<Options>();
    CLI::App& verb = addVerb(commands, task, "feedback", "Compose a mail to the product's support",
                             [options] { return send(*options); });
    verb.add_option("PRODUCT", options->product, "The product's name")->required();
    verb.add_option("--bundle", options->bundle,
                    "The bundle whose version to report; default: the preference pane");
    verb.add_flag("--print", options->print, "Print the mail's URL instead of opening it");
    addParsedOption(verb, "--system", "The system's version, e.g. 1045 for 10.4.5", options->system,
                    parseVersion);
    addParsedOption(verb, "--media", "The media software's version, e.g. 07168000 for 7.1.6",
                    options->media, parseVersion);
    addParsedOption(verb, "--zone", "The time zone: NAME,ABBREVIATION,SECONDS", options->zone,
                    parseZone);
}

} // namespace apps
