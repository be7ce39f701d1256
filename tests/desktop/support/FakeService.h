#pragma once

#include "tests/desktop/support/ProgramProcess.h"

#include <QDBusVirtualObject>

#include <utility>

namespace test {

/// A service on the bus that replies with what @p answer returns, or not at all if that is invalid.
class FakeService final : public QDBusVirtualObject {
  public:
    using Answer = std::function<QVariant(const QDBusMessage&)>;
    FakeService(const PrivateBus& bus, const char* name, const char* path, Answer answer)
        : bus_(bus.connection()), answer_(std::move(answer)) {
        bus_.registerVirtualObject(path, this);
        bus_.registerService(name);
    }
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        const QVariant answer = answer_(message);
        return answer.isValid() && bus.send(message.createReply(answer));
    }

  private:
    QDBusConnection bus_;
    Answer answer_;
};

} // namespace test
