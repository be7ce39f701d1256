#pragma once

#include "apps/support/Appearance.h"
#include "platform/Appearance.h"
#include "platform/runtime/HandlerList.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>

namespace apps {

/// Applies an appearance to the program, and reports it to items as the process's
/// platform::Appearance. With Appearance::Desktop, follows the desktop's "color-scheme" setting,
/// read from the settings portal, until this object is destroyed. If the palette of Qt's platform
/// theme is already dark, it is left unchanged. The accent colour and the contrast are read from
/// the portal when they are first needed, at the latest a moment after the start, and apply to each
/// appearance. Does not start the portal; the settings are read whenever the portal appears on the
/// bus. Main thread only.
class ProgramAppearance final : public QObject, public platform::Appearance {
    Q_OBJECT

  public:
    /// Returns immediately. The desktop's setting is applied once the main loop runs. @p bus is the
    /// session bus by default.
    explicit ProgramAppearance(apps::Appearance appearance,
                               std::optional<QDBusConnection> bus = {});

    bool isDark() const override;
    std::optional<platform::Color> accentColor() override;
    bool prefersHighContrast() override;
    std::unique_ptr<platform::Watch> onChange(std::function<void()> handler) override;

  private slots:
    void settingChanged(const QDBusMessage& message);

  private:
    /// What the handlers are told about.
    struct State {
        bool isDark = false;
        bool highContrast = false;
        std::optional<platform::Color> accent;
        friend bool operator==(const State&, const State&) = default;
    };

    bool eventFilter(QObject* watched, QEvent* event) override;
    void apply();
    void connectToPortal();
    void needDetails();
    void readSettings();
    void readSetting(const QString& key);
    void applySetting(const QString& key, const QVariant& value);
    State state() const;
    void reportLater();
    void report();

    std::optional<QDBusConnection> bus_;
    const apps::Appearance appearance_;
    bool prefersDark_ = false;
    bool isConnected_ = false;
    bool needsDetails_ = false;
    bool willReport_ = false;
    bool highContrast_ = false;
    std::optional<platform::Color> accent_;
    State reported_;
    platform::HandlerList<> handlers_;
    platform::ScopedService<platform::Appearance> service_{*this};
};

} // namespace apps
