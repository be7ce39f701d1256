#include "apps/menubar/Options.h"

#include <array>
#include <cstdio>
#include <getopt.h>
#include <string_view>
#include <utility>

namespace {

constexpr int kWrongUsage = 2;
constexpr const char* kHelp =
    R"(Usage: halvex-menubar [--appearance desktop|light|dark] [BUNDLE.menu...]
The menu bar: shows menu extras along the top of the screen.

  BUNDLE.menu     a menu extra to load besides the bar's own clock
  --appearance    the desktop's colours (as it is without the option), light or dark ones
  --help, --version
)";

std::optional<Appearance> appearanceNamed(std::string_view name) {
    constexpr std::array<std::pair<std::string_view, Appearance>, 3> names{
        {{"desktop", Appearance::Desktop},
         {"light", Appearance::Light},
         {"dark", Appearance::Dark}}};
    for (const auto& [candidate, appearance] : names) {
        if (candidate == name)
            return appearance;
    }
    return std::nullopt;
}

} // namespace

// getopt and not the house's CLI11: the bar is there all day, and that library's code with it.
std::optional<Options> readOptions(int argc, char** argv, int& status) {
    const std::array<option, 4> known{{{"appearance", required_argument, nullptr, 'a'},
                                       {"help", no_argument, nullptr, 'h'},
                                       {"version", no_argument, nullptr, 'v'},
                                       {nullptr, 0, nullptr, 0}}};
    Options options;
    status = 0;
    for (int found = 0; (found = getopt_long(argc, argv, "h", known.data(), nullptr)) != -1;) {
        const auto appearance = found == 'a' ? appearanceNamed(optarg) : std::nullopt;
        if (appearance) {
            options.appearance = *appearance;
        } else if (found == 'h') {
            std::fputs(kHelp, stdout);
            return std::nullopt;
        } else if (found == 'v') {
            std::puts(HALVEX_VERSION);
            return std::nullopt;
        } else {
            std::fputs(kHelp, stderr);
            status = kWrongUsage;
            return std::nullopt;
        }
    }
    options.bundles.assign(argv + optind, argv + argc);
    return options;
}
