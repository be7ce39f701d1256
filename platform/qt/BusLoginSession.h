#pragma once

#include "platform/LoginSession.h"
#include "platform/runtime/HandlerList.h"

#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <chrono>
#include <memory>
#include <string>

class QDBusMessage;

namespace platform::qt {

class BusPeer;

/// The session of this process as reported by logind on the system bus: the one in XDG_SESSION_ID,
/// or else the user's graphical session. It is locked after logind's signal Lock or while the
/// desktop sets LockedHint. While there are observers, sleep is delayed until they have been
/// notified, if logind permits that. Nothing is connected without an observer.
///
/// Logged: "lock and sleep are not noticed: %@" with the reason if logind is not available, and
/// again only after it has been; "lock of the session is not noticed: %@" (once) if logind does not
/// know the session.
class BusLoginSession final : public LoginSession {
  public:
    /// @p busAddress is empty for the system bus. @p timeLimit is for each reply of logind
    /// and of the bus.
    explicit BusLoginSession(std::string busAddress = {},
                             std::chrono::milliseconds timeLimit = std::chrono::seconds(5));
    ~BusLoginSession() override;

    bool isLocked() const override { return isLocked_; }
    bool isActive() const override { return isActive_; }
    std::unique_ptr<Watch> observe(std::function<void(LoginSessionEvent)> handler) override;

  private:
    void start();
    void stopUnlessObserved();
    void appeared();
    void unavailable(const std::string& reason);
    void delaySleep();
    void findSession(QStringList candidates);
    void queryState(const QString& session);
    void logUnknownSession(const QDBusMessage& reply);
    void receive(const QDBusMessage& signal);
    void prepareForSleep(bool isComing);
    void apply(const QVariantMap& properties);
    void setLocked(bool isLocked);
    void setActive(bool isActive);

    const std::string busAddress_;
    const std::chrono::milliseconds timeLimit_;
    HandlerList<LoginSessionEvent> handlers_;
    bool isLocked_ = false;
    bool isActive_ = true;
    bool isFallingAsleep_ = false;
    bool hasLoggedReason_ = false;
    bool hasLoggedSession_ = false;
    QObject context_;                 ///< of timers
    QString session_;                 ///< object path; empty while unknown
    QDBusUnixFileDescriptor delay_;   ///< sleep is delayed until it is closed
    std::unique_ptr<BusPeer> logind_; ///< null unless observed
};

} // namespace platform::qt
