#pragma once

#include "apps/menubar/Admission.h"
#include "apps/support/StartUp.h"

#include <optional>
#include <string>
#include <vector>

namespace apps {

/// What the command line asks for.
struct Options {
    std::vector<std::string> bundles; ///< folders of menu extras to load, from right to left
    Appearance appearance = Appearance::Desktop;
    Admit admit = Admit::User;
};

/// Reads the command line. When there is nothing more to do, for --help, --version or wrong usage,
/// which are answered here, gives nothing and writes the program's status to @p status.
std::optional<Options> readOptions(int argc, char** argv, int& status);

} // namespace apps
