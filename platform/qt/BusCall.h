#pragma once

#include <functional>

class QDBusConnection;
class QDBusMessage;

namespace platform::qt {

/// Sends a method call without waiting for the reply. Calls @p onError on the main thread if the
/// reply is an error or times out. Main thread.
void callAsynchronously(const QDBusConnection& bus, const QDBusMessage& call,
                        std::function<void()> onError);

} // namespace platform::qt
