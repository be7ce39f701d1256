#pragma once

#include <string>

namespace apps {

/// Which items the bar loads at the request of a program.
enum class Admit {
    User,   ///< the bar's own items and those in the user's "Menu Extras" folder
    System, ///< the bar's own items until MenuCracker is loaded, then as User
    All,    ///< any item, for developing items
};

/// Decides by location whether a bundle may be loaded. Does not load code or create folders.
class Admission {
  public:
    /// @p ownItemsFolder is the folder of the bar's own items.
    Admission(Admit mode, std::string ownItemsFolder);

    Admit mode() const { return mode_; }
    const std::string& ownItemsFolder() const { return ownItemsFolder_; }

    enum class Cracker { NotLoaded, Loaded };
    /// Returns a human-readable reason if the bundle at @p path is declined, or an empty string if
    /// it is admitted. The path must have no symbolic links in it; validateBundle refuses it
    /// otherwise. MenuCracker is always admitted from the preference pane that the library finds,
    /// see HalvexMenuExtraTools::HalvexPrefsPlugins.
    std::string refusalReason(const std::string& path, Cracker cracker) const;

  private:
    Admit mode_;
    std::string ownItemsFolder_;
};

} // namespace apps
