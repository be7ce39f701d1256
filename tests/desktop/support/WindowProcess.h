#pragma once

#include "tests/desktop/support/BarProcess.h"

#include <QImage>

namespace test {

/// A program with a window on a private bus, offscreen, with an empty home.
class WindowProcess {
  public:
    /// @p name is the program's on the bus. Nothing is started yet.
    WindowProcess(const char* program, const char* name);
    ~WindowProcess();

    /// Starts the program and waits until it has its name.
    void start(const QStringList& arguments = {});
    /// Starts another one and gives its exit status, -1 when it does not end.
    int startAgain(const QStringList& arguments = {});
    /// The same with another program in the same surroundings.
    int startBeside(const QString& program, const QStringList& arguments);
    /// Runs the program without any bus; its exit status, -1 when it does not end.
    int runWithoutBus();

    QDBusMessage call(const QString& interface, const QString& member,
                      const QVariantList& arguments);
    /// Of org.freedesktop.Application, without its platform data.
    QDBusMessage ask(const QString& member, const QVariantList& arguments = {});
    /// What the window looks like; a null picture when it is not on the screen.
    QImage picture();

    std::string log();
    bool logs(const std::string& part);
    bool isRunning() const { return process_.state() == QProcess::Running; }
    /// Asks the program to end; its exit status, or -1 when it crashed or did not end.
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
