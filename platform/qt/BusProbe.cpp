#include "platform/qt/BusProbe.h"

#include "platform/posix/Descriptor.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstring>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace platform::qt {
namespace {

constexpr const char* kSystemBus = "unix:path=/run/dbus/system_bus_socket";

/// Returns the value of @p key in the first of the addresses, unescaped. Empty if it is missing.
QByteArray valueIn(const QString& addresses, const QString& key) {
    const QString first = addresses.section(';', 0, 0);
    for (const QString& part : first.section(':', 1).split(','))
        if (part.startsWith(key + '='))
            return QByteArray::fromPercentEncoding(part.section('=', 1).toUtf8());
    return {};
}

struct SocketAddress {
    sockaddr_un name{};
    socklen_t length = 0;
};

/// Returns std::nullopt for anything but a Unix socket.
std::optional<SocketAddress> socketAddress(const QString& addresses) {
    if (!addresses.startsWith("unix:"))
        return std::nullopt;
    QByteArray path = valueIn(addresses, "path");
    if (path.isEmpty())
        if (path = valueIn(addresses, "abstract"); !path.isEmpty())
            path.prepend('\0');
    SocketAddress result;
    if (path.isEmpty() || static_cast<std::size_t>(path.size()) >= sizeof result.name.sun_path)
        return std::nullopt;
    result.name.sun_family = AF_UNIX;
    std::memcpy(result.name.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    result.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path)) +
                    static_cast<socklen_t>(path.size());
    return result;
}

} // namespace

bool busReplies(const std::string& address, std::chrono::milliseconds timeLimit) {
    QString addresses = QString::fromStdString(address);
    if (addresses.isEmpty())
        addresses = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS", kSystemBus);
    const auto destination = socketAddress(addresses);
    if (!destination)
        return true;
    // Does not block if the server has too many connections waiting; that also means no reply.
    const posix::Descriptor bus(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!bus || connect(bus.get(), reinterpret_cast<const sockaddr*>(&destination->name),
                        destination->length) != 0)
        return false;
    // The beginning of a client's authentication. Any reply, even a rejection, is enough.
    const QByteArray request =
        QByteArray(1, '\0') + "AUTH EXTERNAL " + QByteArray::number(getuid()).toHex() + "\r\n";
    if (send(bus.get(), request.constData(), static_cast<std::size_t>(request.size()),
             MSG_NOSIGNAL) != request.size())
        return false;
    pollfd reply{bus.get(), POLLIN, 0};
    return poll(&reply, 1, static_cast<int>(timeLimit.count())) == 1 && (reply.revents & POLLIN);
}

} // namespace platform::qt
