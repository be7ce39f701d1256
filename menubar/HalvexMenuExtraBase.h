#pragma once

#include "menubar/HalvexMenuViewBase.h"
#include "platform/Notifications.h"
#include "platform/widgets/MenuExtra.h"

#include <memory>
#include <optional>
#include <string>

/// The class that every menu extra of the product derives from. It holds what the bar shows (a
/// title and an icon), keeps the item as wide as that, and turns clicks into four operations. A
/// subclass sets title and icon, gives the menu (menu_), and overrides the clicks that it wants to
/// handle. Main thread.
class HalvexMenuExtraBase : public platform::MenuExtra {
  public:
    /// When myDebug is not 0, logs that it goes.
    ~HalvexMenuExtraBase() override;

    /// NO, whatever keys are held: the Option flag is lost when the flags are narrowed to the
    /// answer. Kept, so that initWithBundle always leaves myDebug at 0.
    static bool OptionDown();

    /// Makes the view, sets the title "-" and computes the width; logs "starting …" with the
    /// bundle's name and version. Gives the item itself, or null (logged) when the platform's class
    /// does. A platform::Exception while the view is made and installed is logged, and the item is
    /// given all the same; exceptions of other kinds go on to the caller. Resets myDebug.
    std::shared_ptr<platform::MenuExtra>
    initWithBundle(std::shared_ptr<platform::Bundle> bundle) override;

    /// Shows plain text in the platform's font, with a shadow of its own when the view draws
    /// shadows; nothing shows none. The same text again asks for no redisplay.
    virtual void setTitle(const std::optional<std::string>& title);
    /// Shows a copy of @p title. The very object already held changes nothing. Only another width
    /// asks for a redisplay; else it is the caller's to ask the view for one.
    virtual void setAttributedTitle(const std::shared_ptr<platform::AttributedString>& title);
    /// Shows @p image left of the title. The very object already held changes nothing. Redisplay
    /// as above.
    virtual void setImage(const std::shared_ptr<platform::Image>& image);

    std::shared_ptr<platform::AttributedString> attributedTitle() const override;
    std::shared_ptr<platform::Image> image() const override;
    std::shared_ptr<platform::Image> alternateImage() const override;
    std::shared_ptr<platform::Menu> menu() const override;

    /// Fits the width to title and icon: their widths, 2 points, and 2.5 for a shadow.
    virtual void recalWidth();
    /// Makes item and view @p width points wide and redraws them; nothing when they are already.
    virtual void SetViewWidth(float width);

    /// Whether a clock format shows seconds: whether it contains "%S".
    virtual bool CheckForSecFormat(const std::optional<std::string>& format) const;

    /// A click, with the key that was held. YES when it is handled: the menu then stays closed.
    /// NO here.
    virtual bool clicked();
    virtual bool clickWithAltKey();
    virtual bool clickWithShiftKey();
    virtual bool clickWithCtrlKey();

    /// YES always, unless a subclass says otherwise.
    bool validateMenuItem(const platform::MenuItem& item) override;
    void willUnload() override;

    // The preference pane and the background application (Halvex.app). What a menu item's action
    // calls ignores its sender, which may be null.

    /// Opens the preference pane (HalvexPrefsTools::HalvexOpenPrefs). Main thread.
    virtual void HalvexPrefs(const platform::MenuItem* sender);
    /// Asks the background application for its calculator, from a thread of its own. The item stays
    /// until that thread has ended. Main thread.
    virtual void OpenCalculator(const platform::MenuItem* sender);
    /// Hands the background application a request, which is a notification's name; without one it
    /// only comes to the front. What OpenCalculator's thread does, for a thread that may wait.
    ///
    /// A running application is brought to the front and notified without waiting for that. One
    /// that is not is started (the path is logged when that fails or myDebug is not 0), waited for
    /// until an announced launch tells that it runs, 50 seconds at most, and then notified in any
    /// case; this returns when the notification is posted. Launches stay observed after a wait in
    /// vain. gHalvexisrunning is 0 at first, and 1 as soon as the application is known to run.
    virtual void HalvexLaunchThread(const std::optional<std::string>& notificationName);
    /// Posts a notification of this name for the background application; nothing for none. Any
    /// thread; HalvexLaunchThread calls it on the main thread.
    virtual void notifyHalvex2(const std::optional<std::string>& notificationName);
    /// Hears of an application's launch. When it is the background application's, or that is found
    /// to run, the wait is over and launches are no longer observed. Any thread.
    virtual void HalvexLaunched(const platform::Notification& notification);

  protected:
    std::shared_ptr<HalvexMenuViewBase> view_;
    std::shared_ptr<platform::AttributedString> appText_;
    float extraHeight_ = 0; ///< points; the bar's thickness less 1
    float extraWidth_ = 0;  ///< points; the width last given to the item
    std::shared_ptr<platform::Image> icon_;
    std::shared_ptr<platform::Image> iconSelected_; ///< for subclasses to set
    std::shared_ptr<platform::Menu> menu_;          ///< for subclasses to set

  private:
    void makeView();
    void markForRedisplay();
    void observeLaunches();
    std::shared_ptr<HalvexMenuExtraBase> sharedSelf();
};
