#include "apps/draw/Verbs.h"
#include "apps/shared/CommandLine.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/Desktop.h"
#include "platform/qt/QtGraphics.h"
#include "platform/qt/QtImage.h"
#include "platform/qt/Strings.h"

#include <QApplication>
#include <QSaveFile>

#include <sstream>

namespace apps {

ExitStatus writePng(const platform::Image& image, const std::string& path) {
    const auto& pixels = dynamic_cast<const platform::qt::QtImage&>(image).pixelsForScale(1);
    if (pixels.isNull())
        return fail(path + ": an image without pixels cannot be written");
    QSaveFile file(platform::qt::qString(path));
    if (!file.open(QIODevice::WriteOnly) || !pixels.save(&file, "PNG") || !file.commit())
        return fail(path + ": " + file.errorString().toStdString());
    return ExitStatus::Success;
}

std::vector<double> parseNumbers(const std::string& option, const std::string& text,
                                 const NumberFormat& format) {
    std::istringstream stream(text + format.separator);
    stream.imbue(std::locale::classic());
    std::vector<double> numbers;
    double number = 0;
    char separator = 0;
    while (stream >> std::noskipws >> number >> separator && separator == format.separator &&
           number >= 0 && number <= format.largest)
        numbers.push_back(number);
    const bool complete = stream.eof() && separator == format.separator;
    if (!complete || numbers.size() < format.minimumCount || numbers.size() > format.maximumCount)
        throw CLI::ValidationError(option, "invalid value \"" + text + '"');
    return numbers;
}

namespace {

void configureQt(DrawingTask::Needs needs) {
    if (needs == DrawingTask::Needs::Drawing)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setApplicationName(QStringLiteral("halvexctl"));
}

bool hasDisplay() {
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(variable))
            return true;
    return false;
}

ExitStatus draw(const DrawingTask& task) {
    platform::qt::QtGraphics graphics;
    graphics.setDrawingScale(task.scale);
    const platform::ScopedService<platform::Graphics> guard(graphics);
    return task.run();
}

ExitStatus perform(const DrawingTask& task, int argc, char** argv) {
    if (task.needs == DrawingTask::Needs::Desktop && !hasDisplay())
        return fail("the panel cannot be shown: there is no display");
    configureQt(task.needs);
    platform::expat::install();
    if (task.needs == DrawingTask::Needs::Drawing) {
        const QGuiApplication application(argc, argv);
        return draw(task);
    }
    const QApplication application(argc, argv);
    platform::qt::install();
    return task.run();
}

ExitStatus run(int argc, char** argv) {
    DrawingTask task;
    CLI::App commandLine("Draw panels and images for halvexctl.", "halvexctl");
    commandLine.require_subcommand(1);
    addHudVerb(commandLine, task);
    addSheetVerb(commandLine, task);
    addPanelVerb(commandLine, task);
    addTintVerb(commandLine, task);
    try {
        parseArguments(commandLine, argc, argv);
    } catch (const CLI::ParseError& error) {
        return commandLine.exit(error) == 0 ? flushOutput() : ExitStatus::UsageError;
    }
    return perform(task, argc, argv);
}

} // namespace

} // namespace apps

int main(int argc, char** argv) {
    apps::prepareStandardStreams();
    return static_cast<int>(apps::run(argc, argv));
}
