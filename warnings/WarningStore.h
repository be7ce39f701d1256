#pragma once

#include "platform/Preferences.h"
#include "warnings/Warning.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace warnings {

/// The warnings that are set, in the file "HalvexRecurringTimers2.plist" in the user's product
/// folder. Several programs may read and change it at the same time: each change locks the file and
/// is applied to what it contains then. Entries and keys that this version does not know are kept.
///
/// A file that is not a property list counts as empty, which is logged once; the next change first
/// appends ".unreadable" to its name. Entries that cannot be used are ignored and logged once. The
/// format is documented in pane/README.md. Main thread only.
class WarningStore : platform::NonCopyable {
  public:
    /// Opens the user's file, which need not exist. Reads nothing yet.
    WarningStore();
    /// Uses @p domain, not null, instead of the file.
    explicit WarningStore(std::shared_ptr<platform::PreferencesDomain> domain);

    /// Returns the path of the file.
    std::string file() const { return domain_->file(); }
    /// Returns the warnings in the order they were set. Reads the file only if it has changed.
    std::vector<Warning> warnings();

    // These return whether the change was made, and log the reason if not.

    /// Adds a warning that was set at @p now.
    bool add(std::string title, const WarningTime& time, std::int64_t now);
    /// Adds @p warning, or replaces the one with the same identifier.
    bool add(const Warning& warning);
    /// Removes the warnings with these identifiers. Unknown ones are ignored.
    bool remove(const std::vector<std::string>& identifiers);
    /// Records that warnings have rung, by identifier and instant: removes those that do not recur,
    /// and sets `since` of the others unless that is later. Unknown ones are ignored.
    bool recordRung(const std::map<std::string, std::int64_t>& rung);
    /// Sets `since` of all warnings that is after @p latest to @p latest.
    bool limitSince(std::int64_t latest);

    /// Calls @p handler from the main loop after the warnings may have changed. Returns null if the
    /// system is out of file watches, which is logged.
    std::unique_ptr<platform::Watch> onChange(std::function<void()> handler);

  private:
    using Entries = platform::PropertyList::Array;
    bool update(const std::function<void(Entries&)>& change);

    std::shared_ptr<platform::PreferencesDomain> domain_;
};

} // namespace warnings
