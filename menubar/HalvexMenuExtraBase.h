#pragma once

#include "menubar/HalvexMenuViewBase.h"
#include "platform/Notifications.h"
#include "platform/widgets/MenuExtra.h"

#include <memory>
#include <optional>
#include <string>

/// Base class of the product's menu extras. Holds the title and the icon that the bar shows, keeps
/// the item's width in step with them, and dispatches clicks to four overridable operations.
/// Subclasses set the title and the icon, assign menu_ and override the clicks they handle. If
/// memory runs out, operations log this and change nothing or only part, unless noted otherwise.
/// Main thread only, except where noted.
class HalvexMenuExtraBase : public platform::MenuExtra {
  public:
    /// Logs the destruction if myDebug is not 0.
    ~HalvexMenuExtraBase() override;

    /// Always returns false: the Option flag is lost when the event's flags are narrowed to 8 bits.
    /// Kept for compatibility; initWithBundle relies on it to reset myDebug.
    static bool OptionDown();

    /// Creates the view, sets the title "-" and computes the width. Logs "starting …" with the
    /// bundle's name and version, and resets myDebug to 0.
    ///
    /// Returns this item, or null if MenuExtra::initWithBundle fails, which is logged. If creating
    /// or installing the view throws a platform::Exception, logs it and still returns the item;
    /// other exceptions, such as std::bad_alloc, propagate.
    std::shared_ptr<platform::MenuExtra>
    initWithBundle(std::shared_ptr<platform::Bundle> bundle) override;

    /// Shows plain text in the platform's default font, with a shadow if the view draws shadows.
    /// std::nullopt removes the title. Requests a redisplay unless the text is unchanged.
    virtual void setTitle(const std::optional<std::string>& title);
    /// Shows a copy of @p title; null removes the title. Does nothing if @p title is the instance
    /// already held. Requests a redisplay only if the width changes; if it does not, call
    /// setNeedsDisplay on the view.
    virtual void setAttributedTitle(const std::shared_ptr<platform::AttributedString>& title);
    /// Shows @p image left of the title; null removes it. Does nothing if @p image is the instance
    /// already held. Requests a redisplay only if the width changes, like setAttributedTitle.
    virtual void setImage(const std::shared_ptr<platform::Image>& image);

    std::shared_ptr<platform::AttributedString> attributedTitle() const override;
    std::shared_ptr<platform::Image> image() const override;
    std::shared_ptr<platform::Image> alternateImage() const override;
    std::shared_ptr<platform::Menu> menu() const override;

    /// Sets the width to that of the title and the icon plus 2 points, and 2.5 points more if the
    /// view draws shadows.
    virtual void recalWidth();
    /// Sets the width of the item and its view to @p width points and requests a redisplay. Does
    /// nothing if the width is unchanged.
    virtual void SetViewWidth(float width);

    /// Returns true if a clock format shows seconds, that is, contains "%S".
    virtual bool CheckForSecFormat(const std::optional<std::string>& format) const;

    // Called by the view for a click, depending on the modifier keys held. Return true if the click
    // was handled; otherwise the menu opens. The base class returns false.

    virtual bool clicked();
    virtual bool clickWithAltKey();
    virtual bool clickWithShiftKey();
    virtual bool clickWithCtrlKey();

    /// Returns true. Override it to disable menu items.
    bool validateMenuItem(const platform::MenuItem& item) override;
    void willUnload() override;

    /// Sets the text to show while the pointer rests on the item; empty, as at first, for none. If
    /// setAccessibleTexts has set no description, screen readers use it too.
    virtual void setToolTip(std::string text);
    /// Returns the text set last.
    virtual std::string toolTip() const;
    /// Sets what screen readers speak. Empty texts, as at first, are replaced by the bundle's name,
    /// the title and the tooltip. Set a value if the item shows an image without a title.
    virtual void setAccessibleTexts(platform::AccessibleDescription texts);
    /// Returns the texts set last.
    virtual platform::AccessibleDescription accessibleTexts() const;

    // Called by the view for the mouse wheel and for text or files dropped on the item; see
    // platform::MenuExtraView. The base class returns false.

    virtual bool scrolled(const platform::WheelEvent& event);
    virtual bool acceptsDrop(const platform::DroppedData& data) const;
    virtual bool performDrop(const platform::DroppedData& data);

    // The preference pane and the background application (Halvex.app). Operations that serve as
    // menu actions ignore their sender, which may be null.

    /// Opens the preference pane; see HalvexPrefsTools::HalvexOpenPrefs.
    virtual void HalvexPrefs(const platform::MenuItem* sender);
    /// Shows the background application's calculator. Runs HalvexLaunchThread on a new thread,
    /// which keeps this item alive until it exits.
    virtual void OpenCalculator(const platform::MenuItem* sender);
    /// Brings the background application to the front, starting it if necessary, and then posts
    /// @p notificationName to it with notifyHalvex2. Posts nothing if @p notificationName is
    /// std::nullopt. Blocks for up to 50 seconds: call it on a worker thread.
    ///
    /// If the application is running, queues the notification for the main thread and returns
    /// immediately. Otherwise opens the application, waits for up to 50 seconds until its launch is
    /// announced, and returns once the main thread has posted the notification. After a timeout,
    /// the notification is still posted and launches remain observed. If opening the application
    /// fails or myDebug is not 0, its path is logged and it is not brought to the front.
    ///
    /// Sets gHalvexisrunning to 0 first, and to 1 once the application is running.
    virtual void HalvexLaunchThread(const std::optional<std::string>& notificationName);
    /// Posts a distributed notification for the background application. Does nothing for
    /// std::nullopt. Thread-safe; HalvexLaunchThread calls it on the main thread.
    virtual void notifyHalvex2(const std::optional<std::string>& notificationName);
    /// Handles the notification that an application has been launched. If it was the background
    /// application, or the background application is found among the running processes, sets
    /// gHalvexisrunning and stops observing launches. Thread-safe.
    virtual void HalvexLaunched(const platform::Notification& notification);

  protected:
    std::shared_ptr<HalvexMenuViewBase> view_;
    std::shared_ptr<platform::AttributedString> appText_;
    float extraHeight_ = 0; ///< points; the thickness of the bar minus 1
    float extraWidth_ = 0;  ///< points; the last width set
    std::shared_ptr<platform::Image> icon_;
    std::shared_ptr<platform::Image> iconSelected_; ///< set by subclasses
    std::shared_ptr<platform::Menu> menu_;          ///< set by subclasses

  private:
    void createView();
    bool drawsShadow() const;
    void requestRedisplay();
    void observeLaunches();
    std::shared_ptr<HalvexMenuExtraBase> sharedSelf();

    std::string toolTip_;
    platform::AccessibleDescription accessibleTexts_;
};
