#pragma once

#include "platform/Bundle.h"
#include "platform/base/NonCopyable.h"
#include "platform/values/AttributedString.h"
#include "platform/values/Event.h"
#include "platform/values/Geometry.h"
#include "platform/values/Image.h"
#include "platform/widgets/Menu.h"

#include <memory>

namespace platform {

class MenuExtra;

/// What shows an item in the bar.
class MenuExtraView : public std::enable_shared_from_this<MenuExtraView>, NonCopyable {
  public:
    virtual ~MenuExtraView();

    /// Gives the view itself, or null when it cannot be used.
    virtual std::shared_ptr<MenuExtraView> initWithFrame(const Rect& frame);

    /// In points; the bar places the view, so the origin is the item's own business.
    const Rect& frame() const { return frame_; }
    void setFrameSize(Size size);

    /// Asks for the view to be drawn again, at once or with the next changes.
    virtual void setNeedsDisplay(bool needed);
    /// Whether it was asked for since the host last drew the view.
    bool needsDisplay() const { return needsDisplay_; }

    /// Draws the view into the current graphics context; @p rect is the whole view. Nothing here.
    virtual void drawRect(const Rect& rect);
    /// Handles a press of any mouse button: opens the item's menu.
    virtual void mouseDown(const Event& event);
    /// Whether a click counts that arrives while another program is active. NO here.
    virtual bool acceptsFirstMouse(const Event& event) const;

    /// The item that installed this view, or null.
    MenuExtra* owner() const { return owner_; }

    /// Called by the host after it has drawn the view: clears needsDisplay.
    void didDisplay() { needsDisplay_ = false; }

  private:
    friend class MenuExtra;

    Rect frame_;
    MenuExtra* owner_ = nullptr;
    bool needsDisplay_ = false;
};

/// An item. The host makes it through the bundle's entry point, initialises it with initWithBundle
/// and holds it until it is unloaded; it tells willUnload before it lets go.
class MenuExtra : public MenuTarget, public std::enable_shared_from_this<MenuExtra> {
  public:
    ~MenuExtra() override;

    /// Makes the item's first view, as high as the bar. Gives the item itself, or null when there
    /// is no bundle. What a subclass throws here means that it is not loaded.
    virtual std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle);
    /// Null before initWithBundle.
    const std::shared_ptr<Bundle>& bundle() const { return bundle_; }

    const std::shared_ptr<MenuExtraView>& view() const { return view_; }
    /// Puts another view in place. @throws Exception (NSInvalidArgumentException) for no view, and
    /// for one that is another item's.
    virtual void setView(std::shared_ptr<MenuExtraView> view);

    /// The room that the item takes in the bar, in points; never negative, not a number is 0.
    float length() const { return length_; }
    virtual void setLength(float length);

    /// Whether the item's menu is open.
    bool isMenuDown() const { return menuDown_; }

    /// What the item shows and offers; null when there is none.
    virtual std::shared_ptr<AttributedString> attributedTitle() const;
    virtual std::shared_ptr<Image> image() const;
    virtual std::shared_ptr<Image> alternateImage() const;
    virtual std::shared_ptr<Menu> menu() const;

    /// Called before the menu is read for opening, and after it has closed.
    virtual void menuWillOpen();
    virtual void menuDidClose();
    /// Called before the item is taken out of the bar.
    virtual void willUnload();

    /// Called by the host when it opens or closes the item's menu.
    void setMenuDown(bool down) { menuDown_ = down; }

  private:
    std::shared_ptr<Bundle> bundle_;
    std::shared_ptr<MenuExtraView> view_;
    float length_ = 0;
    bool menuDown_ = false;
};

} // namespace platform
