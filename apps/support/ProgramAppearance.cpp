#include "apps/support/ProgramAppearance.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QPalette>

namespace apps {
namespace {

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kInterface = "org.freedesktop.portal.Settings";
constexpr const char* kGroup = "org.freedesktop.appearance";
constexpr const char* kKey = "color-scheme";
constexpr uint kPreferDark = 1;

/// The portal wraps a setting's value in one or two variants.
uint unwrapVariant(const QVariant& value) {
    QVariant inner = value;
    while (inner.canConvert<QDBusVariant>())
        inner = inner.value<QDBusVariant>().variant();
    return inner.toUInt();
}

} // namespace

ProgramAppearance::ProgramAppearance(Appearance appearance) {
    if (appearance == Appearance::Desktop)
        followDesktop();
    else
        applyAppearance(appearance);
}

void ProgramAppearance::followDesktop() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    // From any sender: for a named one, Qt would wait for a reply of the bus.
    bus.connect({}, kPath, kInterface, "SettingChanged", this, SLOT(settingChanged(QDBusMessage)));
    auto* watcher =
        new QDBusServiceWatcher(kService, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this,
            &ProgramAppearance::readSetting);
    readSetting();
}

void ProgramAppearance::readSetting() {
    auto message = QDBusMessage::createMethodCall(kService, kPath, kInterface, "Read");
    message << kGroup << kKey;
    message.setAutoStartService(false);
    auto* call =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [call] {
        const QDBusPendingReply<QDBusVariant> reply = *call;
        if (reply.isValid())
            applyColorScheme(unwrapVariant(reply.value().variant()));
        call->deleteLater();
    });
}

void ProgramAppearance::settingChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments(); // group, key, value
    if (arguments.size() == 3 && arguments[0] == kGroup && arguments[1] == kKey)
        applyColorScheme(unwrapVariant(arguments[2]));
}

void ProgramAppearance::applyColorScheme(uint scheme) {
    applyAppearance(Appearance::Desktop);
    const bool isDark = QApplication::palette().color(QPalette::Window).lightness() < 128;
    if (scheme == kPreferDark && !isDark)
        applyAppearance(Appearance::Dark);
}

} // namespace apps
