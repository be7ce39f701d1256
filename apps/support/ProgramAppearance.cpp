#include "apps/support/ProgramAppearance.h"

#include "platform/qt/Colors.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QEvent>
#include <QPalette>
#include <QTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <tuple>
#include <utility>

namespace apps {
namespace {

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kInterface = "org.freedesktop.portal.Settings";
constexpr const char* kGroup = "org.freedesktop.appearance";
constexpr const char* kColorScheme = "color-scheme";
constexpr const char* kContrast = "contrast";
constexpr const char* kAccentColor = "accent-color";
constexpr uint kPreferDark = 1;
constexpr uint kPreferHighContrast = 1;
// Asking for more settings must not delay the first picture.
constexpr std::chrono::milliseconds kDetailsDelay{300};

/// The portal wraps a setting's value in one or two variants.
QVariant unwrapVariant(const QVariant& value) {
    QVariant inner = value;
    while (inner.canConvert<QDBusVariant>())
        inner = inner.value<QDBusVariant>().variant();
    return inner;
}

/// Returns std::nullopt if a component is not between 0 and 1, which means that there is no colour.
std::optional<platform::Color> colorFrom(const QVariant& value) {
    if (!value.canConvert<QDBusArgument>())
        return std::nullopt;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != "(ddd)")
        return std::nullopt;
    std::array<double, 3> rgb{};
    argument.beginStructure();
    for (double& component : rgb)
        argument >> component;
    argument.endStructure();
    if (!std::ranges::all_of(rgb,
                             [](double component) { return component >= 0 && component <= 1; }))
        return std::nullopt;
    return platform::Color{rgb[0], rgb[1], rgb[2]};
}

bool hasDarkPalette() {
    return QApplication::palette().color(QPalette::Window).lightness() < 128;
}

} // namespace

ProgramAppearance::ProgramAppearance(apps::Appearance appearance,
                                     std::optional<QDBusConnection> bus)
    : bus_(std::move(bus)), appearance_(appearance) {
    apply();
    if (appearance_ == apps::Appearance::Desktop)
        connectToPortal();
    QTimer::singleShot(kDetailsDelay, this, &ProgramAppearance::needDetails);
}

void ProgramAppearance::apply() {
    const AppearanceDetails details{
        accent_ ? std::optional(platform::qt::qColor(*accent_)) : std::nullopt, highContrast_};
    applyAppearance(appearance_, details);
    if (prefersDark_ && !hasDarkPalette())
        applyAppearance(apps::Appearance::Dark, details);
}

bool ProgramAppearance::isDark() const {
    return hasDarkPalette();
}

std::optional<platform::Color> ProgramAppearance::accentColor() {
    needDetails();
    return accent_;
}

bool ProgramAppearance::prefersHighContrast() {
    needDetails();
    return highContrast_;
}

std::unique_ptr<platform::Watch> ProgramAppearance::onChange(std::function<void()> handler) {
    if (handlers_.isEmpty()) {
        reported_ = state();
        QCoreApplication::instance()->installEventFilter(this);
    }
    needDetails();
    return handlers_.add(std::move(handler));
}

void ProgramAppearance::connectToPortal() {
    if (!bus_)
        bus_ = QDBusConnection::sessionBus();
    if (isConnected_ || !bus_->isConnected())
        return;
    isConnected_ = true;
    // From any sender: for a named one, Qt would wait for a reply of the bus.
    bus_->connect({}, kPath, kInterface, "SettingChanged", this,
                  SLOT(settingChanged(QDBusMessage)));
    auto* watcher =
        new QDBusServiceWatcher(kService, *bus_, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this,
            &ProgramAppearance::readSettings);
    readSettings();
}

void ProgramAppearance::needDetails() {
    if (std::exchange(needsDetails_, true))
        return;
    connectToPortal();
    if (isConnected_)
        for (const char* key : {kContrast, kAccentColor})
            readSetting(key);
}

void ProgramAppearance::readSettings() {
    if (appearance_ == apps::Appearance::Desktop)
        readSetting(kColorScheme);
    if (needsDetails_)
        for (const char* key : {kContrast, kAccentColor})
            readSetting(key);
}

void ProgramAppearance::readSetting(const QString& key) {
    auto message = QDBusMessage::createMethodCall(kService, kPath, kInterface, "Read");
    message << kGroup << key;
    message.setAutoStartService(false);
    auto* call = new QDBusPendingCallWatcher(bus_->asyncCall(message), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, key] {
        const QDBusPendingReply<QDBusVariant> reply = *call;
        if (reply.isValid())
            applySetting(key, reply.value().variant());
        call->deleteLater();
    });
}

void ProgramAppearance::settingChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments(); // group, key, value
    if (arguments.size() == 3 && arguments[0] == kGroup)
        applySetting(arguments[1].toString(), arguments[2]);
}

void ProgramAppearance::applySetting(const QString& key, const QVariant& wrapped) {
    const QVariant value = unwrapVariant(wrapped);
    const auto before = std::tuple(prefersDark_, highContrast_, accent_);
    if (key == kColorScheme && appearance_ == apps::Appearance::Desktop)
        prefersDark_ = value.toUInt() == kPreferDark;
    else if (key == kContrast)
        highContrast_ = value.toUInt() == kPreferHighContrast;
    else if (key == kAccentColor)
        accent_ = colorFrom(value);
    if (before != std::tuple(prefersDark_, highContrast_, accent_))
        apply();
    reportLater();
}

bool ProgramAppearance::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange)
        reportLater();
    return QObject::eventFilter(watched, event);
}

ProgramAppearance::State ProgramAppearance::state() const {
    return {hasDarkPalette(), highContrast_, accent_};
}

// Later, because applying a colour scheme can change the palette twice.
void ProgramAppearance::reportLater() {
    if (handlers_.isEmpty()) {
        QCoreApplication::instance()->removeEventFilter(this);
        return;
    }
    if (!std::exchange(willReport_, true))
        QTimer::singleShot(0, this, &ProgramAppearance::report);
}

void ProgramAppearance::report() {
    willReport_ = false;
    const State now = state();
    if (std::exchange(reported_, now) != now)
        handlers_.call();
}

} // namespace apps
