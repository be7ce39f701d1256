#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <functional>

namespace apps {

/// A program of which each session has one, found on the session bus by its name there and asked
/// through org.freedesktop.Application. Ends the main loop when the bus goes, for the session is
/// over then. Main thread.
class SessionApplication final : public QObject {
    Q_OBJECT

  public:
    /// What is asked of the program. An answer that is not empty is an error, for people.
    struct Handlers {
        std::function<void()> activate; ///< bring what there is to the front
        std::function<QString(const QStringList& uris)> open;
        std::function<QString(const QString& action, const QVariantList& parameters)> act;
    };
    enum class Claim { First, Second, NoBus };

    /// @p busName is the well-known name; the object's path has its words between slashes.
    SessionApplication(QString busName, Handlers handlers);

    /// Makes the program answer and takes the name; Second when another process has it. What is
    /// asked before the main loop runs is answered then.
    Claim claim();
    /// Asks the process that has the name for one of the interface's members, and waits five
    /// seconds at most; false, with the reason logged, when it does not answer well.
    bool askFirst(const QString& member, const QVariantList& arguments = {}) const;

  private slots:
    void endSession();

  private:
    friend class SessionApplicationAdaptor;

    const QString busName_;
    const QString objectPath_;
    const Handlers handlers_;
};

/// The interface. An error is sent as the reply to the call that made it.
class SessionApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

  public:
    explicit SessionApplicationAdaptor(SessionApplication& application);

  public slots:
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData,
              const QDBusMessage& message);
    void ActivateAction(const QString& action, const QVariantList& parameters,
                        const QVariantMap& platformData, const QDBusMessage& message);

  private:
    SessionApplication& application_;
};

} // namespace apps
