#pragma once

#include "platform/qt/PanelControl.h"
#include "platform/widgets/ViewBox.h"

#include <QObject>

namespace platform::qt {

class ViewWidget;

/// Shows a view in a panel, with a ring around it while it has the keyboard focus. Belongs to the
/// widget that shows the view. Main thread only.
class PanelViewBox final : public QObject, public PanelControl {
    Q_OBJECT

  public:
    PanelViewBox(std::shared_ptr<ViewBox> box, const std::string& owner, QWidget* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void applySettings() override;
    void willDetach() override;

  private:
    PanelViewBox(std::shared_ptr<ViewBox> box, const std::string& owner, ViewWidget& view);
    void followView();
    void placeRing();

    ViewWidget& view_;
    QWidget* ring_;
};

} // namespace platform::qt
