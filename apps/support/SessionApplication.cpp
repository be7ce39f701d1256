#include "apps/support/SessionApplication.h"

#include "platform/Log.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QVariantMap>

#include <utility>

namespace apps {
namespace {

constexpr const char* kInterface = "org.freedesktop.Application";
constexpr int kCallTimeout = 5000; // milliseconds

void replyWithError(const QDBusMessage& message, const QString& error) {
    if (error.isEmpty())
        return;
    message.setDelayedReply(true); // otherwise an empty reply follows
    QDBusConnection::sessionBus().send(message.createErrorReply(QDBusError::InvalidArgs, error));
}

class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

  public:
    ApplicationAdaptor(QObject& parent, SessionApplication::Handlers handlers)
        : QDBusAbstractAdaptor(&parent), handlers_(std::move(handlers)) {}

  public slots:
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData,
              const QDBusMessage& message);
    void ActivateAction(const QString& action, const QVariantList& parameters,
                        const QVariantMap& platformData, const QDBusMessage& message);

  private:
    const SessionApplication::Handlers handlers_;
};

void ApplicationAdaptor::Activate(const QVariantMap&) {
    handlers_.activate();
}

void ApplicationAdaptor::Open(const QStringList& uris, const QVariantMap&,
                              const QDBusMessage& message) {
    replyWithError(message, handlers_.open(uris));
}

void ApplicationAdaptor::ActivateAction(const QString& action, const QVariantList& parameters,
                                        const QVariantMap&, const QDBusMessage& message) {
    replyWithError(message, handlers_.runAction(action, parameters));
}

} // namespace

SessionApplication::SessionApplication(const QString& busName, Handlers handlers)
    : busName_(busName), objectPath_('/' + QString(busName).replace('.', '/')) {
    new ApplicationAdaptor(*this, std::move(handlers));
}

BusName::Claim SessionApplication::claim() {
    return busName_.claim(objectPath_, *this);
}

bool SessionApplication::callRunningInstance(const QString& member,
                                             const QVariantList& arguments) const {
    auto message = QDBusMessage::createMethodCall(busName_.name(), objectPath_, kInterface, member);
    message.setArguments(arguments + QVariantList{QVariantMap()});
    const auto reply = QDBusConnection::sessionBus().call(message, QDBus::Block, kCallTimeout);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return true;
    platform::logLine("%@ failed in the running %@: %@", member.toStdString(),
                      busName_.name().toStdString(), reply.errorMessage().toStdString());
    return false;
}

} // namespace apps

#include "SessionApplication.moc"
