#pragma once

#include <QDBusMessage>
#include <QObject>

#include <functional>
#include <utility>

namespace platform::qt {

/// Receives D-Bus signals in the thread that the object belongs to.
class SignalReceiver final : public QObject {
    Q_OBJECT

  public:
    explicit SignalReceiver(std::function<void(const QDBusMessage&)> handler)
        : handler_(std::move(handler)) {}

  public slots:
    void receive(const QDBusMessage& message) { handler_(message); }

  private:
    std::function<void(const QDBusMessage&)> handler_;
};

} // namespace platform::qt
