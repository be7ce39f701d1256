#include "apps/menubar/Options.h"

#include <array>
#include <cstdio>
#include <getopt.h>
#include <string_view>
#include <utility>

namespace apps {
namespace {

constexpr int kWrongUsage = 2;
constexpr const char* kHelp =
    R"(Usage: halvex-menubar [--appearance desktop|light|dark] [--admit user|system|all]
                      [BUNDLE.menu...]
The menu bar: shows menu extras along the top of the screen.

  BUNDLE.menu     a menu extra to load besides those of the last time, for this time only
  --appearance    the desktop's colours (as it is without the option), light or dark ones
  --admit         what other programs may have loaded: what lies in the user's "Menu Extras" folder
                  (user, as it is without the option); the bar's own items alone, until MenuCracker
                  is loaded (system); anything (all)
  --help, --version
)";

constexpr std::array<std::pair<std::string_view, Admit>, 3> kAdmits{
    {{"user", Admit::User}, {"system", Admit::System}, {"all", Admit::All}}};

bool choose(std::string_view name, Admit& admit) {
    for (const auto& [candidate, value] : kAdmits) {
        if (candidate != name)
            continue;
        admit = value;
        return true;
    }
    return false;
}

bool choose(std::string_view name, Appearance& appearance) {
    const auto named = appearanceOfName(name);
    appearance = named.value_or(appearance);
    return named.has_value();
}

} // namespace

// getopt and not the house's CLI11: the bar is there all day, and that library's code with it.
std::optional<Options> readOptions(int argc, char** argv, int& status) {
    const std::array<option, 5> known{{{"appearance", required_argument, nullptr, 'a'},
                                       {"admit", required_argument, nullptr, 'm'},
                                       {"help", no_argument, nullptr, 'h'},
                                       {"version", no_argument, nullptr, 'v'},
                                       {nullptr, 0, nullptr, 0}}};
    Options options;
    status = 0;
    for (int found = 0; (found = getopt_long(argc, argv, "h", known.data(), nullptr)) != -1;) {
        if ((found == 'a' && choose(optarg, options.appearance)) ||
            (found == 'm' && choose(optarg, options.admit)))
            continue;
        if (found == 'h') {
            std::fputs(kHelp, stdout);
            return std::nullopt;
        } else if (found == 'v') {
            std::puts(HALVEX_VERSION);
            return std::nullopt;
        } else {
            if (found != '?')
                std::fprintf(stderr, "halvex-menubar: there is no choice %s\n", optarg);
            std::fputs(kHelp, stderr);
            status = kWrongUsage;
            return std::nullopt;
        }
    }
    options.bundles.assign(argv + optind, argv + argc);
    return options;
}

} // namespace apps
