#pragma once

#include "platform/PanelService.h"
#include "platform/base/Watch.h"
#include "platform/widgets/Panel.h"

#include <QPoint>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform::qt {

class PanelCloseButton;
class PanelControl;
class PanelStyle;

/// The window of a panel: frameless, floating, with the panel's background. If windows can be
/// translucent, it has a shadow, through which the mouse reaches the window below; otherwise it is
/// masked to the outline of the background. It follows the start and exit of a compositing manager.
///
/// A closable panel with a title bar has a close control at the left end of the title bar. A double
/// click on the title bar minimizes the panel if its style permits.
///
/// The mouse can drag it by its background and resize it by its edges and its resize indicator.
/// Control and an arrow key move it, or with Shift resize it; Tab moves the focus to its controls;
/// Escape and Control-W close it. Return clicks its default button. Without one, and if no control
/// has the focus, Return counts as a click on the background, as Space does. Main thread.
class PanelWidget final : public QWidget {
    Q_OBJECT

  public:
    explicit PanelWidget(Panel& panel);
    ~PanelWidget() override;

    /// Disconnects the widget from its panel and the panel's controls, which may be destroyed
    /// afterwards.
    void detach();

    void setLook(const PanelLook& look);
    void setFrame(const Rect& frame, bool display, bool animate);
    /// Logs "a panel cannot show this kind of control" for a class of controls that is not known.
    void addControl(const std::shared_ptr<Control>& control);
    void removeControl(Control& control);
    void setDefaultButton(const Button* button);
    /// Shows the panel in front and activates it. Unless a control has the focus, the first text
    /// field or list gets it, or else the panel.
    void makeKeyAndOrderFront();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    /// A mouse press, which becomes a drag once the mouse has moved.
    struct Drag {
        Qt::Edges edges; ///< none for the background
        QPoint start;    ///< of the mouse, on the screen
        Rect frame;      ///< of the panel, at the start
        bool hasMoved = false;
    };

    QRect frameRect() const;
    bool hasStyle(std::uint32_t mask) const; ///< whether the style has all bits of the mask
    bool isResizable() const;
    bool showsResizeIndicator() const;
    Qt::Edges draggableEdgesAt(QPoint position) const;

    /// Sets the window's geometry and reports the frame to the panel.
    void adoptFrame(const Rect& frame);
    void animateTo(const Rect& frame);
    /// Reports the frame to the panel after the window system has moved or resized the window.
    void followGeometry();
    void updateMask();

    void continueDrag(QPoint mouse);
    /// On Wayland, where programs cannot move their windows, hands the drag over to the compositor
    /// and returns true.
    bool startSystemDrag();
    void moveByKey(QPoint direction, bool resizes);
    void pressReturn(Qt::KeyboardModifiers modifiers);
    bool hasBackgroundFocus() const;
    void sendMouseUp(Qt::KeyboardModifiers modifiers);

    /// Calls @p code with the panel, guarded with the owner's identifier. Does nothing after
    /// detach() has been called.
    void callPanel(const std::function<void(Panel&)>& code);

    Panel* panel_;
    std::string owner_;
    int margin_ = 0; ///< the width of the shadow around the frame, in points
    PanelLook look_;
    QWidget* content_;
    std::unique_ptr<PanelStyle> style_; ///< created for the first control
    std::vector<PanelControl*> controls_;
    const Button* defaultButton_ = nullptr;
    PanelCloseButton* closeButton_ = nullptr;
    std::optional<Drag> drag_;
    bool isAdopting_ = false;
    std::unique_ptr<Watch> translucency_;
};

} // namespace platform::qt
