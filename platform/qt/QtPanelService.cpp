#include "platform/qt/QtPanelService.h"

#include "platform/Log.h"
#include "platform/qt/PanelWidget.h"
#include "platform/qt/Strings.h"

#include <QApplication>

namespace platform::qt {
namespace {

class QtPanelWindow final : public PanelWindow {
  public:
    explicit QtPanelWindow(Panel& panel) : widget_(new PanelWidget(panel)) {}
    ~QtPanelWindow() override {
        // Deleted later, because one of its functions may be running.
        widget_->detach();
        widget_->hide();
        widget_->deleteLater();
    }

    void setTitle(const std::string& title) override {
        widget_->setWindowTitle(qString(title));
        widget_->setAccessibleName(qString(title));
        widget_->update();
    }
    void setLook(const PanelLook& look) override { widget_->setLook(look); }
    void setFrame(const Rect& frame, bool display, bool animate) override {
        widget_->setFrame(frame, display, animate);
    }
    void addControl(const std::shared_ptr<Control>& control) override {
        widget_->addControl(control);
    }
    void removeControl(Control& control) override { widget_->removeControl(control); }
    void setDefaultButton(Button* button) override { widget_->setDefaultButton(button); }
    void display() override { widget_->repaint(); }
    void makeKeyAndOrderFront() override { widget_->makeKeyAndOrderFront(); }
    void orderOut() override { widget_->hide(); }

  private:
    PanelWidget* widget_;
};

} // namespace

std::unique_ptr<PanelWindow> QtPanelService::makeWindow(Panel& panel) {
    if (qobject_cast<QApplication*>(QCoreApplication::instance()))
        return std::make_unique<QtPanelWindow>(panel);
    logLine("cannot create a panel: the program has no QApplication");
    return nullptr;
}

} // namespace platform::qt
