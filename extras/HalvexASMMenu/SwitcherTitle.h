#pragma once

#include "platform/Preferences.h"
#include "platform/values/Image.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform {
struct RunningApplication;
}

/// What the switcher shows in the bar. Main thread only.
namespace switcher {

/// The side of an application's icon in the bar and in the menu, in points.
inline constexpr double kIconSide = 16;
inline constexpr double kDefaultNameWidth = 160; ///< points

/// What the bar shows of the active application: the preferences "Shows" and "NameWidth".
struct TitleStyle {
    bool hasIcon = true;
    bool hasName = false;
    double nameWidth = kDefaultNameWidth; ///< points

    /// The keys of the preferences.
    static const std::vector<std::string>& keys();
    /// Reads those of @p keys that are preferences of the title. Replaces values that cannot be
    /// used by the default, and logs them.
    void read(const platform::Preferences& settings, const std::vector<std::string>& keys);

  private:
    void readShows(const platform::Preferences& settings);
    void readNameWidth(const platform::Preferences& settings);
};

struct Title {
    std::shared_ptr<platform::Image> image;
    std::optional<std::string> text;
};

/// Returns the title for the active application, or for none if @p active is null. An application
/// without an icon shows its name. @p empty is shown if there is neither.
Title titleFor(const platform::RunningApplication* active, const TitleStyle& style,
               const std::shared_ptr<platform::Image>& empty);

/// Returns @p text or, if it is wider than @p width points in the bar's font, as much of its start
/// as fits before an ellipsis.
std::string shortened(const std::string& text, double width);

/// Returns the icon that stands for no application, a template image.
std::shared_ptr<platform::Image> emptyIcon();

} // namespace switcher
