#include "apps/menubar/ItemWidget.h"

#include "apps/menubar/BarStyle.h"
#include "platform/qt/HandledEvent.h"
#include "platform/qt/QtGraphics.h"
#include "platform/qt/Strings.h"
#include "platform/qt/ToolTip.h"
#include "platform/runtime/Guard.h"

#include <QAccessibleWidget>
#include <QDropEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace platform;

namespace apps {
namespace {

constexpr float kMaxLength = 100'000; // points; wider than any screen

/// Adds @p turn to @p rest, and removes and returns the complete notches. A turn in the other
/// direction drops the rest.
double takeNotches(double turn, double& rest) {
    constexpr double kRounding = 1e-6; // parts of a notch may not add up exactly
    if (turn * rest < 0)
        rest = 0;
    rest += turn;
    const double notches = std::trunc(rest + std::copysign(kRounding, rest));
    rest -= notches;
    return notches;
}

/// Returns the action with which the item takes dropped data, or Qt::IgnoreAction. The item copies:
/// the source must not delete what it has moved.
Qt::DropAction dropAction(const QDropEvent& event) {
    for (const Qt::DropAction action : {Qt::CopyAction, Qt::LinkAction})
        if (event.possibleActions() & action)
            return action;
    return Qt::IgnoreAction;
}

/// Follows whether a screen reader is active. Never destroyed, because Qt keeps a pointer to it.
class ScreenReader final : QAccessible::ActivationObserver {
  public:
    static bool isActive() {
        static const auto& reader = *new ScreenReader;
        return reader.isActive_;
    }

  private:
    ScreenReader() : isActive_(QAccessible::isActive()) {
        QAccessible::installActivationObserver(this);
    }
    void accessibilityActiveChanged(bool active) override { isActive_ = active; }

    bool isActive_;
};

/// Presents an item to screen readers as a button that opens a menu.
class ItemAccessible final : public QAccessibleWidget {
  public:
    explicit ItemAccessible(ItemWidget& widget)
        : QAccessibleWidget(&widget, QAccessible::ButtonMenu), item_(widget) {}

