#pragma once

#include "platform/qt/MenuRow.h"
#include "platform/widgets/Menu.h"

#include <QMenu>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class QHelpEvent;

namespace platform::qt {

class ViewWidget;

/// The widget of a menu. If windows can be translucent, it has a shadow around the panel with the
/// rows, and otherwise only a thin border. Follows all changes of the menu and its items, coalesced
/// until the event loop runs, and keeps the highlighted item. Actions, targets and views run under
/// the owner's identifier; see runGuarded. Main thread only.
class QtMenu final : public QMenu, public MenuDisplay {
    Q_OBJECT

  public:
    /// Called when the mouse is pressed or moved outside the menu and its submenus. Returns whether
    /// it handled the event.
    using MouseHandler = std::function<bool(const QMouseEvent& event)>;

    /// Shares ownership of the menu, which must not be null, and of its items. An item whose
    /// submenu is the menu that contains it, or a parent of that menu, is shown disabled and
    /// without a submenu.
    QtMenu(std::shared_ptr<Menu> menu, std::string owner, QWidget* parent = nullptr);
    ~QtMenu() override;

    void setOutsideMouseHandler(MouseHandler handler);

    /// Opens the menu with its panel below @p item, a rectangle on the screen, where their left
    /// edges line up, or as close as its size permits. If the layout is from right to left, their
    /// right edges do.
    void popupBelow(const QRect& item);

    bool hasShadow() const { return hasShadow_; }
    /// Returns the width of the shadow or the border on each side of the panel, in points.
    int panelMargin() const;
    /// Returns the menu without its shadow, in the widget's coordinates.
    QRect panelRect() const;

    void itemsChanged() override;
    void itemChanged(const MenuItem& item) override;
    void dismiss() override;

    /// Returns the item that a row shows, or null for an unknown action.
    const MenuItem* itemOf(const QAction& action) const;
    /// Returns the widget of the view that a row shows, or null if it shows none.
    const ViewWidget* viewOf(const QAction& action) const;

    // For the style, about the row that it was last passed. std::nullopt and false if there is
    // none.
    std::optional<QSize> styledRowSize() const;
    bool paintStyledRow(QPainter& painter, const QStyleOptionMenuItem& option) const;

  signals:
    /// Emitted when an arrow key would leave the menu: with -1 to the left, with 1 to the right.
    void neighbourRequested(int direction);

  protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const override;

  private:
    using Group = std::vector<std::shared_ptr<MenuItem>>; // an item and its alternates

    /// One line of the menu.
    struct Row {
        Group group;
        std::shared_ptr<MenuItem> shown; // one of the group
        std::shared_ptr<MenuExtraView> view;
        std::shared_ptr<Menu> submenu;
        QAction* action = nullptr;
        ViewWidget* viewWidget = nullptr; // owned by the action
        QtMenu* submenuWidget = nullptr;
    };
    using Rows = std::vector<std::unique_ptr<Row>>;

    QtMenu& root();
    bool isNestedIn(const Menu& menu) const;
    Row* rowOf(const QAction* action) const;

    void scheduleSync();
    void refreshAll();
    void sync();
    void observeItems();
    static std::vector<Group> groups(const Menu& menu);
    void arrangeRows();
    std::unique_ptr<Row> makeRow(const std::shared_ptr<MenuItem>& item);
    QAction* makeViewAction(Row& row);
    void retire(Row& row);
    const std::shared_ptr<MenuItem>& itemFor(const Group& group);
    void refreshRows(const std::function<bool(const Row& row)>& needsRefresh);
    void refresh(Row& row);
    void showSubmenu(Row& row, const std::shared_ptr<Menu>& submenu);
    void relayout();

    QtMenu* parentMenu() const;
    void place();
    void placeAt(QPoint corner);
    void placeBesideParent(const QtMenu& parent);
    bool handles(const QMouseEvent& event);
    bool handlesShadow(const QMouseEvent& event);
    static void forward(const QMouseEvent& event, QWidget& widget);
    bool sendToFirstView(const QKeyEvent& event);
    static bool swallows(const Row& row, const QKeyEvent& event);
    bool performShortcut(const QKeyEvent& event);
    static void perform(std::string owner, std::shared_ptr<MenuItem> item, std::uint32_t modifiers);
    void showToolTip(const QHelpEvent& event);
    void setModifiers(std::uint32_t flags);
    void showAlternates();
    void scrollToActiveRow();
    void updateHighlight();
    void showHighlight(const Row& row);

    const std::shared_ptr<Menu> menu_;
    const std::string owner_;
    MouseHandler mouseHandler_; // of the root
    Rows rows_;
    std::vector<std::shared_ptr<MenuItem>> observed_;
    std::set<const MenuItem*> changed_; // since the last sync
    MenuColumns columns_;
    std::shared_ptr<MenuItem> highlighted_;
    mutable const Row* styled_ = nullptr;
    std::uint32_t modifiers_ = 0; // of the root: those that are held
    const bool hasShadow_;
    std::optional<QPoint> corner_; // where popupBelow was asked to open the panel
    bool needsSync_ = false;
    bool isRefreshing_ = false;
};

} // namespace platform::qt
