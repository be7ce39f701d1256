#include "apps/menubar/KeyboardNavigation.h"

#include "apps/menubar/BarWindow.h"
#include "apps/menubar/ItemCollection.h"
#include "apps/menubar/MenuTracker.h"
#include "apps/menubar/X11Dock.h"
#include "platform/qt/Modifiers.h"

#include <QKeyEvent>
#include <QWidget>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>
#include <vector>

namespace apps {
namespace {

constexpr std::chrono::milliseconds kRetryInterval{20};
constexpr std::chrono::milliseconds kPatience{2000};
/// Qt notices a little later that the keys go to another program again, and then closes all popups.
constexpr std::chrono::milliseconds kPause{250};

/// A popup window of one pixel in the bar's colour. It holds the grab of the keyboard while menus
/// close and open, and receives the keys while none is open.
class KeyReceiver final : public QWidget {
  public:
    KeyReceiver(std::function<void(const QKeyEvent&)> onKey, std::function<void()> onHide)
        : QWidget(nullptr, Qt::Popup), onKey_(std::move(onKey)), onHide_(std::move(onHide)) {}

  protected:
    void keyPressEvent(QKeyEvent* event) override { onKey_(*event); }
    bool focusNextPrevChild(bool) override { return false; } // Tab is a key like the others
    void hideEvent(QHideEvent*) override { onHide_(); }

  private:
    std::function<void(const QKeyEvent&)> onKey_;
    std::function<void()> onHide_;
};

} // namespace

KeyboardNavigation::KeyboardNavigation(BarWindow& bar, ItemCollection& items, MenuTracker& menus)
    : bar_(bar), items_(items), menus_(menus),
      keyReceiver_(std::make_unique<KeyReceiver>([this](const QKeyEvent& key) { handleKey(key); },
                                                 [this] { end(); })) {
    retry_.setInterval(kRetryInterval);
    connect(&retry_, &QTimer::timeout, this, &KeyboardNavigation::tryToBegin);
    connect(&menus_, &MenuTracker::closed, this, &KeyboardNavigation::menuClosed);
    connect(&items_, &ItemCollection::aboutToRemove, this, [this](const Item& item) {
        if (item.identifier() == selected_)
            end();
    });
    menus_.setNeighbourHandler([this](int direction) { return moveBy(direction); });
}

KeyboardNavigation::~KeyboardNavigation() {
    menus_.setNeighbourHandler({});
    end();
}

void KeyboardNavigation::start(Started started) {
    if (isActive_)
        return started({});
    if (started_)
        std::exchange(started_, {})("a later request replaces this one");
    started_ = std::move(started);
    sinceStart_.start();
    tryToBegin();
}

void KeyboardNavigation::tryToBegin() {
    const auto finish = [this](const std::string& problem) {
        retry_.stop();
        std::exchange(started_, {})(problem);
    };
    if (bar_.visibleItems().empty())
        return finish("the menu bar shows no menu extras");
    const bool pauses = sinceEnd_.isValid() && !sinceEnd_.hasExpired(kPause.count());
    if (!pauses && X11Dock::grabKeyboard(*bar_.windowHandle())) {
        begin();
        return finish({});
    }
    if (sinceStart_.hasExpired(kPatience.count()))
        return finish("another program has grabbed the keyboard");
    retry_.start();
}

void KeyboardNavigation::begin() {
    const auto open = std::find_if(items_.begin(), items_.end(),
                                   [](const Item& item) { return item.extra().isMenuDown(); });
    const auto visible = bar_.visibleItems();
    const ItemWidget* const first = bar_.isRightToLeft() ? visible.back() : visible.front();
    const auto farthest = std::find_if(
        items_.begin(), items_.end(), [&](const Item& item) { return item.widget.get() == first; });
    menus_.closeOpenMenu(); // it would be below the popup
    isActive_ = true;
    keyReceiver_->setPalette(bar_.palette());
    keyReceiver_->setGeometry(QRect(bar_.mapToGlobal(QPoint()), QSize(1, 1)));
    keyReceiver_->show();
    select((open != items_.end() ? open : farthest)->identifier());
}

void KeyboardNavigation::end() {
    if (!std::exchange(isActive_, false))
        return;
    if (const Item* item = items_.find(selected_))
        item->widget->setSelected(false);
    selected_.clear();
    keyReceiver_->hide();
    X11Dock::releaseKeyboard();
    sinceEnd_.start();
}

/// Shows the item when the event loop runs next: the menu that was open may be handling a key.
void KeyboardNavigation::select(const std::string& identifier) {
    if (const Item* previous = items_.find(selected_))
        previous->widget->setSelected(false);
    selected_ = identifier;
    isShown_ = false;
    QTimer::singleShot(0, this, [this, identifier] {
        Item* item = items_.find(identifier);
        if (!isActive_ || isShown_ || identifier != selected_ || !item)
            return;
        isShown_ = true;
        if (!menus_.open(*item) && isActive_)
            item->widget->setSelected(true);
    });
}

/// Returns false if the navigation is not active.
bool KeyboardNavigation::moveBy(int direction) {
    if (!isActive_)
        return false;
    const auto visible = bar_.visibleItems();
    const Item* selected = items_.find(selected_);
    const auto place =
        std::find(visible.begin(), visible.end(), selected ? selected->widget.get() : nullptr);
    const auto count = static_cast<std::ptrdiff_t>(visible.size());
    if (place == visible.end() || count == 1)
        return true;
    const ItemWidget* next =
        visible[static_cast<std::size_t>((place - visible.begin() + direction + count) % count)];
    const auto item = std::find_if(items_.begin(), items_.end(),
                                   [=](const Item& one) { return one.widget.get() == next; });
    isSwitching_ = true;
    menus_.closeOpenMenu();
    isSwitching_ = false;
    select(item->identifier());
    return true;
}

void KeyboardNavigation::handleKey(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Backtab:
        moveBy(-1);
        break;
    case Qt::Key_Right:
    case Qt::Key_Tab:
        moveBy(1);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        press(event);
        break;
    case Qt::Key_Escape:
        end();
        break;
    default:
        break;
    }
}

void KeyboardNavigation::press(const QKeyEvent& event) {
    Item* item = items_.find(selected_);
    if (!item || !isShown_)
        return; // its menu is about to open
    end();
    emit pressed(*item, {.modifierFlags = platform::qt::modifierFlags(event.modifiers())});
}

void KeyboardNavigation::menuClosed() {
    if (!isSwitching_)
        end();
}

} // namespace apps
