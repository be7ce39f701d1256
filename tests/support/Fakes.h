#pragma once

#include "platform/MenuExtraServer.h"
#include "testing/FixedEvents.h"
#include "testing/ManualClock.h"
#include "testing/RecordingGraphics.h"
#include "testing/RecordingHost.h"
#include "testing/RecordingPanels.h"
#include "testing/RecordingPasteboard.h"
#include "testing/RecordingUserNotifications.h"
#include "testing/RecordingWorkspace.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace test {

using namespace halvextest;

/// A menu bar with the items in loaded. It records requests; only the test loads items.
class RecordingMenuBar final : public platform::MenuExtraServer {
  public:
    std::vector<std::string> loaded; ///< identifiers
    /// "add <url> <position> <the four numbers>", "remove <identifier> <flags>"
    std::vector<std::string> requests;
    std::vector<std::string> queried; ///< the identifiers passed to getMenuExtra
    /// If set, the status and the reference that getMenuExtra returns for every identifier.
    std::optional<std::pair<std::int32_t, platform::MenuExtraReference>> result;
    /// Called by addMenuExtra. Returns its status.
    std::function<std::int32_t(const std::string& url)> onAdd = [](const auto&) { return 0; };

    std::int32_t getMenuExtra(const std::string& identifier,
                              platform::MenuExtraReference& reference) override {
        queried.push_back(identifier);
        if (result) {
            reference = result->second;
            return result->first;
        }
        const auto found = std::find(loaded.begin(), loaded.end(), identifier);
        if (found == loaded.end())
            return static_cast<std::int32_t>(platform::MenuExtraStatus::NotLoaded);
        reference = static_cast<platform::MenuExtraReference>(found - loaded.begin()) + 1;
        return 0;
    }
    std::int32_t addMenuExtra(const std::string& url, std::int32_t position, std::int32_t first,
                              std::int32_t second, std::int32_t third,
                              std::int32_t fourth) override {
        requests.push_back("add " + url);
        for (const std::int32_t number : {position, first, second, third, fourth})
            requests.back() += ' ' + std::to_string(number);
        return onAdd(url);
    }
    std::int32_t removeMenuExtra(platform::MenuExtraReference reference,
                                 std::int32_t flags) override {
        const auto item = loaded.begin() + static_cast<std::ptrdiff_t>(reference) - 1;
        requests.push_back("remove " + *item + ' ' + std::to_string(flags));
        loaded.erase(item);
        return 0;
    }

  private:
    platform::ScopedService<platform::MenuExtraServer> service_{*this};
};

} // namespace test
