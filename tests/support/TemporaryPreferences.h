#pragma once

#include "platform/Preferences.h"
#include "tests/support/TemporaryFolder.h"

#include <memory>
#include <string>

namespace test {

/// Stores all preferences in a temporary folder for the lifetime of the object. Needs a
/// PropertyListService, and for notifications a MainThread.
class TemporaryPreferences {
  public:
    /// Returns the path of a domain's file, which the test may also write.
    std::string file(const std::string& identifier) const {
        return folder_.file(identifier + ".plist");
    }

  private:
    TemporaryFolder folder_;
    std::unique_ptr<platform::PreferencesService> files_ =
        platform::makeFilePreferences(folder_.path().string());
    platform::ScopedService<platform::PreferencesService> service_{*files_};
};

} // namespace test
