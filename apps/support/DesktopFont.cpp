#include "apps/support/DesktopFont.h"

#include "apps/support/XSettings.h"
#include "platform/qt/X11Connection.h"

#include <QApplication>
#include <QFont>

namespace apps {
namespace {

using platform::qt::ownedReply;

/// Returns the settings of the settings manager, or an empty array.
QByteArray readXSettings(xcb_connection_t* connection) {
    constexpr std::uint32_t kMaximumLength = 1U << 14; // in units of four bytes
    const xcb_atom_t selection = platform::qt::x11Atom(connection, "_XSETTINGS_S0");
    const auto owner = ownedReply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, selection), nullptr));
    if (!owner || owner->owner == XCB_WINDOW_NONE)
        return {};
    const xcb_atom_t settings = platform::qt::x11Atom(connection, "_XSETTINGS_SETTINGS");
    const auto property = ownedReply(xcb_get_property_reply(
        connection,
        xcb_get_property(connection, 0, owner->owner, settings, settings, 0, kMaximumLength),
        nullptr));
    if (!property)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(property.get())),
            xcb_get_property_value_length(property.get())};
}

std::optional<FontDescription> announcedFont() {
    xcb_connection_t* const connection = platform::qt::x11Connection();
    if (!connection || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORMTHEME"))
        return std::nullopt;
    const auto text = stringInXSettings(readXSettings(connection), "Gtk/FontName");
    return text ? parseFontDescription(*text) : std::nullopt;
}

} // namespace

void applyDesktopFont() {
    constexpr int kBuiltInSize = 9;
    constexpr int kDefaultSize = 10;
    QFont font = QApplication::font();
    if (const auto announced = announcedFont()) {
        font.setFamilies({QString::fromStdString(announced->family)});
        font.setPointSizeF(announced->points);
    } else if (font.pointSize() == kBuiltInSize && font.family() == "Sans Serif") {
        font.setPointSize(kDefaultSize);
    } else {
        return;
    }
    QApplication::setFont(font);
}

} // namespace apps
