#include "apps/menubar/ItemWidget.h"

#include "apps/menubar/BarStyle.h"
#include "platform/qt/Modifiers.h"
#include "platform/qt/QtGraphics.h"
#include "platform/runtime/Guard.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleHints>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

using namespace platform;

namespace apps {
namespace {

constexpr float kMaxLength = 100'000; // points; wider than any screen

std::int32_t buttonNumber(Qt::MouseButton button) {
    constexpr std::array kOrder{Qt::LeftButton, Qt::RightButton, Qt::MiddleButton, Qt::BackButton,
                                Qt::ForwardButton};
    const auto found = std::find(kOrder.begin(), kOrder.end(), button);
    return static_cast<std::int32_t>(found - kOrder.begin());
}

/// Presents an item to screen readers as a button that opens a menu.
class ItemAccessible final : public QAccessibleWidget {
  public:
    explicit ItemAccessible(ItemWidget& widget)
        : QAccessibleWidget(&widget, QAccessible::ButtonMenu), item_(widget) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? QString::fromStdString(item_.accessibleItemName())
                                         : QAccessibleWidget::text(kind);
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override {
        if (name == pressAction())
            emit item_.pressed(Event{});
    }

  private:
    ItemWidget& item_;
};

QAccessibleInterface* createAccessible(const QString&, QObject* object) {
    auto* widget = qobject_cast<ItemWidget*>(object);
    return widget ? new ItemAccessible(*widget) : nullptr;
}

} // namespace

ItemWidget::ItemWidget(std::string owner, std::shared_ptr<MenuExtra> extra,
                       qt::QtGraphics& graphics, QWidget* parent)
    : QWidget(parent), owner_(std::move(owner)), extra_(std::move(extra)), graphics_(graphics) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(createAccessible);
        return true;
    }();
}

int ItemWidget::preferredWidth() const {
    const float length = std::min(extra_->length(), kMaxLength); // an item may set any length
    return length > 0 ? static_cast<int>(std::ceil(length)) + 2 * kPadding : 0;
}

std::string ItemWidget::accessibleItemName() const {
    std::string name;
    runGuarded(owner_, [&] {
        name = extra_->bundle()->stringForInfoDictionaryKey("CFBundleName").value_or(owner_);
        if (const auto title = extra_->attributedTitle())
            name += ", " + title->string();
    });
    return name;
}

void ItemWidget::paintEvent(QPaintEvent*) {
    emit aboutToDraw();
    drawLayer();
    QPainter painter(this);
    paintBarBackground(painter, rect(), palette());
    if (extra_->isMenuDown()) {
        painter.fillRect(0, 0, kPadding, height(), palette().highlight());
        painter.fillRect(width() - kPadding, 0, kPadding, height(), palette().highlight());
    }
    painter.drawImage(kPadding, 0, layer_);
    emit drawn();
}

void ItemWidget::drawLayer() {
    const QSize points(std::max(width() - 2 * kPadding, 0), height());
    const double scale = devicePixelRatioF();
    const QSize pixels(static_cast<int>(std::ceil(points.width() * scale)),
                       static_cast<int>(std::ceil(points.height() * scale)));
    if (layer_.size() != pixels)
        layer_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    layer_.setDevicePixelRatio(scale);
    layer_.fill(extra_->isMenuDown() ? palette().color(QPalette::Highlight)
                                     : QColor(Qt::transparent));
    runGuarded(owner_, [&] {
        const auto view = extra_->view();
        const Rect whole{{}, {view->frame().size.width, static_cast<double>(height())}};
        const qt::ScopedContext context(graphics_, layer_, points, scale,
                                        palette().color(QPalette::WindowText));
        view->drawRect(whole);
    });
}

void ItemWidget::mousePressEvent(QMouseEvent* event) {
    press(*event);
}
void ItemWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    press(*event);
}

void ItemWidget::press(const QMouseEvent& event) {
    emit pressed(Event{.modifierFlags = qt::modifierFlags(event.modifiers()),
                       .clickCount = countClick(event),
                       .buttonNumber = buttonNumber(event.button())});
}

std::int32_t ItemWidget::countClick(const QMouseEvent& event) {
    const auto* hints = QGuiApplication::styleHints();
    const QPoint position = event.globalPosition().toPoint();
    const bool soon =
        event.timestamp() - lastTime_ <= static_cast<quint64>(hints->mouseDoubleClickInterval());
    const bool near =
        (position - lastPosition_).manhattanLength() <= hints->mouseDoubleClickDistance();
    clickCount_ = soon && near && event.button() == lastButton_ ? clickCount_ + 1 : 1;
    lastTime_ = event.timestamp();
    lastPosition_ = position;
    lastButton_ = event.button();
    return clickCount_;
}

} // namespace apps
