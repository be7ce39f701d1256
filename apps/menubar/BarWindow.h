#pragma once

#include <QWidget>

#include <vector>

namespace apps {

class ItemWidget;

/// The dock along the top of the primary screen. Follows the screen when it comes, goes or changes.
class BarWindow final : public QWidget {
    Q_OBJECT

  public:
    BarWindow();
    ~BarWindow() override;

    /// Shows the items from right to left; each as wide as it wants to be, or as there is room
    /// for.
    void placeItems(const std::vector<ItemWidget*>& fromRight);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void followScreen();
    void dock();

    std::vector<ItemWidget*> fromRight_;
    QMetaObject::Connection geometryConnection_;
    QMetaObject::Connection resolutionConnection_;
};

} // namespace apps
