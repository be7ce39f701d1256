#include "apps/support/WindowProgram.h"

#include "apps/shared/StandardDescriptors.h"
#include "apps/support/StartUp.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/Desktop.h"

#include <QApplication>
#include <QWidget>

namespace apps {

int runWindowProgram(int argc, char** argv, const char* name, const CommandLine& commandLine,
                     int (*run)(const WindowOptions& options)) {
    openStandardDescriptors();
    int status = 0;
    const auto options = readWindowOptions(argc, argv, commandLine, status);
    if (!options)
        return status;
    const auto application = startApplication(argv, name);
    if (!application)
        return 1;
    platform::expat::install();
    platform::qt::install();
    return run(*options);
}

void bringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

} // namespace apps
