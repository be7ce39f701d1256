#pragma once

#include <string>

namespace apps {

/// Whose items the bar loads when somebody asks it to.
enum class Admit {
    User,   ///< its own, and those in the user's "Menu Extras" folder
    System, ///< its own; once MenuCracker is loaded, as User
    All,    ///< any, for people who are writing one
};

/// Decides by where a bundle lies. Nothing of it is loaded, and no folder is made.
class Admission {
  public:
    Admission(Admit mode, std::string ownItemsFolder);

    Admit mode() const { return mode_; }
    const std::string& ownItemsFolder() const { return ownItemsFolder_; }

    enum class Cracker { NotLoaded, Loaded };
    /// Why the bundle at @p path is not to be loaded, for people; empty when it may be. Symbolic
    /// links are resolved first. MenuCracker is always welcome from a preference pane's PlugIns.
    std::string reasonAgainst(const std::string& path, Cracker cracker) const;

  private:
    Admit mode_;
    std::string ownItemsFolder_;
};

} // namespace apps
