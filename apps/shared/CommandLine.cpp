#include "apps/shared/CommandLine.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace apps {
namespace {

/// Whether the command line or one of its verbs has an option of this name that takes a value.
bool takesValue(const CLI::App& commandLine, const std::string& name) {
    const auto isNamed = [&](const CLI::Option* option) {
        return option->check_lname(name) && option->get_items_expected_max() > 0;
    };
    return std::ranges::any_of(commandLine.get_options(), isNamed) ||
           std::ranges::any_of(commandLine.get_subcommands({}),
                               [&](const CLI::App* verb) { return takesValue(*verb, name); });
}

} // namespace

void parseArguments(CLI::App& commandLine, int argc, char** argv) {
    std::vector<std::string> arguments;
    bool mayBeOption = true; // false after "--"
    for (const std::string_view argument : std::vector(argv + 1, argv + argc)) {
        mayBeOption = mayBeOption && argument != "--";
        const bool isEmpty =
            argument.starts_with("--") && argument.find('=') + 1 == argument.size();
        const std::string name(argument.substr(0, argument.size() - 1));
        if (mayBeOption && isEmpty && takesValue(commandLine, name.substr(2)))
            arguments.insert(arguments.end(), {name, ""});
        else
            arguments.emplace_back(argument);
    }
    std::ranges::reverse(arguments); // the order that CLI11 expects
    commandLine.parse(std::move(arguments));
}

} // namespace apps
