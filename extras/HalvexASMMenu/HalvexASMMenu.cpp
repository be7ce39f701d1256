#include "extras/HalvexASMMenu/Favourites.h"
#include "extras/HalvexASMMenu/SwitcherMenu.h"
#include "extras/HalvexASMMenu/SwitcherTitle.h"
#include "extras/shared/Texts.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "menubar/ItemPreferences.h"
#include "platform/Applications.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <algorithm>
#include <memory>
#include <optional>

using namespace platform;
using extras::tr;

namespace {

/// The application switcher. Its title is the active application; its menu lists those that are
/// running. Observes the applications while it is loaded, because only that keeps the order
/// of use.
class HalvexASMMenu final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(bundle))
            return nullptr;
        extras::bindTexts(*bundle);
        settings_ = menubar::preferencesOf(bundle);
        favourites_.emplace(settings_);
        contents_ = std::make_unique<switcher::SwitcherMenu>(*favourites_, weak_from_this());
        menu_ = contents_->menu();
        style_.read(settings_, switcher::TitleStyle::keys());
        showTitle(nullptr); // the list is not known yet
        settingsWatch_ = settings_.onChange([this](const auto& keys) {
            style_.read(settings_, keys);
            applicationsDidChange();
        });
        applicationsWatch_ = applications().observe([this] { applicationsDidChange(); });
        return shared_from_this();
    }

    void menuWillOpen() override {
        isOpen_ = true;
        contents_->refill();
    }
    void menuDidClose() override { isOpen_ = false; }

    void willUnload() override {
        applicationsWatch_.reset();
        settingsWatch_.reset();
        HalvexMenuExtraBase::willUnload();
    }

  private:
    void applicationsDidChange() {
        const auto running = applications().running();
        const auto active = std::ranges::find(running, true, &RunningApplication::isActive);
        showTitle(active == running.end() ? nullptr : &*active);
        if (isOpen_)
            contents_->update();
    }

    void showTitle(const RunningApplication* active) {
        const auto [image, text] = switcher::titleFor(active, style_, emptyIcon_);
        const std::string name = active ? active->name : tr("No active application");
        if (image == icon_ && name == shownName_ && (appText_ != nullptr) == text.has_value() &&
            (!text || *text == appText_->string()))
            return;
        shownName_ = name;
        setTitle(text);
        setImage(image);
        setToolTip(name);
        setAccessibleTexts({.value = name});
    }

    Preferences settings_;
    std::optional<switcher::Favourites> favourites_;
    std::unique_ptr<switcher::SwitcherMenu> contents_;
    switcher::TitleStyle style_;
    std::shared_ptr<Image> emptyIcon_ = switcher::emptyIcon();
    std::string shownName_;
    bool isOpen_ = false;
    std::unique_ptr<Watch> settingsWatch_;
    std::unique_ptr<Watch> applicationsWatch_;
};

} // namespace

HALVEX_MENU_EXTRA(HalvexASMMenu)
