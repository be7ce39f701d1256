#include "platform/qt/PanelViewBox.h"

#include "platform/qt/PanelStyle.h"
#include "platform/qt/ViewWidget.h"
#include "platform/widgets/MenuExtra.h"

#include <QEvent>
#include <QPainter>

namespace platform::qt {
namespace {

constexpr int kRingDistance = 3; // points

class FocusRing final : public QWidget {
  public:
    explicit FocusRing(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        paintFocusRing(painter, rect(), palette().highlight().color());
    }
};

} // namespace

PanelViewBox::PanelViewBox(std::shared_ptr<ViewBox> box, const std::string& owner, QWidget* parent)
    : PanelViewBox(box, owner, *new ViewWidget(box->view(), owner, parent)) {}

PanelViewBox::PanelViewBox(std::shared_ptr<ViewBox> box, const std::string& owner, ViewWidget& view)
    : QObject(&view), PanelControl(view, std::move(box), owner), view_(view),
      ring_(new FocusRing(view.parentWidget())) {
    view.installEventFilter(this);
    connect(&view, &ViewWidget::viewResized, this, [this] { followView(); });
    connect(&view, &ViewWidget::dismissRequested, &view, [this] { view_.window()->close(); });
    connect(&view, &QObject::destroyed, ring_, &QObject::deleteLater);
    controlDidChange();
    view.setFollowsWidget(Qt::Horizontal | Qt::Vertical);
}

void PanelViewBox::applySettings() {
    view_.setFocusPolicy(control<ViewBox>()->acceptsFocus() ? Qt::StrongFocus : Qt::NoFocus);
}

void PanelViewBox::willDetach() {
    view_.detach();
    ring_->hide();
}

void PanelViewBox::followView() {
    const auto box = control<ViewBox>();
    if (box)
        box->setFrame({box->frame().origin, box->view()->frame().size});
}

void PanelViewBox::placeRing() {
    ring_->setGeometry(
        view_.geometry().adjusted(-kRingDistance, -kRingDistance, kRingDistance, kRingDistance));
}

bool PanelViewBox::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
        placeRing();
        break;
    case QEvent::FocusIn:
        ring_->show();
        ring_->raise();
        break;
    case QEvent::FocusOut:
    case QEvent::Hide:
        ring_->hide();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace platform::qt
