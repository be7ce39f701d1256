#pragma once

#include "tests/desktop/support/BarProcess.h"

#include <gtest/gtest.h>

#include <string>

namespace test {

constexpr const char* kFaultless = "Faultless"; ///< the test extra's default principal class

inline void replaceContents(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

/// A copy of the test extra's bundle, installed for the user, that a test may damage.
class TestBundle {
  public:
    explicit TestBundle(const BarProcess& bar, const std::string& principalClass = kFaultless)
        : path(bar.install(HALVEX_TEST_EXTRA)) {
        replaceInInfo(kFaultless, principalClass);
    }
    void replaceInInfo(const std::string& what, const std::string& with) const {
        std::string text = contents(info());
        const auto place = text.find(what);
        ASSERT_NE(place, std::string::npos) << what;
        replaceContents(info(), text.replace(place, what.size(), with));
    }
    std::filesystem::path info() const { return path / "Contents/Info.plist"; }
    std::filesystem::path code() const { return path / "Contents/Linux/TestExtra"; }

    const std::filesystem::path path;
};

} // namespace test
