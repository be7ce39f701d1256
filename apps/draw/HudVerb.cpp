#include "apps/draw/Verbs.h"
#include "ui/HUDBackground.h"
#include "ui/HUDWindow.h"

#include <QApplication>
#include <QScreen>

#include <iostream>
#include <map>
#include <memory>
#include <string>

using namespace platform;

namespace apps {
namespace {

constexpr Size kFirstSize{320, 200};
constexpr double kLargestSize = 32767;

struct Options {
    std::string file;
    std::string size;
    std::string title;
    HUDPart part = HUDPart::All;
};

/// Prints what the user does in the panel.
class Printer final : public ActionTarget {
  public:
    bool respondsToSelector(const Selector&) const override { return true; }
    void performSelector(const Selector& selector, ActionSender&) override {
        std::cout << selector << std::endl;
    }
};

ExitStatus drawToFile(const Options& options, Size size) {
    const auto image = graphics().imageByDrawing(size, [&](GraphicsContext& context) {
        drawHUDBackground(context, size, options.title, options.part);
    });
    return writePng(*image, options.file);
}

/// In the middle of the screen.
Rect firstPlace() {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    return {{(screen.width() - kFirstSize.width) / 2, (screen.height() - kFirstSize.height) / 2},
            kFirstSize};
}

ExitStatus showPanel(const std::string& title) {
    const auto printer = std::make_shared<Printer>();
    const auto panel = std::make_shared<HUDWindow>();
    if (!panel->initWithContentRect(firstPlace(), 0, BackingStore::Buffered, false))
        return ExitStatus::Refused;
    panel->setTitle(title);
    panel->setTarget(printer);
    panel->setAction("click");
    panel->addiButton({{}, panel->contentView().size()}, printer, "information");
    panel->setCloseObserver([] { QApplication::quit(); });
    panel->makeKeyAndOrderFront();
    QApplication::exec();
    return finishOutput();
}

Size parsedSize(const std::string& text) {
    const auto numbers = parsedNumbers("--size", text, {'x', 2, 2, kLargestSize});
    return {numbers[0], numbers[1]};
}

} // namespace

void addHudVerb(CLI::App& commands, Task& task) {
    const auto options = std::make_shared<Options>();
    const std::map<std::string, HUDPart> parts{
        {"all", HUDPart::All}, {"body", HUDPart::Body}, {"bar", HUDPart::TitleBar}};

    CLI::App* hud = commands.add_subcommand("hud", "Draw the dark panel, or show it");
    hud->add_option("FILE.png", options->file, "Write its background here");
    hud->add_option("--size", options->size, "WxH: the panel's frame, in points");
    hud->add_option("--part", options->part, "all, body or bar")
        ->transform(CLI::CheckedTransformer(parts));
    hud->add_option("--title", options->title, "What stands in the title bar");

    CLI::App* show = hud->add_subcommand("show", "Show the panel; print a line for each click");
    show->add_option("--title", options->title, "What stands in the title bar");
    show->callback([options, &task] {
        task = {Task::Needs::Desktop, [options] { return showPanel(options->title); }};
    });

    hud->callback([options, show, &task] {
        if (show->parsed())
            return;
        for (const auto& [name, value] :
             {std::pair("FILE.png", &options->file), std::pair("--size", &options->size)})
            if (value->empty())
                throw CLI::RequiredError(name);
        const Size size = parsedSize(options->size);
        task = {Task::Needs::Drawing, [options, size] { return drawToFile(*options, size); }};
    });
}

} // namespace apps
