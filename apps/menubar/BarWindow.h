#pragma once

#include <QWidget>

#include <chrono>
#include <vector>

namespace apps {

class ItemWidget;

/// The dock along the top of the primary screen. Adapts to changes of the screen's size, and moves
/// when another screen becomes primary; both close an open menu. Ignores the window manager's
/// requests to close it.
class BarWindow final : public QWidget {
    Q_OBJECT

  public:
    BarWindow();
    ~BarWindow() override;

    /// Places the items, the rightmost first, or if the layout is from right to left, the leftmost
    /// first. Each item gets its preferred width or the remaining space, whichever is smaller.
    /// Items with no space left are hidden.
    void placeItems(const std::vector<ItemWidget*>& items);
    /// Returns the items that have space in the bar, from left to right.
    std::vector<ItemWidget*> visibleItems() const;

    /// Shows the window, and again later if a window manager that was just starting has lost the
    /// request.
    void showOnScreen();

  signals:
    /// The right button was pressed over a part of the bar without items, @p x points from its left
    /// edge.
    void menuRequested(int x);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool nativeEvent(const QByteArray& type, void* message, qintptr* result) override;

  private:
    void followScreen();
    void dock();
    void checkIsShown(std::chrono::milliseconds delay);

    std::vector<ItemWidget*> items_;
    QMetaObject::Connection geometryConnection_;
    QMetaObject::Connection resolutionConnection_;
};

} // namespace apps
