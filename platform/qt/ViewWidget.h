#pragma once

#include "platform/qt/InputEvents.h"
#include "platform/widgets/MenuExtra.h"

#include <QSize>
#include <QWidget>

#include <functional>
#include <memory>
#include <string>

namespace platform::qt {

/// Shows a view inside a menu or a panel. Draws it with a transparent background, with text in the
/// widget's font and foreground colour unless the text has its own, and passes it mouse, wheel and
/// key events, drops and tooltip requests. Events that the view does not handle go on to the parent
/// widget, except mouse events. Screen readers see one element with the view's texts.
///
/// The view's code runs under the owner's identifier; see runGuarded. It may remove the view from
/// its menu or panel; in that case destroy the widget with deleteLater. Main thread only.
class ViewWidget final : public QWidget, public ViewContainer {
    Q_OBJECT

  public:
    /// Becomes the container of @p view, which must not be null, until the widget is destroyed or
    /// another container shows the view. Takes its size from the view.
    ViewWidget(std::shared_ptr<MenuExtraView> view, std::string owner, QWidget* parent = nullptr);
    ~ViewWidget() override;

    /// Returns the view, or null after detach().
    const std::shared_ptr<MenuExtraView>& view() const { return view_; }
    /// Stops showing the view, which may be destroyed afterwards. Call this before deleteLater.
    void detach();

    /// Chooses which dimensions of the view follow the widget when it is resized. At first none:
    /// the view keeps its size and is shown at the top left of the widget.
    void setFollowsWidget(Qt::Orientations dimensions);

    /// Draws the menu's highlight behind the view, or stops doing so.
    void setHighlighted(bool highlighted);

    /// Returns the size that the view's code has set, in points, rounded up and limited to 4096.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    /// Passes a key to the view. Returns whether the view handled it.
    bool sendKey(const QKeyEvent& event);
    /// Returns whether a mouse button was pressed over the view and is still held.
    bool isPressed() const { return isPressed_; }
    /// Tells the view that the pointer has left it, unless the view knows or a button is held.
    void sendExit();
    /// Returns the view's texts for screen readers.
    AccessibleDescription accessibleDescription() const;

    void viewNeedsDisplay(MenuExtraView& view) override;
    void viewSizeChanged(MenuExtraView& view) override;
    void dismiss() override;

  signals:
    /// The view's code has changed the size of the view. The layout should give the widget its new
    /// size hint.
    void viewResized();
    /// The view requests that the menu or panel that shows it is closed.
    void dismissRequested();

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    using Handler = void (MenuExtraView::*)(const Event& event);

    bool callView(const std::function<void(MenuExtraView& view)>& code) const;
    void sendMouse(const QMouseEvent& event, Handler handler, std::int32_t clickCount);
    void
    sendDrop(QDropEvent& event,
             const std::function<bool(MenuExtraView& view, const DroppedData& dropped)>& handler);
    Point location(QPointF position) const;
    void followWidget();
    void announceChanges();

    std::shared_ptr<MenuExtraView> view_;
    const std::string owner_;
    Size requestedSize_;
    Qt::Orientations following_;
    bool isFollowing_ = false; // while the widget resizes the view
    bool hasPointer_ = false;
    bool isPressed_ = false;
    bool highlighted_ = false;
    ClickCounter clicks_;
    std::int32_t clickCount_ = 1; // of the last press
    AccessibleDescription announced_;
};

} // namespace platform::qt
