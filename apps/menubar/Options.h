#pragma once

#include "apps/menubar/Admission.h"
#include "apps/support/Appearance.h"

#include <optional>
#include <string>
#include <vector>

namespace apps {

/// The command line.
struct Options {
    std::vector<std::string> bundles; ///< folders of menu extras to load, rightmost first
    Appearance appearance = Appearance::Desktop;
    Admit admit = Admit::User;
};

/// Parses the command line. After --help, --version or a usage error, prints the text, sets
/// @p status to the program's exit status and returns std::nullopt.
std::optional<Options> readOptions(int argc, char** argv, int& status);

} // namespace apps
