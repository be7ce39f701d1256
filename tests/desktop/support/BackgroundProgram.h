#pragma once

#include "platform/base/NonCopyable.h"
#include "tests/desktop/support/XServer.h"

#include <QProcess>

#include <gtest/gtest.h>

namespace test {

/// A program on a display, in the background; killed with the object.
class BackgroundProgram : platform::NonCopyable {
  public:
    BackgroundProgram(const XServer& x, const QString& program, const QStringList& arguments) {
        auto settings = x.settings();
        settings.emplace_back("XDG_DATA_DIRS", "/usr/share"); // has the window manager's theme
        process.setProcessEnvironment(environmentWith(settings));
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForStarted(5000));
    }
    ~BackgroundProgram() { kill(); }
    void kill() {
        process.kill();
        process.waitForFinished(5000);
    }

    QProcess process;
};

} // namespace test
