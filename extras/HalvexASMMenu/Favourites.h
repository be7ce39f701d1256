#pragma once

#include "platform/Applications.h"
#include "platform/Preferences.h"

#include <set>
#include <string>
#include <vector>

namespace switcher {

/// The applications that the user wants to have at hand: the preference "Favourites", an array of
/// the names of desktop entries, with or without ".desktop". Main thread only.
class Favourites {
  public:
    explicit Favourites(platform::Preferences settings);

    /// Returns the desktop entries of the favourites that are installed, in the user's order. Logs
    /// each name without a desktop entry, once until it has one.
    std::vector<platform::DesktopEntry> installed();
    bool contains(const std::string& identifier) const;
    /// Adds a desktop entry at the end. Returns false, after a log line, if that cannot be stored.
    bool add(const std::string& identifier);
    /// Removes a desktop entry. Returns false, after a log line, if that cannot be stored.
    bool remove(const std::string& identifier);

  private:
    std::vector<std::string> identifiers() const;

    platform::Preferences settings_;
    std::set<std::string> missing_; ///< logged
};

} // namespace switcher
