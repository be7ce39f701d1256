#include "platform/qt/BusProcessList.h"

#include "platform/posix/PosixProcessList.h"
#include "platform/qt/Strings.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariant>

#include <utility>

namespace platform::qt {
namespace {

constexpr int kTimeout = 1000; // milliseconds

bool ownsItsName(const RunningProcess& process, const QDBusConnection& bus) {
    const auto application = posix::applicationIdentifier(process.serialNumber);
    const auto identifier = posix::processIdentifier(process.serialNumber);
    if (!application || !identifier)
        return false;
    auto call =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                       "org.freedesktop.DBus", "GetConnectionUnixProcessID");
    call << qString(*application);
    const QDBusMessage reply = bus.call(call, QDBus::Block, kTimeout);
    return reply.signature() == "u" &&
           reply.arguments().at(0).toUInt() == static_cast<uint>(*identifier);
}

} // namespace

BusProcessList::BusProcessList(std::string busAddress)
    : connection_(std::move(busAddress), "processes") {}

std::vector<RunningProcess> BusProcessList::processes() const {
    const QDBusConnection bus = connection_.get();
    if (!bus.isConnected())
        return {};
    auto processes = posix::PosixProcessList().processes();
    std::erase_if(processes, [&](const auto& process) { return !ownsItsName(process, bus); });
    return processes;
}

} // namespace platform::qt
