#include "platform/qt/BusLoginSession.h"

#include "platform/Log.h"
#include "platform/qt/BusPeer.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QTimer>

#include <utility>

namespace platform::qt {
namespace {

constexpr const char* kName = "org.freedesktop.login1";
constexpr const char* kManagerPath = "/org/freedesktop/login1";
constexpr const char* kManager = "org.freedesktop.login1.Manager";
constexpr const char* kSession = "org.freedesktop.login1.Session";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

QDBusMessage methodCall(const QString& path, const char* interface, const char* member,
                        const QVariantList& arguments) {
    auto call = QDBusMessage::createMethodCall(kName, path, interface, member);
    call.setArguments(arguments);
    return call;
}

/// The names of this process's session, the best one first.
QStringList sessionCandidates() {
    QStringList names{"auto"};
    if (const QString name = qEnvironmentVariable("XDG_SESSION_ID"); !name.isEmpty())
        names.prepend(name);
    return names;
}

} // namespace

BusLoginSession::BusLoginSession(std::string busAddress, std::chrono::milliseconds timeLimit)
    : busAddress_(std::move(busAddress)), timeLimit_(timeLimit), handlers_([this] {
          // Later: this may be a handler, and an item may replace its observer by another one.
          QTimer::singleShot(0, &context_, [this] { stopUnlessObserved(); });
      }) {}

BusLoginSession::~BusLoginSession() = default;

std::unique_ptr<Watch> BusLoginSession::observe(std::function<void(LoginSessionEvent)> handler) {
    auto watch = handlers_.add(std::move(handler));
    if (!logind_)
        start();
    return watch;
}

void BusLoginSession::start() {
    logind_ = std::make_unique<BusPeer>(
        busAddress_, kName, "logind",
        BusPeer::Handlers{.appeared = [this] { appeared(); },
                          .unavailable = [this](const std::string& why) { unavailable(why); },
                          .received = [this](const QDBusMessage& signal) { receive(signal); }},
        timeLimit_);
}

void BusLoginSession::stopUnlessObserved() {
    if (!handlers_.isEmpty())
        return;
    logind_.reset();
    delay_ = {};
    session_.clear();
    isLocked_ = false;
    isActive_ = true;
}

void BusLoginSession::unavailable(const std::string& reason) {
    session_.clear();
    delay_ = {};
    if (!std::exchange(hasLoggedReason_, true))
        logLine("lock and sleep are not noticed: %@", reason);
}

void BusLoginSession::appeared() {
    hasLoggedReason_ = false;
    isFallingAsleep_ = false;
    logind_->subscribe(kManager, "PrepareForSleep");
    logind_->subscribe(kSession, "Lock");
    logind_->subscribe(kSession, "Unlock");
    logind_->subscribe(kProperties, "PropertiesChanged", kSession);
    delaySleep();
    findSession(sessionCandidates());
}

/// Not logged: without a delay, handlers may run just after the sleep.
void BusLoginSession::delaySleep() {
    const auto call =
        methodCall(kManagerPath, kManager, "Inhibit",
                   {"sleep", QCoreApplication::applicationName(), "Preparing for sleep", "delay"});
    logind_->call(call, timeLimit_, [this](const QDBusMessage& reply) {
        if (reply.signature() == "h" && !isFallingAsleep_)
            delay_ = qvariant_cast<QDBusUnixFileDescriptor>(reply.arguments().at(0));
    });
}

void BusLoginSession::findSession(QStringList candidates) {
    const auto call = methodCall(kManagerPath, kManager, "GetSession", {candidates.takeFirst()});
    logind_->call(call, timeLimit_, [this, candidates](const QDBusMessage& reply) {
        if (reply.signature() == "o")
            queryState(qdbus_cast<QDBusObjectPath>(reply.arguments().at(0)).path());
        else if (!candidates.isEmpty())
            findSession(candidates);
        else
            logUnknownSession(reply);
    });
}

void BusLoginSession::queryState(const QString& session) {
    session_ = session;
    const auto call = methodCall(session, kProperties, "GetAll", {kSession});
    logind_->call(call, timeLimit_, [this](const QDBusMessage& reply) {
        if (reply.signature() == "a{sv}")
            apply(qdbus_cast<QVariantMap>(reply.arguments().at(0)));
        else
            logUnknownSession(reply);
    });
}

void BusLoginSession::logUnknownSession(const QDBusMessage& reply) {
    if (!std::exchange(hasLoggedSession_, true))
        logLine("lock of the session is not noticed: %@", failureOf(reply));
}

void BusLoginSession::receive(const QDBusMessage& signal) {
    const QVariantList arguments = signal.arguments();
    if (signal.member() == "PrepareForSleep" && signal.signature() == "b")
        prepareForSleep(arguments.at(0).toBool());
    if (signal.path() != session_)
        return;
    if (signal.member() == "PropertiesChanged" && signal.signature() == "sa{sv}as")
        apply(qdbus_cast<QVariantMap>(arguments.at(1)));
    else if (signal.member() == "Lock" || signal.member() == "Unlock")
        setLocked(signal.member() == "Lock");
}

void BusLoginSession::prepareForSleep(bool isComing) {
    isFallingAsleep_ = isComing;
    if (!isComing)
        delaySleep();
    handlers_.call(isComing ? LoginSessionEvent::WillSleep : LoginSessionEvent::DidWake);
    if (isComing)
        delay_ = {};
}

void BusLoginSession::apply(const QVariantMap& properties) {
    const auto isBoolean = [](const QVariant& value) {
        return value.userType() == QMetaType::Bool;
    };
    if (const QVariant locked = properties.value("LockedHint"); isBoolean(locked))
        setLocked(locked.toBool());
    if (const QVariant active = properties.value("Active"); isBoolean(active))
        setActive(active.toBool());
}

void BusLoginSession::setLocked(bool isLocked) {
    if (std::exchange(isLocked_, isLocked) != isLocked)
        handlers_.call(isLocked ? LoginSessionEvent::Locked : LoginSessionEvent::Unlocked);
}

void BusLoginSession::setActive(bool isActive) {
    if (std::exchange(isActive_, isActive) != isActive)
        handlers_.call(isActive ? LoginSessionEvent::Activated : LoginSessionEvent::Deactivated);
}

} // namespace platform::qt
