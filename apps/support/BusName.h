#pragma once

#include <QObject>
#include <QString>

namespace apps {

/// A well-known name on the session bus. At most one process at a time owns it. Main thread only.
class BusName final : public QObject {
    Q_OBJECT

  public:
    enum class Claim {
        Acquired,
        Taken, ///< another process owns the name
        NoBus, ///< there is no session bus, or the object cannot be registered on it
    };

    /// Whether another process may take the name over with replaceOwner().
    enum class Replacement { Forbidden, Allowed };

    explicit BusName(QString name);

    const QString& name() const { return name_; }

    /// Registers @p object with its adaptors at @p objectPath and requests the name. Calls that
    /// arrive before the main loop runs are handled once it runs. If the bus disconnects later,
    /// that is logged and the main loop quits, because the session has ended. The main loop also
    /// quits if another process takes the name over.
    Claim claim(const QString& objectPath, QObject& object,
                Replacement replacement = Replacement::Forbidden);
    /// Takes the name over from a process that allows it, after claim() has returned Taken. Waits
    /// for at most three seconds until that process has left the bus.
    Claim replaceOwner();

  private slots:
    void endSession();
    void nameLost(const QString& name);

  private:
    const QString name_;
};

} // namespace apps
