#pragma once

#include "platform/qt/PanelControl.h"
#include "platform/widgets/Slider.h"

#include <QSlider>

namespace platform::qt {

/// The widget of a slider. Main thread only.
class PanelSlider final : public QSlider, public PanelControl {
    Q_OBJECT

  public:
    PanelSlider(std::shared_ptr<Slider> slider, std::string owner, QWidget* parent);

    /// Returns the slider, or null after it has been removed from the panel.
    std::shared_ptr<Slider> slider() const { return control<Slider>(); }

  protected:
    void applySettings() override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    void report(int position);

    bool isPressed_ = false; ///< by the mouse, on the handle or beside it
};

} // namespace platform::qt
