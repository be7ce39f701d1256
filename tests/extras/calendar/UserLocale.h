#pragma once

#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <locale.h>
#include <optional>
#include <string>

namespace test {

/// Makes a locale the user's, and generates it if it is not installed.
class UserLocale {
  public:
    explicit UserLocale(const std::string& name) : name_("LC_ALL", name + ".UTF-8") {
        if (locale_t installed = newlocale(LC_ALL_MASK, "", nullptr)) {
            freelocale(installed);
            return;
        }
        const std::string target = folder_.file(name + ".UTF-8");
        const std::string command = "localedef --no-archive -i " + name + " -f UTF-8 " + target;
        if (std::system(command.c_str()) == 0) // NOLINT: the arguments are the test's own
            path_.emplace("LOCPATH", folder_.path().string());
    }

  private:
    TemporaryFolder folder_;
    ScopedEnvironment name_;
    std::optional<ScopedEnvironment> path_;
};

} // namespace test
