#include "apps/support/Options.h"

#include <array>
#include <cstdio>
#include <getopt.h>

namespace apps {
namespace {
constexpr int kWrongUsage = 2;
}

std::optional<WindowOptions> readWindowOptions(int argc, char** argv,
                                               const CommandLine& commandLine, int& status) {
    const std::array<option, 5> known{{{"appearance", required_argument, nullptr, 'a'},
                                       {"help", no_argument, nullptr, 'h'},
                                       {"version", no_argument, nullptr, 'v'},
                                       {"select", required_argument, nullptr, 's'},
                                       {nullptr, 0, nullptr, 0}}};
    WindowOptions options;
    bool isWrong = false;
    status = 0;
    for (int found = 0; (found = getopt_long(argc, argv, "h", known.data(), nullptr)) != -1;) {
        if (found == 'h') {
            std::fputs(commandLine.help, stdout);
            return std::nullopt;
        }
        if (found == 'v') {
            std::puts(HALVEX_VERSION);
            return std::nullopt;
        }
        const auto appearance =
            found == 'a' ? appearanceOfName(optarg) : std::optional(options.appearance);
        if (found == 's')
            options.select = optarg;
        isWrong = isWrong || found == '?' || !appearance;
        options.appearance = appearance.value_or(options.appearance);
    }
    options.arguments.assign(argv + optind, argv + argc);
    isWrong = isWrong || options.arguments.size() > commandLine.mostArguments ||
              (options.select && (!commandLine.hasSelect || !options.arguments.empty()));
    if (!isWrong)
        return options;
    std::fputs(commandLine.help, stderr);
    status = kWrongUsage;
    return std::nullopt;
}

} // namespace apps
