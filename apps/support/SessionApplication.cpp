#include "apps/support/SessionApplication.h"

#include "platform/Log.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>

#include <utility>

namespace apps {
namespace {

constexpr const char* kInterface = "org.freedesktop.Application";
constexpr int kPatience = 5000; // milliseconds

void replyWithError(const QDBusMessage& message, const QString& error) {
    if (error.isEmpty())
        return;
    message.setDelayedReply(true); // else the empty reply would follow
    QDBusConnection::sessionBus().send(message.createErrorReply(QDBusError::InvalidArgs, error));
}

} // namespace

SessionApplication::SessionApplication(QString busName, Handlers handlers)
    : busName_(std::move(busName)), objectPath_('/' + QString(busName_).replace('.', '/')),
      handlers_(std::move(handlers)) {
    new SessionApplicationAdaptor(*this);
}

SessionApplication::Claim SessionApplication::claim() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.registerObject(objectPath_, this))
        return Claim::NoBus;
    bus.connect("", "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                this, SLOT(endSession()));
    return bus.registerService(busName_) ? Claim::First : Claim::Second;
}

bool SessionApplication::askFirst(const QString& member, const QVariantList& arguments) const {
    auto message = QDBusMessage::createMethodCall(busName_, objectPath_, kInterface, member);
    message.setArguments(arguments + QVariantList{QVariantMap()});
    const QDBusMessage reply = QDBusConnection::sessionBus().call(message, QDBus::Block, kPatience);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return true;
    platform::logLine("%@ runs already and does not answer: %@", busName_.toStdString(),
                      reply.errorMessage().toStdString());
    return false;
}

void SessionApplication::endSession() {
    platform::logLine("the session bus has gone, and %@ with it", busName_.toStdString());
    QCoreApplication::quit();
}

SessionApplicationAdaptor::SessionApplicationAdaptor(SessionApplication& application)
    : QDBusAbstractAdaptor(&application), application_(application) {}

void SessionApplicationAdaptor::Activate(const QVariantMap&) {
    application_.handlers_.activate();
}

void SessionApplicationAdaptor::Open(const QStringList& uris, const QVariantMap&,
                                     const QDBusMessage& message) {
    replyWithError(message, application_.handlers_.open(uris));
}

void SessionApplicationAdaptor::ActivateAction(const QString& action,
                                               const QVariantList& parameters, const QVariantMap&,
                                               const QDBusMessage& message) {
    replyWithError(message, application_.handlers_.act(action, parameters));
}

} // namespace apps
