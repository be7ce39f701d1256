#include "platform/qt/ApplicationLauncher.h"

#include "platform/Log.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/StartProgram.h"
#include "platform/qt/BusCall.h"
#include "platform/qt/DesktopEntries.h"
#include "platform/qt/Strings.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFileInfo>
#include <QStringList>
#include <QVariantMap>

#include <cerrno>
#include <cstring>

namespace platform::qt {
namespace {

constexpr const char* kTokenVariables[] = {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"};

/// Returns the command that runs @p command in a terminal; empty if there is no terminal.
Command inTerminal(const Command& command) {
    Command result;
    if (!findProgram("xdg-terminal-exec").empty())
        result = {"xdg-terminal-exec"};
    else if (!findProgram("x-terminal-emulator").empty())
        result = {"x-terminal-emulator", "-e"};
    else
        return {};
    result.insert(result.end(), command.begin(), command.end());
    return result;
}

/// Runs a command through env, which sets what startProgram inherits.
std::string run(Command command, const DesktopEntryFile& file, const std::string& token) {
    // Otherwise, only env would notice that it is missing.
    if (findProgram(command.front()).empty())
        return command.front() + ": " + std::strerror(ENOENT);
    if (file.needsTerminal)
        command = inTerminal(command);
    if (command.empty())
        return "there is no terminal (x-terminal-emulator)";
    std::vector<std::string> arguments;
    if (QFileInfo(qString(file.workingFolder)).isDir())
        arguments = {"-C", file.workingFolder};
    for (const char* variable : kTokenVariables) {
        if (token.empty())
            arguments.insert(arguments.end(), {"-u", variable});
        else
            arguments.push_back(std::string(variable) + '=' + token);
    }
    arguments.insert(arguments.end(), command.begin(), command.end());
    const int error = posix::startProgram("env", arguments);
    return error == 0 ? std::string() : command.front() + ": " + std::strerror(error);
}

std::string runCommands(const DesktopEntryFile& file, const std::vector<std::string>& urls,
                        const std::string& token) {
    const auto commands = commandsOf(file, urls);
    if (commands.empty())
        return "its command is missing or invalid";
    std::string reason;
    for (const Command& command : commands)
        if (reason.empty())
            reason = run(command, file, token);
    return reason;
}

/// Returns the identifier without ".desktop".
std::string nameOf(const std::string& identifier) {
    return identifier.substr(0, identifier.rfind('.'));
}

/// Returns the call of org.freedesktop.Application that opens @p urls.
QDBusMessage activation(const DesktopEntryFile& file, const std::vector<std::string>& urls,
                        const std::string& token) {
    const QString name = qString(nameOf(file.entry.identifier));
    const QString path = '/' + QString(name).replace('.', '/').replace('-', '_');
    auto call = QDBusMessage::createMethodCall(name, path, "org.freedesktop.Application",
                                               urls.empty() ? "Activate" : "Open");
    if (!urls.empty()) {
        QStringList list;
        for (const std::string& url : urls)
            list << qString(fileURLWithPath(url).value_or(url));
        call << list;
    }
    QVariantMap data;
    if (!token.empty())
        for (const char* key : {"activation-token", "desktop-startup-id"})
            data.insert(key, qString(token));
    call << data;
    return call;
}

} // namespace

std::string launchApplication(const DesktopEntryFile& file, const std::vector<std::string>& urls,
                              const std::string& token) {
    const auto bus =
        file.isActivatable ? QDBusConnection::sessionBus() : QDBusConnection(QString());
    if (!bus.isConnected())
        return runCommands(file, urls, token);
    callAsynchronously(bus, activation(file, urls, token), [=](const QDBusMessage& reply) {
        if (reply.type() != QDBusMessage::ErrorMessage)
            return;
        logLine("cannot activate %@: %@", file.entry.identifier,
                reply.errorMessage().toStdString());
        // An application that is slow to answer must not be started twice.
        if (reply.errorName() == "org.freedesktop.DBus.Error.NoReply")
            return;
        if (const auto reason = runCommands(file, urls, token); !reason.empty())
            logLine("cannot launch %@: %@", file.entry.identifier, reason);
    });
    return {};
}

} // namespace platform::qt
