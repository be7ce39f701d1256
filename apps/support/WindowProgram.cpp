#include "apps/support/WindowProgram.h"

#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/Desktop.h"

#include <QApplication>

namespace apps {

int runWindowProgram(int argc, char** argv, const char* name, const CommandLine& commandLine,
                     int (*run)(const WindowOptions& options)) {
    int status = 0;
    const auto options = readWindowOptions(argc, argv, commandLine, status);
    if (!options)
        return status;
    const auto application = startApplication(argv, name);
    platform::expat::install();
    platform::qt::install();
    return run(*options);
}

} // namespace apps
