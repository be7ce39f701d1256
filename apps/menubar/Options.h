#pragma once

#include "apps/menubar/Admission.h"
#include "apps/support/Appearance.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace apps {

/// The command line.
struct Options {
    std::vector<std::string> bundles; ///< folders of menu extras to load, rightmost first
    Appearance appearance = Appearance::Desktop;
    Admit admit = Admit::User;
    bool restart = true;               ///< after a crash or a hang
    std::chrono::seconds hangLimit{5}; ///< zero: no limit
};

/// Parses the command line. If the program should exit, returns std::nullopt and sets @p status: to
/// 0 after printing the text of --help or --version, or to 2 after printing the help to standard
/// error because of a usage error.
std::optional<Options> readOptions(int argc, char** argv, int& status);

} // namespace apps
