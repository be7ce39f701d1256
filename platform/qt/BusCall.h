#pragma once

#include <chrono>
#include <functional>

class QDBusConnection;
class QDBusMessage;

namespace platform::qt {

/// Sends a method call without waiting for the reply. Calls @p onReply on the main thread with the
/// reply, or with an error message if the call fails or takes longer than @p timeLimit. Main
/// thread.
void callAsynchronously(const QDBusConnection& bus, const QDBusMessage& call,
                        std::function<void(const QDBusMessage& reply)> onReply,
                        std::chrono::milliseconds timeLimit = std::chrono::seconds(25));

} // namespace platform::qt
