#include "apps/support/Options.h"

#include <array>
#include <cstdio>
#include <getopt.h>

namespace apps {
namespace {

constexpr int kWrongUsage = 2;

bool readAppearance(const char* program, const char* name, Appearance& appearance) {
    const auto parsed = parseAppearance(name);
    if (!parsed)
        std::fprintf(stderr, "%s: unknown appearance '%s'\n", program, name);
    appearance = parsed.value_or(appearance);
    return parsed.has_value();
}

bool areArgumentsAccepted(const WindowOptions& options, const CommandLine& commandLine) {
    if (options.select)
        return commandLine.hasSelect && options.arguments.empty();
    return options.arguments.size() <= commandLine.maxArguments;
}

} // namespace

std::optional<WindowOptions> readWindowOptions(int argc, char** argv,
                                               const CommandLine& commandLine, int& status) {
    const std::array<option, 5> known{{{"appearance", required_argument, nullptr, 'a'},
                                       {"help", no_argument, nullptr, 'h'},
                                       {"version", no_argument, nullptr, 'v'},
                                       {"select", required_argument, nullptr, 's'},
                                       {nullptr, 0, nullptr, 0}}};
    WindowOptions options;
    bool isValid = true;
    status = 0;
    for (int found = 0; (found = getopt_long(argc, argv, "h", known.data(), nullptr)) != -1;) {
        switch (found) {
        case 'h':
            std::fputs(commandLine.help, stdout);
            return std::nullopt;
        case 'v':
            std::puts(HALVEX_VERSION);
            return std::nullopt;
        case 'a':
            isValid = readAppearance(argv[0], optarg, options.appearance) && isValid;
            break;
        case 's':
            options.select = optarg;
            break;
        default:
            isValid = false;
        }
    }
    options.arguments.assign(argv + optind, argv + argc);
    if (isValid && areArgumentsAccepted(options, commandLine))
        return options;
    std::fputs(commandLine.help, stderr);
    status = kWrongUsage;
    return std::nullopt;
}

} // namespace apps
