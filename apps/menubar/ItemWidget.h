#pragma once

#include "platform/qt/InputEvents.h"
#include "platform/widgets/MenuExtra.h"

#include <QElapsedTimer>
#include <QImage>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <functional>

#include <memory>
#include <string>

namespace platform::qt {
class QtGraphics;
}

namespace apps {

/// Shows one item in the bar: the bar's background, the highlight while the item's menu is open or
/// the keyboard has selected the item, and what the item's view draws. The highlight and the view
/// are composited in a separate layer, so that drawing with XOR cuts through the highlight to the
/// background.
///
/// Passes wheel events, drops and tooltip requests to the view. A wheel or touch pad that reports
/// parts of a notch sends an event per complete notch.
class ItemWidget final : public QWidget {
    Q_OBJECT

  public:
    /// Space on either side of an item, in points.
    static constexpr int kPadding = 8;

    /// @p owner is the item's identifier, under which its code runs (see runGuarded).
    ItemWidget(std::string owner, std::shared_ptr<platform::MenuExtra> extra,
               platform::qt::QtGraphics& graphics, QWidget* parent);

    /// Returns the width in points, including padding, or 0 if the item's length is 0.
    int preferredWidth() const;
    /// Returns the texts for screen readers. Those that the view leaves empty are the bundle's
    /// name, the title and the tooltip.
    platform::AccessibleDescription accessibleTexts() const;
    /// Returns the name that screen readers speak: the name and the value.
    std::string accessibleItemName() const;
    /// Sets the time between two announcements of changed texts to screen readers; a minute by
    /// default. A change in between is announced when the time is over.
    void setAnnouncementInterval(std::chrono::milliseconds interval) { interval_ = interval; }

    /// Shows the highlight although no menu is open, and tells screen readers.
    void setSelected(bool selected);
    bool isSelected() const { return isSelected_; }

    /// Handles a press of a mouse button over the item, including one that Qt delivered to another
    /// widget, such as an open menu.
    void press(const QMouseEvent& event);

  signals:
    void pressed(const platform::Event& event);
    /// Changed texts were announced to screen readers.
    void announced(const std::string& accessibleName);
    void aboutToDraw();
    void drawn();

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    void drawLayer();
    bool isHighlighted() const { return isSelected_ || extra_->isMenuDown(); }
    bool callView(const std::function<void(platform::MenuExtraView& view)>& code) const;
    platform::Point location(QPointF position) const;
    platform::DroppedData droppedData(const QDropEvent& event) const;
    bool acceptsDrop(const QDropEvent& event) const;
    void announceLater();
    void announce();

    std::string owner_;
    std::shared_ptr<platform::MenuExtra> extra_;
    platform::qt::QtGraphics& graphics_;
    QImage layer_;
    bool isSelected_ = false;
    platform::qt::ClickCounter clicks_;
    QPointF wheelRest_; // turns of the wheel not yet sent, in notches

    // Announcements to screen readers.
    std::chrono::milliseconds interval_ = std::chrono::minutes(1);
    std::string announced_;
    QElapsedTimer sinceAnnounced_;
    QTimer announcement_;
};

} // namespace apps
