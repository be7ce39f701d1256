#pragma once

#include "platform/Bundle.h"
#include "platform/base/NonCopyable.h"
#include "platform/values/AttributedString.h"
#include "platform/values/Event.h"
#include "platform/values/Geometry.h"
#include "platform/values/Image.h"
#include "platform/values/Input.h"
#include "platform/widgets/Menu.h"

#include <memory>
#include <string>

namespace platform {

class MenuExtra;
class MenuExtraView;

/// What shows a view outside of the bar: a menu or a panel. Main thread only.
class ViewContainer : NonCopyable {
  public:
    virtual ~ViewContainer();

    /// Schedules redrawing of @p view. Several requests before the next redraw count as one.
    virtual void viewNeedsDisplay(MenuExtraView& view) = 0;
    /// Called after the size of @p view has changed.
    virtual void viewSizeChanged(MenuExtraView& view) = 0;
    /// Closes the menu that shows the view, with the menus that it was opened from. A panel decides
    /// itself whether it closes.
    virtual void dismiss() = 0;
};

/// The view of an item in the bar, or a view inside a menu or a panel. Main thread only.
class MenuExtraView : public std::enable_shared_from_this<MenuExtraView>, NonCopyable {
  public:
    virtual ~MenuExtraView();

    /// Initializes the view. Returns the view itself, or null if it cannot be used.
    virtual std::shared_ptr<MenuExtraView> initWithFrame(const Rect& frame);

    /// Returns the frame in points. The bar positions the view and does not use the origin.
    const Rect& frame() const { return frame_; }
    void setFrameSize(Size size);

    /// Schedules a redraw if @p needed is set; otherwise clears the flag.
    virtual void setNeedsDisplay(bool needed);
    /// Returns whether a redraw has been requested since the host last drew the view.
    bool needsDisplay() const { return needsDisplay_; }

    /// Draws the whole view, @p rect, into the current graphics context. Draws nothing by default.
    virtual void drawRect(const Rect& rect);
    /// Handles a press of any mouse button. The default opens or closes the item's menu.
    virtual void mouseDown(const Event& event);
    /// Returns whether the view handles clicks while another program is active. Default: false.
    virtual bool acceptsFirstMouse(const Event& event) const;

    /// The pointer moves over the view, with or without a pressed button, and leaves it. Followed
    /// inside menus and panels, but not in the bar. The defaults do nothing.
    virtual void mouseMoved(const Event& event);
    virtual void mouseDragged(const Event& event);
    virtual void mouseUp(const Event& event);
    virtual void mouseExited();
    /// Handles the mouse wheel. Returns whether it did; the default returns false.
    virtual bool scrollWheel(const WheelEvent& event);
    /// Handles a key. Returns whether it did; the default returns false. A view in a menu receives
    /// keys while it is highlighted, and the menu handles those that the view does not.
    virtual bool keyDown(const KeyEvent& event);
    /// Returns whether @p data may be dropped on the view. Called while it is dragged over the
    /// view. Default: false.
    virtual bool acceptsDrop(const DroppedData& data) const;
    /// Receives data that acceptsDrop has accepted. Returns whether it used the data.
    virtual bool performDrop(const DroppedData& data);

    /// Returns the text to show while the pointer rests on the view. Empty, the default, for none.
    virtual std::string toolTip() const;
    /// Returns how screen readers present the view. All texts are empty by default.
    virtual AccessibleDescription accessibleDescription() const;

    /// Returns the item that uses this view, or null.
    MenuExtra* owner() const { return owner_; }

    /// Called by the host after it has drawn the view. Clears needsDisplay().
    void didDisplay() { needsDisplay_ = false; }
    /// Called by a menu or a panel that shows the view, and with null when it no longer does.
    void setContainer(ViewContainer* container) { container_ = container; }
    /// Returns the menu or panel that shows the view, or null.
    ViewContainer* container() const { return container_; }

  private:
    friend class MenuExtra;

    Rect frame_;
    MenuExtra* owner_ = nullptr;
    ViewContainer* container_ = nullptr;
    bool needsDisplay_ = false;
};

/// An item in the menu bar. The host creates it through the bundle's entry point, initializes it
/// with initWithBundle, and calls willUnload before releasing it. Main thread only.
class MenuExtra : public MenuTarget, public std::enable_shared_from_this<MenuExtra> {
  public:
    ~MenuExtra() override;

    /// Initializes the item with a plain view as high as the bar. Returns the item itself, or null
    /// if @p bundle is null. If an override returns null or throws, the item is not loaded.
    virtual std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle);
    /// Returns null before initWithBundle.
    const std::shared_ptr<Bundle>& bundle() const { return bundle_; }

    const std::shared_ptr<MenuExtraView>& view() const { return view_; }
    /// Replaces the view. @throws Exception (NSInvalidArgumentException) if @p view is null or used
    /// by another item.
    virtual void setView(std::shared_ptr<MenuExtraView> view);

    /// Returns the width of the item in the bar, in points.
    float length() const { return length_; }
    /// Sets the width of the item. A negative or NaN length counts as 0.
    virtual void setLength(float length);

    /// Returns whether the item's menu is open.
    bool isMenuDown() const { return menuDown_; }

    // What the item displays. The defaults return null.
    virtual std::shared_ptr<AttributedString> attributedTitle() const;
    virtual std::shared_ptr<Image> image() const;
    virtual std::shared_ptr<Image> alternateImage() const;
    virtual std::shared_ptr<Menu> menu() const;

    /// Called before the host calls menu() to open it. The default does nothing.
    virtual void menuWillOpen();
    /// Called after the menu has closed, or after menuWillOpen if there is no menu to open because
    /// menu() is null or empty. The default does nothing.
    virtual void menuDidClose();
    /// Called before the item is removed from the bar. The default does nothing.
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
