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

constexpr Size kPanelSize{320, 200}; // points
constexpr double kLargestSize = 32767;

struct Options {
    std::string file;
    std::string size;
    std::string title;
    std::string part = "all";
};

const std::map<std::string, ui::HUDPart> kParts{
    {"all", ui::HUDPart::All}, {"body", ui::HUDPart::Body}, {"bar", ui::HUDPart::TitleBar}};

/// Prints each action that the panel sends, one per line.
class ActionPrinter final : public ActionTarget {
  public:
    bool respondsToSelector(const Selector&) const override { return true; }
    void performSelector(const Selector& selector, ActionSender&) override {
        std::cout << selector << std::endl;
    }
};

ExitStatus drawToFile(const Options& options, Size size) {
    const auto image = graphics().imageByDrawing(size, [&](GraphicsContext& context) {
        ui::drawHUDBackground(context, size, options.title, kParts.at(options.part));
    });
    return writePng(*image, options.file);
}

/// Returns a frame at the centre of the screen.
Rect centeredFrame() {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    return {{(screen.width() - kPanelSize.width) / 2, (screen.height() - kPanelSize.height) / 2},
            kPanelSize};
}

ExitStatus showPanel(const std::string& title) {
    const auto printer = std::make_shared<ActionPrinter>();
    const auto panel = std::make_shared<HUDWindow>();
    if (!panel->initWithContentRect(centeredFrame(), 0, BackingStore::Buffered, false))
        return ExitStatus::Failure;
    panel->setTitle(title);
    panel->setTarget(printer);
    panel->setAction("click");
    panel->addiButton({{}, panel->contentView().size()}, printer, "information");
    panel->setCloseObserver([] { QApplication::quit(); });
    panel->makeKeyAndOrderFront();
    QApplication::exec();
    return flushOutput();
}

Size parseSize(const std::string& text) {
    const auto numbers = parseNumbers("--size", text, {'x', 2, 2, kLargestSize});
    return {numbers[0], numbers[1]};
}

} // namespace

void addHudVerb(CLI::App& commands, DrawingTask& task) {
    const auto options = std::make_shared<Options>();
    CLI::App* hud = commands.add_subcommand("hud", "Draw the dark panel into a file, or show it");
    hud->add_option("FILE.png", options->file, "Write the panel's background to this file");
    hud->add_option("--size", options->size, "The size of the panel's frame in points: WxH");
    hud->add_option("--part", options->part, "The part of the background to draw")
        ->check(CLI::IsMember(&kParts));
    hud->add_option("--title", options->title, "The text in the title bar");

    CLI::App* show = hud->add_subcommand("show", "Show the panel and print a line for each click");
    show->add_option("--title", options->title, "The text in the title bar");
    show->callback([options, &task] {
        task = {DrawingTask::Needs::Desktop, [options] { return showPanel(options->title); }};
    });

    hud->callback([options, show, &task] {
        if (show->parsed())
            return;
        for (const auto& [name, value] :
             {std::pair("FILE.png", &options->file), std::pair("--size", &options->size)})
            if (value->empty())
                throw CLI::RequiredError(name);
        const Size size = parseSize(options->size);
        task = {DrawingTask::Needs::Drawing,
                [options, size] { return drawToFile(*options, size); }};
    });
}

} // namespace apps
