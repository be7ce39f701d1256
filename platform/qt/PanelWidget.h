#pragma once

#include "platform/PanelService.h"
#include "platform/widgets/Panel.h"

#include <QPoint>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform::qt {

class PanelButton;

/// A panel on the screen: a frameless floating window that paints the panel's background as it is,
/// with a shadow around it where windows can be translucent and with the background's own outline
/// where not. The mouse drags it by its background and resizes it by its edges and its indicator;
/// Control and the arrow keys move it, with Shift they resize it, Return or Space on the background
/// is the mouse's release there, Tab leads to the buttons, Escape and Control-W close it.
/// Main thread.
class PanelWidget final : public QWidget {
    Q_OBJECT

  public:
    explicit PanelWidget(Panel& panel);
    ~PanelWidget() override;

    /// The panel is going: nothing reaches it any more.
    void forget() { panel_ = nullptr; }

    void setLook(const PanelLook& look);
    void setFrame(const Rect& frame, bool display, bool animate);
    void addButton(const std::shared_ptr<Button>& button);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    /// What the mouse has taken hold of, and how things stood then.
    struct Grip {
        Qt::Edges edges; ///< none: the background
        QPoint mouse;
        Rect frame;
        bool moved = false;
    };

    QRect geometryFor(const Rect& frame) const;
    Rect frameFor(const QRect& geometry) const;
    QRect frameRect() const;
    Qt::Edges edgesAt(QPoint position) const;
    void followGrip(QPoint mouse);
    bool letSystemFollow();
    void adopt(const Rect& frame);
    void adoptInSteps(const Rect& frame);
    void followGeometry();
    void followKey(QPoint direction, bool resizes);
    void releaseMouse(const Event& event);
    void updateOutline();
    void paintShadow(QPainter& painter) const;
    void paintBackground(QPainter& painter) const;
    void paintResizeIndicator(QPainter& painter) const;
    bool isResizable() const;
    /// Runs code of the panel's owner, if the panel is still there.
    void tell(const std::function<void(Panel&)>& code);

    Panel* panel_;
    std::string owner_;
    int margin_; ///< around the frame, for the shadow; pixels of the toolkit's, that is points
    PanelLook look_;
    QWidget* content_;
    std::vector<PanelButton*> buttons_;
    std::optional<Grip> grip_;
    bool adopting_ = false;
};

} // namespace platform::qt
