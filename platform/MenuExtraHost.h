#pragma once

#include "platform/Bundle.h"
#include "platform/Event.h"
#include "platform/Graphics.h"
#include "platform/Menu.h"
#include "platform/Service.h"

#include <cstdint>
#include <memory>
#include <string>

/// An item of the menu bar ("menu extra") and its view, as the bar sees them; and the bar itself,
/// as others ask it. Main thread, but for the latter, MenuExtraServer.
namespace platform {

class MenuExtra;

/// What shows an item in the bar.
class MenuExtraView : public std::enable_shared_from_this<MenuExtraView> {
  public:
    MenuExtraView() = default;
    virtual ~MenuExtraView();
    MenuExtraView(const MenuExtraView&) = delete;
    MenuExtraView& operator=(const MenuExtraView&) = delete;

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

    /// The item that has installed this view; null before.
    MenuExtra* owner() const { return owner_; }

  private:
    friend class MenuExtra;
    friend class MenuExtraHost;

    Rect frame_;
    MenuExtra* owner_ = nullptr;
    bool needsDisplay_ = false;
};

/// An item. The host makes it through the bundle's entry point, initialises it with initWithBundle
/// and holds it until it is unloaded; it tells willUnload before it lets go.
class MenuExtra : public MenuTarget, public std::enable_shared_from_this<MenuExtra> {
  public:
    MenuExtra() = default;
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

  private:
    friend class MenuExtraHost;

    std::shared_ptr<Bundle> bundle_;
    std::shared_ptr<MenuExtraView> view_;
    float length_ = 0;
    bool menuDown_ = false;
};

/// What the bar answers to requests about items; the numbers are the platform's where it has one.
enum class MenuExtraStatus : std::int32_t {
    NoError = 0,
    NotLoaded = -1,     ///< no item of that identifier or reference
    Refused = -2,       ///< the bundle did not pass the checks; the bar's log says which
    FileNotFound = -43, ///< fnfErr
    BadParameter = -50, ///< paramErr
};

/// A loaded item as the bar numbers it; 0 is none.
using MenuExtraReference = std::uint32_t;

/// The bar, as other programs ask it. Each request is answered within a bounded time; the status is
/// MenuExtraStatus's or, when no bar answers, any other number that is not 0. Any thread that may
/// block.
class MenuExtraServer {
  public:
    MenuExtraServer() = default;
    virtual ~MenuExtraServer();
    MenuExtraServer(const MenuExtraServer&) = delete;
    MenuExtraServer& operator=(const MenuExtraServer&) = delete;

    /// The reference of the item with this identifier.
    virtual std::int32_t getMenuExtra(const std::string& identifier,
                                      MenuExtraReference& reference) = 0;
    /// Asks for the bundle at a file URL to be loaded, which follows later. @p position orders the
    /// items from the right; the system has given the other numbers no meaning.
    virtual std::int32_t addMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                                      std::int32_t, std::int32_t, std::int32_t) = 0;
    /// The system has given @p flags no meaning.
    virtual std::int32_t removeMenuExtra(MenuExtraReference reference, std::int32_t flags) = 0;
};

MenuExtraServer& menuExtraServer();
template <>
MenuExtraServer* exchangeService<MenuExtraServer>(MenuExtraServer* service);

/// The bar, as an item needs it.
class MenuExtraHost {
  public:
    MenuExtraHost() = default;
    virtual ~MenuExtraHost();
    MenuExtraHost(const MenuExtraHost&) = delete;
    MenuExtraHost& operator=(const MenuExtraHost&) = delete;

    /// The height of the bar in points.
    virtual double statusBarThickness() const = 0;
    /// A view wants to be drawn again; may be told more than once before the host does.
    virtual void viewNeedsDisplay(MenuExtraView& view) = 0;
    /// The item wants another width.
    virtual void lengthChanged(MenuExtra& extra) = 0;
    /// Opens the item's menu below it, or closes it when it is open. Does not wait for it to close.
    virtual void toggleMenu(MenuExtra& extra) = 0;

  protected:
    static void setMenuDown(MenuExtra& extra, bool down) { extra.menuDown_ = down; }
    static void setDisplayed(MenuExtraView& view) { view.needsDisplay_ = false; }
};

/// Installed by a host; there is none before, and who asks ends the program.
MenuExtraHost& menuExtraHost();
template <>
MenuExtraHost* exchangeService<MenuExtraHost>(MenuExtraHost* service);

} // namespace platform

// The server's three operations under the names that the system gives them. Each may block for some
// seconds.

/// Status 0 and a reference that is not 0 when the item is loaded, else a reference of 0. @p
/// reference may be null.
std::int32_t CoreMenuExtraGetMenuExtra(const std::string& identifier,
                                       platform::MenuExtraReference* reference);
std::int32_t CoreMenuExtraAddMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                                       std::int32_t, std::int32_t, std::int32_t);
std::int32_t CoreMenuExtraRemoveMenuExtra(platform::MenuExtraReference reference,
                                          std::int32_t flags);
