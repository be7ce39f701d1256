#include "apps/menubar/Options.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <getopt.h>
#include <string_view>
#include <system_error>
#include <utility>

namespace apps {
namespace {

constexpr int kWrongUsage = 2;
constexpr const char* kHelp =
    R"(Usage: halvex-menubar [--appearance desktop|light|dark] [--admit user|system|all]
                      [--hang-limit SECONDS] [--no-restart] [BUNDLE.menu...]
Show menu extras in a bar along the top of the screen.

  BUNDLE.menu     Load this menu extra as well, for this run only.
  --appearance    Use the desktop's colours (the default), or light or dark ones.
  --admit         Choose which menu extras other programs may load:
                    user    the bar's own and those in the user's "Menu Extras" folder
                            (the default)
                    system  only the bar's own; once MenuCracker is loaded, as user
                    all     any
  --hang-limit    Restart the bar when a menu extra has kept it from responding for so many
                  seconds. The default is 5; 0 means never.
  --no-restart    Do not restart the bar when it crashes or hangs.
  --help          Print this help.
  --version       Print the version.
)";

constexpr std::array<std::pair<std::string_view, Admit>, 3> kAdmitNames{
    {{"user", Admit::User}, {"system", Admit::System}, {"all", Admit::All}}};

bool parse(std::string_view name, Admit& admit) {
    for (const auto& [candidate, value] : kAdmitNames) {
        if (candidate != name)
            continue;
        admit = value;
        return true;
    }
    return false;
}

bool parse(std::string_view name, Appearance& appearance) {
    const auto named = parseAppearance(name);
    appearance = named.value_or(appearance);
    return named.has_value();
}

bool parse(std::string_view text, std::chrono::seconds& limit) {
    constexpr int kLongestLimit = 3600;
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    limit = std::chrono::seconds(number);
    return error == std::errc() && end == text.data() + text.size() && number >= 0 &&
           number <= kLongestLimit;
}

} // namespace

// Uses getopt, not CLI11, whose code would stay in memory as long as the bar runs.
std::optional<Options> readOptions(int argc, char** argv, int& status) {
    const std::array<option, 7> known{{{"appearance", required_argument, nullptr, 'a'},
                                       {"admit", required_argument, nullptr, 'm'},
                                       {"hang-limit", required_argument, nullptr, 'l'},
                                       {"no-restart", no_argument, nullptr, 'n'},
                                       {"help", no_argument, nullptr, 'h'},
                                       {"version", no_argument, nullptr, 'v'},
                                       {nullptr, 0, nullptr, 0}}};
    Options options;
    status = 0;
    for (int found = 0; (found = getopt_long(argc, argv, "h", known.data(), nullptr)) != -1;) {
        if ((found == 'a' && parse(optarg, options.appearance)) ||
            (found == 'm' && parse(optarg, options.admit)) ||
            (found == 'l' && parse(optarg, options.hangLimit)))
            continue;
        if (found == 'n') {
            options.restart = false;
            continue;
        }
        if (found == 'h') {
            std::fputs(kHelp, stdout);
            return std::nullopt;
        }
        if (found == 'v') {
            std::puts(HALVEX_VERSION);
            return std::nullopt;
        }
        if (found != '?')
            std::fprintf(stderr, "halvex-menubar: unknown value: %s\n", optarg);
        std::fputs(kHelp, stderr);
        status = kWrongUsage;
        return std::nullopt;
    }
    options.bundles.assign(argv + optind, argv + argc);
    return options;
}

} // namespace apps
