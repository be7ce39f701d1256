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

/// Shows one item in the bar: the bar's ground, the highlight while its menu is open, and on top of
/// that what the item's view draws, composited in a layer of its own. What the view draws with XOR
/// on the highlight is therefore cut out of it and shows the bar's ground.
class ItemWidget final : public QWidget {
    Q_OBJECT

  public:
    /// Room at either side of an item, in points.
    static constexpr int kPadding = 6;

    ItemWidget(std::string owner, std::shared_ptr<platform::MenuExtra> extra,
               platform::qt::QtGraphics& graphics, QWidget* parent);

    /// The points that the item wants, padding included; 0 for an item without length.
    int wantedWidth() const;
    std::string spokenName() const;
    const std::shared_ptr<platform::MenuExtra>& extra() const { return extra_; }

    /// A button of the mouse was pressed over the item, wherever Qt sent that.
    void press(const QMouseEvent& event);

  signals:
    /// A button of the mouse was pressed over the item.
    void pressed(const platform::Event& event);
    /// The view is about to be drawn, and has been.
    void drawing();
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

    // The click before, to tell double and triple clicks.
    Qt::MouseButton lastButton_ = Qt::NoButton;
    QPoint lastPlace_;
    quint64 lastTime_ = 0; // milliseconds
    std::int32_t clickCount_ = 0;
};

} // namespace apps
