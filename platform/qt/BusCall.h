#pragma once

#include <functional>

class QDBusConnection;
class QDBusMessage;

namespace platform::qt {

/// Sends a method call without waiting for the reply. Calls @p onReply on the main thread with the
/// reply, or with an error message if the call fails or times out. Main thread.
void callAsynchronously(const QDBusConnection& bus, const QDBusMessage& call,
                        std::function<void(const QDBusMessage& reply)> onReply);

} // namespace platform::qt
