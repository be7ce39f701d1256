#pragma once

#include "apps/support/BusName.h"

#include <QObject>
#include <QStringList>
#include <QVariantList>

#include <functional>

namespace apps {

/// A program that runs once per session. It owns a name on the session bus and implements the
/// interface org.freedesktop.Application there; a second process forwards its command line to the
/// first. Main thread only.
class SessionApplication final : public QObject {
    Q_OBJECT

  public:
    /// The implementations of the interface's members. A non-empty result is a user-visible message
    /// and is sent as an error reply to the call.
    struct Handlers {
        std::function<void()> activate; ///< brings the program's windows to the front
        std::function<QString(const QStringList& uris)> open;
        std::function<QString(const QString& action, const QVariantList& parameters)> runAction;
    };

    /// @p busName is the well-known name. The object path is the same name with slashes for dots.
    SessionApplication(const QString& busName, Handlers handlers);

    /// Registers this object and requests the name (see BusName::claim).
    BusName::Claim claim();

    /// Calls @p member of the interface in the process that owns the name, and blocks for up to
    /// five seconds. Returns false, with the error logged, if that process replies with an error or
    /// not at all.
    bool callRunningInstance(const QString& member, const QVariantList& arguments = {}) const;

  private:
    BusName busName_;
    const QString objectPath_;
};

} // namespace apps
