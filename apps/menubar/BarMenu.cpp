#include "apps/menubar/BarMenu.h"

#include "apps/menubar/AboutWindow.h"
#include "apps/support/Texts.h"
#include "apps/support/WindowProgram.h"
#include "platform/qt/QtMenu.h"
#include "prefs/HalvexPrefsTools.h"

#include <QApplication>

#include <utility>

using namespace platform;

namespace apps {

BarMenu::BarMenu() = default;
BarMenu::~BarMenu() = default;

void BarMenu::open(const QRect& place, MouseHandler handler) {
    auto menu = std::make_shared<Menu>();
    const auto add = [&](const char* title, MenuItem::Action action) -> MenuItem& {
        return menu->addItem(std::make_shared<MenuItem>(title, std::move(action)));
    };
    const bool hasPane = HalvexPrefsTools::HalvexPrefsBundle() != nullptr;
    MenuItem& preferences =
        add(localized("Preferences…"),
            hasPane ? [](MenuItem&) { HalvexPrefsTools::HalvexOpenPrefs(); } : MenuItem::Action());
    if (!hasPane)
        preferences.setToolTip(localized("The preference pane is not installed."));
    add(localized("About the Menu Bar"), [this](MenuItem&) { showAbout(); });
    menu->addSeparator();
    add(localized("Quit"), [](MenuItem&) { QApplication::quit(); });
    menu_ = std::make_unique<qt::QtMenu>(std::move(menu), std::string()); // owned by no item
    menu_->setOutsideMouseHandler(std::move(handler));
    menu_->popupBelow(place);
}

void BarMenu::close() {
    if (qt::QtMenu* const menu = openMenu())
        menu->close();
}

qt::QtMenu* BarMenu::openMenu() const {
    return menu_ && menu_->isVisible() ? menu_.get() : nullptr;
}

void BarMenu::showAbout() {
    if (!about_)
        about_ = std::make_unique<AboutWindow>();
    bringToFront(*about_);
}

} // namespace apps
