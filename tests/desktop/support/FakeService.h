#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QVariant>

#include <functional>
#include <utility>

namespace test {

/// A service on the bus that replies with what @p answer returns, or not at all if that is invalid.
class FakeService final : public QDBusVirtualObject {
  public:
    using Answer = std::function<QVariant(const QDBusMessage&)>;
    FakeService(QDBusConnection bus, const char* name, const char* path, Answer answer)
        : answer_(std::move(answer)) {
        bus.registerVirtualObject(path, this);
        bus.registerService(name);
    }
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        const QVariant answer = answer_(message);
        return answer.isValid() && bus.send(message.createReply(answer));
    }

  private:
    Answer answer_;
};

} // namespace test
