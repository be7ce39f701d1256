#pragma once

#include "tests/desktop/support/BarProcess.h"

#include <QImage>

namespace test {

/// A program with a window on a private bus, offscreen, with an empty home folder.
class WindowProcess {
  public:
    /// @p name is the program's bus name. Does not start the program.
    WindowProcess(const char* program, const char* name);
    ~WindowProcess();

    /// Starts the program and waits until it has claimed its name.
    void start(const QStringList& arguments = {});
    /// Runs a second instance. Returns its exit status, or -1 if it does not exit.
    int startAgain(const QStringList& arguments = {});
    /// Like startAgain, with another program in the same environment.
    int startBeside(const QString& program, const QStringList& arguments);
    /// Like startAgain, without a bus.
    int runWithoutBus();

    QDBusMessage call(const QString& interface, const QString& member,
                      const QVariantList& arguments);
    /// Calls org.freedesktop.Application with empty platform data.
    QDBusMessage ask(const QString& member, const QVariantList& arguments = {});
    /// Returns a picture of the window, or a null image if it is not on the screen.
    QImage picture();

    std::string log();
    bool logs(const std::string& part);
    bool isRunning() const { return process_.state() == QProcess::Running; }
    /// Terminates the program. Returns its exit status, or -1 if it crashed or did not exit.
    int stop();
    bool ends() { return process_.waitForFinished(20'000); }

    PrivateBus bus;
    TemporaryFolder folder;

  private:
    int runToItsEnd(const QString& program, const QStringList& arguments,
                    const QProcessEnvironment& environment);

    const QString program_, name_;
    QProcessEnvironment environment_;
    QProcess process_;
    std::string log_;
};

} // namespace test
