#include "apps/menubar/BarService.h"

#include "apps/menubar/BarSnapshot.h"
#include "apps/menubar/ItemRegistry.h"
#include "apps/menubar/MenuBar.h"
#include "platform/Log.h"
#include "platform/qt/BarNames.h"
#include "platform/qt/Strings.h"

#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QGuiApplication>

#include <optional>
#include <utility>

using platform::logLine;
using platform::qt::BarItem;
using platform::qt::kBarBusName;
using platform::qt::kBarError;
using platform::qt::kBarInterface;
using platform::qt::kBarObjectPath;
using platform::qt::KnownItem;
using platform::qt::qString;

namespace apps {
namespace {

constexpr int kDisplayTimeout = 1000; // milliseconds

/// Returns std::nullopt if the bar that owns the name does not reply.
std::optional<std::string> displayOfOtherBar() {
    auto message = QDBusMessage::createMethodCall(kBarBusName, kBarObjectPath,
                                                  "org.freedesktop.DBus.Properties", "Get");
    message << kBarInterface << "Display";
    message.setAutoStartService(false);
    const QDBusReply<QDBusVariant> reply =
        QDBusConnection::sessionBus().call(message, QDBus::Block, kDisplayTimeout);
    if (!reply.isValid())
        return std::nullopt;
    return reply.value().variant().toString().toStdString();
}

/// Does nothing if @p reason is empty.
void replyWithError(const QDBusMessage& message, const std::string& reason) {
    if (reason.empty())
        return;
    message.setDelayedReply(true); // otherwise a second reply follows
    QDBusConnection::sessionBus().send(message.createErrorReply(kBarError, qString(reason)));
}

} // namespace

BarService::BarService(MenuBar& menuBar, ItemRegistry& registry)
    : QDBusAbstractAdaptor(&menuBar), menuBar_(menuBar), registry_(registry),
      busName_(kBarBusName) {
    qDBusRegisterMetaType<BarItem>();
    qDBusRegisterMetaType<QList<BarItem>>();
    qDBusRegisterMetaType<KnownItem>();
    qDBusRegisterMetaType<QList<KnownItem>>();
    connect(&menuBar.items(), &ItemCollection::added, this,
            [this](const Item& item) { emit MenuExtraLoaded(qString(item.identifier())); });
    connect(&menuBar.items(), &ItemCollection::removed, this, [this](const ItemRecord& record) {
        emit MenuExtraUnloaded(qString(record.identifier));
    });
    connect(&registry, &ItemRegistry::refused, this,
            [this](const std::string& path, const std::string& reason) {
                emit MenuExtraRefused(qString(path), qString(reason));
            });
    connect(&registry, &ItemRegistry::itemsChanged, this, &BarService::announceChange);
}

BusName::Claim BarService::registerOnBus() {
    const bool isOffscreen = display().isEmpty();
    BusName::Claim claim = busName_.claim(kBarObjectPath, menuBar_,
                                          isOffscreen ? BusName::Replacement::Allowed
                                                      : BusName::Replacement::Forbidden);
    if (claim != BusName::Claim::Taken)
        return claim;
    const auto other = displayOfOtherBar();
    // A bar that does not reply may have been killed a moment ago; then its name is free by now.
    if (!other || (other->empty() && !isOffscreen))
        claim = busName_.replaceOwner();
    if (claim == BusName::Claim::Taken)
        logLine("cannot start: another menu bar is running on this session bus%@",
                !other           ? ""
                : other->empty() ? ", without a display"
                                 : ", on display " + *other);
    return claim;
}

QString BarService::display() {
    const QString platform = QGuiApplication::platformName();
    if (platform == "offscreen" || platform == "minimal")
        return {};
    return qEnvironmentVariable(platform == "xcb" ? "DISPLAY" : "WAYLAND_DISPLAY");
}

int BarService::GetMenuExtra(const QString& identifier, uint& reference) {
    return registry_.getMenuExtra(identifier.toStdString(), reference);
}

int BarService::AddMenuExtra(const QString& url, int position, int zero1, int zero2, int zero3,
                             int zero4) {
    return registry_.addMenuExtra(url.toStdString(), position, zero1, zero2, zero3, zero4);
}

int BarService::RemoveMenuExtra(uint reference, int flags) {
    return registry_.removeMenuExtra(reference, flags);
}

QList<BarItem> BarService::ListMenuExtras() {
    QList<BarItem> rows;
    for (const Item& item : menuBar_.items())
        rows.append(
            {item.identifier(), item.record.path, item.record.position, item.extra().length()});
    return rows;
}

bool BarService::Click(const QString& identifier, uint modifierFlags, int clickCount,
                       int buttonNumber, const QDBusMessage& message) {
    bool handled = false;
    replyWithError(message, click(identifier.toStdString(),
                                  {.modifierFlags = modifierFlags,
                                   .clickCount = clickCount,
                                   .buttonNumber = buttonNumber},
                                  handled));
    return handled;
}

/// Returns why the click had no effect, or an empty string.
std::string BarService::click(const std::string& identifier, const platform::Event& event,
                              bool& handled) {
    const Item* item = menuBar_.items().find(identifier);
    const bool wasMenuDown = item && item->extra().isMenuDown();
    handled = menuBar_.click(identifier, event);
    if (!item)
        return identifier + ": the menu extra is not loaded";
    if (handled || wasMenuDown || item->extra().isMenuDown())
        return {};
    return menuBar_.hasRequestedMenu()
               ? identifier + ": the menu extra has no menu"
               : identifier + ": the menu extra raised an exception; see the bar's log";
}

bool BarService::Snapshot(const QString& path) {
    return menuBar_.snapshot(path.toStdString());
}

QList<KnownItem> BarService::Items() {
    const auto items = registry_.knownItems();
    return {items.begin(), items.end()};
}

bool BarService::SnapshotItem(const QString& identifier, const QString& path,
                              const QDBusMessage& message) {
    const std::string name = identifier.toStdString();
    if (const Item* item = menuBar_.items().find(name))
        return writeSnapshot(*item->widget, nullptr, path.toStdString());
    replyWithError(message, name + ": the menu extra is not loaded");
    return false;
}

void BarService::SetPosition(const QString& identifier, int position, const QDBusMessage& message) {
    replyWithError(message, registry_.setPosition(identifier.toStdString(), position));
}

void BarService::Enable(const QString& identifier, bool on, const QDBusMessage& message) {
    const std::string name = identifier.toStdString();
    replyWithError(message, on ? registry_.enable(name) : registry_.disable(name));
}

void BarService::Focus(const QDBusMessage& message) {
    message.setDelayedReply(true);
    menuBar_.focus([message](const std::string& problem) {
        if (problem.empty())
            QDBusConnection::sessionBus().send(message.createReply());
        replyWithError(message, problem);
    });
}

/// Sends one signal for all changes up to the next iteration of the main loop.
void BarService::announceChange() {
    if (std::exchange(changeAnnounced_, true))
        return;
    const auto send = [this] {
        changeAnnounced_ = false;
        emit ItemsChanged();
    };
    QMetaObject::invokeMethod(this, send, Qt::QueuedConnection);
}

} // namespace apps