    QString text(QAccessible::Text kind) const override {
        switch (kind) {
        case QAccessible::Name: // with the value, which some screen readers do not speak
            return qt::qString(item_.accessibleItemName());
        case QAccessible::Value:
            return qt::qString(item_.accessibleTexts().value);
        case QAccessible::Description:
            return qt::qString(item_.accessibleTexts().description);
        default:
            return QAccessibleWidget::text(kind);
        }
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.focusable = true;
        state.focused = item_.isSelected();
        state.hasPopup = true;
        return state;
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
    setAcceptDrops(true);
    announcement_.setSingleShot(true);
    connect(&announcement_, &QTimer::timeout, this, &ItemWidget::announce);
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(createAccessible);
        return true;
    }();
}

int ItemWidget::preferredWidth() const {
    const float length = std::min(extra_->length(), kMaxLength); // an item may set any length
    return length > 0 ? static_cast<int>(std::ceil(length)) + 2 * kPadding : 0;
}

/// Runs code of the view, which may replace the view. Returns false after an exception.
bool ItemWidget::callView(const std::function<void(MenuExtraView& view)>& code) const {
    const std::shared_ptr<MenuExtraView> view = extra_->view();
    return runGuarded(owner_, [&] { code(*view); });
}

AccessibleDescription ItemWidget::accessibleTexts() const {
    AccessibleDescription texts;
    callView([&](const MenuExtraView& view) {
        texts = view.accessibleDescription();
        if (texts.name.empty())
            texts.name =
                extra_->bundle()->stringForInfoDictionaryKey("CFBundleName").value_or(owner_);
        const auto title = extra_->attributedTitle();
        if (texts.value.empty() && title)
            texts.value = title->string();
        if (texts.description.empty())
            texts.description = view.toolTip();
    });
    return texts;
}

std::string ItemWidget::accessibleItemName() const {
    const AccessibleDescription texts = accessibleTexts();
    return texts.value.empty() ? texts.name : texts.name + ", " + texts.value;
}

/// Announces a change of the name for screen readers, or leaves it to the timer if the last
/// announcement was a short time ago.
void ItemWidget::announceLater() {
    if (!ScreenReader::isActive() || announcement_.isActive() || accessibleItemName() == announced_)
        return;
    const auto passed = std::chrono::milliseconds(
        sinceAnnounced_.isValid() ? sinceAnnounced_.elapsed() : interval_.count());
    if (passed >= interval_)
        announce();
    else
        announcement_.start(interval_ - passed);
}

void ItemWidget::announce() {
    std::string name = accessibleItemName();
    if (!ScreenReader::isActive() || name == announced_)
        return;
    announced_ = std::move(name);
    sinceAnnounced_.start();
    QAccessibleEvent change(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&change);
    emit announced(announced_);
}

void ItemWidget::setSelected(bool selected) {
    if (std::exchange(isSelected_, selected) == selected)
        return;
    update();
    if (!selected || !ScreenReader::isActive())
        return;
    QAccessibleEvent focus(this, QAccessible::Focus);
    QAccessible::updateAccessibility(&focus);
}

void ItemWidget::paintEvent(QPaintEvent*) {
    emit aboutToDraw();
    drawLayer();
    QPainter painter(this);
    paintBarBackground(painter, rect(), palette());
    if (isHighlighted()) {
        // The layer has the rest of the highlight.
        const QRect inside(kPadding, 0, width() - 2 * kPadding, height());
        painter.setClipRegion(QRegion(rect()) - inside);
        paintBarHighlight(painter, rect(), palette());
        painter.setClipping(false);
    }
    painter.drawImage(kPadding, 0, layer_);
    emit drawn();
    announceLater();
}

void ItemWidget::drawLayer() {
    const QSize points(std::max(width() - 2 * kPadding, 0), height());
    const double scale = devicePixelRatioF();
    const QSize pixels(static_cast<int>(std::ceil(points.width() * scale)),
                       static_cast<int>(std::ceil(points.height() * scale)));
    if (layer_.size() != pixels)
        layer_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    layer_.setDevicePixelRatio(scale);
    layer_.fill(Qt::transparent);
    if (isHighlighted()) {
        QPainter painter(&layer_);
        paintBarHighlight(painter, rect().translated(-kPadding, 0), palette());
    }
    // While its menu is open, the item cuts its text out of the highlight.
    const auto textColor =
        isSelected_ && !extra_->isMenuDown() ? QPalette::HighlightedText : QPalette::WindowText;
    runGuarded(owner_, [&] {
        const auto view = extra_->view();
        const Rect whole{{}, {view->frame().size.width, static_cast<double>(height())}};
        const qt::ScopedContext context(graphics_, layer_, points, scale,
                                        palette().color(textColor));
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
    Event input = qt::inputEvent(event, clicks_.count(event));
    // Not event.position(): Qt may have delivered the event to another widget.
    input.location = location(mapFromGlobal(event.globalPosition()));
    emit pressed(input);
}

Point ItemWidget::location(QPointF position) const {
    return {position.x() - kPadding, height() - position.y()};
}

void ItemWidget::leaveEvent(QEvent*) {
    wheelRest_ = {};
}

void ItemWidget::wheelEvent(QWheelEvent* event) {
    WheelEvent input = qt::inputEvent(*event);
    input.location = location(event->position());
    input.deltaX = takeNotches(input.deltaX, wheelRest_.rx());
    input.deltaY = takeNotches(input.deltaY, wheelRest_.ry());
    if (input.deltaX == 0 && input.deltaY == 0)
        return;
    const qt::HandledEvent scope({.modifierFlags = input.modifierFlags, .clickCount = 0});
    bool handled = false;
    callView([&](MenuExtraView& view) { handled = view.scrollWheel(input); });
    event->setAccepted(handled);
}

void ItemWidget::dragEnterEvent(QDragEnterEvent* event) {
    event->acceptProposedAction(); // what may be dropped can depend on the position
}

DroppedData ItemWidget::droppedData(const QDropEvent& event) const {
    DroppedData dropped = qt::inputEvent(event);
    dropped.location = location(event.position());
    return dropped;
}

bool ItemWidget::acceptsDrop(const QDropEvent& event) const {
    const DroppedData dropped = droppedData(event);
    bool accepted = false;
    if (dropAction(event) != Qt::IgnoreAction && !(dropped.text.empty() && dropped.files.empty()))
        callView([&](const MenuExtraView& view) { accepted = view.acceptsDrop(dropped); });
    return accepted;
}

void ItemWidget::dragMoveEvent(QDragMoveEvent* event) {
    event->setDropAction(dropAction(*event));
    event->setAccepted(acceptsDrop(*event)); // false if there is no such action
}

void ItemWidget::dropEvent(QDropEvent* event) {
    const DroppedData dropped = droppedData(*event);
    bool used = false;
    if (acceptsDrop(*event))
        callView([&](MenuExtraView& view) { used = view.performDrop(dropped); });
    event->setDropAction(dropAction(*event));
    event->setAccepted(used);
}

bool ItemWidget::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    std::string text;
    callView([&](const MenuExtraView& view) { text = view.toolTip(); });
    const QPoint position = static_cast<const QHelpEvent*>(event)->globalPos();
    qt::showToolTip(position, text, *this);
    return true;
}

} // namespace apps
