#include "apps/ctl/Verbs.h"
#include "platform/Preferences.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using platform::PropertyList;

namespace apps {
namespace {

struct Options {
    std::string domain;
    std::string key;
    std::string value;
    std::string type = "string";
    bool json = false;
};

template <class Number>
std::optional<PropertyList> number(const std::string& text) {
    Number value{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(PropertyList(value)) : std::nullopt;
}

std::optional<PropertyList> boolean(const std::string& text) {
    return text == "true" || text == "false" ? std::optional(PropertyList(text == "true"))
                                             : std::nullopt;
}

using Parse = std::optional<PropertyList> (*)(const std::string& text);

constexpr std::array<std::pair<const char*, Parse>, 4> kTypes{{
    {"string", [](const std::string& text) { return std::optional(PropertyList(text)); }},
    {"integer", number<std::int64_t>},
    {"real", number<double>},
    {"boolean", boolean},
}};

CLI::IsMember typeNames() {
    std::vector<std::string> names;
    names.reserve(kTypes.size());
    for (const auto& [name, parse] : kTypes)
        names.emplace_back(name);
    return CLI::IsMember(names);
}

ExitStatus read(const Options& options) {
    const auto preferences = platform::preferences(options.domain);
    if (preferences.file().empty())
        return ExitStatus::Failure;
    if (options.key.empty())
        return print(preferences.values(), formatFor(options.json));
    const auto value = preferences.value(options.key);
    if (!value)
        return fail("there is no preference " + options.key + " in " + preferences.file());
    if (const auto text = value->string(); text && !options.json)
        return print(std::string(*text) + '\n');
    return print(*value, formatFor(options.json));
}

ExitStatus write(const Options& options) {
    for (const auto& [name, parse] : kTypes) {
        if (options.type != name)
            continue;
        const auto value = parse(options.value);
        if (!value)
            return fail(options.value + " is not of the type " + name);
        return platform::preferences(options.domain).set(options.key, *value) ? ExitStatus::Success
                                                                              : ExitStatus::Failure;
    }
    return ExitStatus::Failure;
}

ExitStatus remove(const Options& options) {
    return platform::preferences(options.domain).remove(options.key) ? ExitStatus::Success
                                                                     : ExitStatus::Failure;
}

} // namespace

void addPreferencesVerbs(CLI::App& prefs, Task& task) {
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char* name, const char* description,
                         ExitStatus (*run)(const Options&)) -> CLI::App& {
        CLI::App& verb =
            addVerb(prefs, task, name, description, [options, run] { return run(*options); });
        verb.add_option("DOMAIN", options->domain, "Usually a bundle identifier")->required();
        return verb;
    };
    CLI::App& readVerb = add("read", "Print preferences, or one of them", read);
    readVerb.add_option("KEY", options->key, "The key; by default, all");
    addJsonFlag(readVerb, options->json);

    CLI::App& writeVerb = add("write", "Change a preference", write);
    writeVerb.add_option("KEY", options->key, "The key")->required();
    writeVerb.add_option("VALUE", options->value, "The value")->required();
    writeVerb.add_option("--type", options->type, "The value's type")->check(typeNames());

    add("delete", "Remove a preference", remove)
        .add_option("KEY", options->key, "The key")
        ->required();
}

} // namespace apps
