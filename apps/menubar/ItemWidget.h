#pragma once

#include "platform/widgets/MenuExtra.h"

#include <QImage>
#include <QWidget>

#include <memory>
#include <string>

namespace platform::qt {
class QtGraphics;
}

namespace apps {

/// Shows one item in the bar: the bar's background, the highlight while the item's menu is open,
/// and what the item's view draws. The highlight and the view are composited in a separate layer,
/// so that drawing with XOR cuts through the highlight to the background.
class ItemWidget final : public QWidget {
    Q_OBJECT

  public:
    /// Space on either side of an item, in points.
    static constexpr int kPadding = 6;

    /// @p owner is the item's identifier, under which its code runs (see runGuarded).
    ItemWidget(std::string owner, std::shared_ptr<platform::MenuExtra> extra,
               platform::qt::QtGraphics& graphics, QWidget* parent);

    /// Returns the width in points, including padding, or 0 if the item's length is 0.
    int preferredWidth() const;
    /// Returns the name for screen readers: the item's name and its title.
    std::string accessibleItemName() const;

    /// Handles a press of a mouse button over the item, including one that Qt delivered to another
    /// widget, such as an open menu.
    void press(const QMouseEvent& event);

  signals:
    void pressed(const platform::Event& event);
    void aboutToDraw();
    void drawn();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    void drawLayer();
    std::int32_t countClick(const QMouseEvent& event);

    std::string owner_;
    std::shared_ptr<platform::MenuExtra> extra_;
    platform::qt::QtGraphics& graphics_;
    QImage layer_;

    // The previous click, for counting double and triple clicks.
    Qt::MouseButton lastButton_ = Qt::NoButton;
    QPoint lastPosition_;
    quint64 lastTime_ = 0; // milliseconds
    std::int32_t clickCount_ = 0;
};

} // namespace apps
