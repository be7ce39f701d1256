#include "apps/draw/Verbs.h"
#include "platform/qt/Strings.h"
#include "platform/widgets/Label.h"
#include "platform/widgets/ListBox.h"
#include "platform/widgets/MenuExtra.h"
#include "platform/widgets/Slider.h"
#include "platform/widgets/TextField.h"
#include "platform/widgets/ViewBox.h"
#include "ui/HUDWindow.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>

using namespace platform;

namespace apps {
namespace {

struct Options {
    std::string file;
    bool isPlain = false;
    bool isDark = false;
};

constexpr Size kContentSize{340, 260}; // points
constexpr double kLeft = 16;
constexpr double kColumn = 96; // the left edge of what the labels name
constexpr double kWidth = kContentSize.width - kColumn - kLeft;
constexpr std::uint32_t kAtTop = Autoresizing::kMinYMargin;

/// A bar chart with one marked bar, which the mouse and the arrow keys choose.
class Chart final : public MenuExtraView {
  public:
    void drawRect(const Rect& rect) override {
        GraphicsContext& context = graphics().currentContext();
        const double width = rect.size.width / kBars;
        for (int bar = 0; bar < kBars; ++bar) {
            const double height = rect.size.height * (0.25 + 0.75 * (bar * 7 % kBars) / kBars);
            context.fillRect({{bar * width + 1, 0}, {width - 2, height}},
                             bar == marked_ ? deviceRGB(0.2, 0.5, 0.9) : calibratedWhite(0.5),
                             CompositingOperation::SourceOver);
        }
    }
    void mouseDown(const Event& event) override {
        mark(static_cast<int>(event.location.x / frame().size.width * kBars));
    }
    bool keyDown(const KeyEvent& event) override {
        if (event.key != Key::Left && event.key != Key::Right)
            return false;
        mark(marked_ + (event.key == Key::Left ? -1 : 1));
        return true;
    }
    AccessibleDescription accessibleDescription() const override {
        return {.name = "Load", .value = "bar " + std::to_string(marked_)};
    }

  private:
    static constexpr int kBars = 16;

    void mark(int bar) {
        marked_ = std::clamp(bar, 0, kBars - 1);
        std::cout << "chart " << marked_ << std::endl;
        setNeedsDisplay(true);
    }

    int marked_ = 5;
};

/// Adds controls, with a label at the left of each, and prints a line for each handler that runs.
class SampleControls {
  public:
    explicit SampleControls(ContentView& content) : content_(content) {}

    void add() {
        addField(226);
        addSliders(186);
        addList(84);
        addChart(48);
        addButtons(12);
    }

  private:
    template <class T>
    std::shared_ptr<T> add(std::shared_ptr<T> control, std::uint32_t mask) {
        control->setAutoresizingMask(mask);
        content_.addControl(control);
        return control;
    }
    void addLabel(const std::string& text, const std::shared_ptr<Control>& named) {
        const Rect frame = named->frame();
        const double height = std::min(frame.size.height, 22.0);
        const double top = frame.origin.y + frame.size.height;
        const auto label = std::make_shared<Label>(
            Rect{{kLeft, top - height}, {kColumn - kLeft - 8, height}}, text);
        label->setAlignment(TextAlignment::Right);
        label->setNamedControl(named);
        add(label, named->autoresizingMask() & ~Autoresizing::kWidth & ~Autoresizing::kHeight);
    }

    void addField(double y) {
        const auto field = add(std::make_shared<TextField>(Rect{{kColumn, y}, {kWidth, 24}}),
                               kAtTop | Autoresizing::kWidth);
        field->setPlaceholder("Search");
        field->setChangeHandler([](const std::string& text) { print("edited " + text); });
        field->setCommitHandler([](const std::string& text) { print("committed " + text); });
        addLabel("Name", field);
    }
    void addSliders(double y) {
        const auto volume = add(std::make_shared<Slider>(Rect{{kColumn, y + 12}, {kWidth, 22}}),
                                kAtTop | Autoresizing::kWidth);
        volume->setRange(0, 100);
        volume->setValue(65);
        volume->setHandler([](double value) { print("volume " + std::to_string(value)); });
        addLabel("Volume", volume);
        const auto rate = add(std::make_shared<Slider>(Rect{{kColumn, y - 14}, {kWidth, 22}}),
                              kAtTop | Autoresizing::kWidth);
        rate->setRange(1, 5);
        rate->setNumberOfTickMarks(5);
        rate->setAllowsTickMarkValuesOnly(true);
        rate->setValue(2);
        rate->setHandler([](double value) { print("rate " + std::to_string(value)); });
        addLabel("Rate", rate);
    }
    void addList(double y) {
        const auto list = add(std::make_shared<ListBox>(Rect{{kColumn, y}, {kWidth, 82}}),
                              Autoresizing::kWidth | Autoresizing::kHeight);
        const auto dot = graphics().imageByDrawing({12, 12}, [](GraphicsContext& context) {
            context.fillRect({{1, 1}, {10, 10}}, deviceRGB(0.9, 0.5, 0.2),
                             CompositingOperation::SourceOver);
        });
        list->setRows({{"London", "09:30", dot},
                       {"Kolkata", "14:00", dot},
                       {"A place with a name that is far too long", "Tomorrow", dot},
                       {"Tokyo", "17:30"},
                       {"Auckland", "21:30"}});
        list->setSelectedRow(1);
        list->setSelectionHandler([](std::optional<std::size_t> row) {
            print("selected " + (row ? std::to_string(*row) : "none"));
        });
        list->setActivationHandler(
            [](std::size_t row) { print("activated " + std::to_string(row)); });
        addLabel("Cities", list);
    }
    void addChart(double y) {
        const auto chart = std::make_shared<Chart>()->initWithFrame({{kColumn, y}, {kWidth, 28}});
        addLabel("Load", add(std::make_shared<ViewBox>(chart),
                             Autoresizing::kWidth | Autoresizing::kMaxYMargin));
    }
    void addButtons(double y) {
        const auto button = [&](double x, const char* title) {
            auto made = add(std::make_shared<Button>(Rect{{x, y}, {76, 24}}),
                            Autoresizing::kMinXMargin | Autoresizing::kMaxYMargin);
            made->setTitle(title);
            made->setHandler([title] { print(title); });
            return made;
        };
        button(kContentSize.width - 3 * 84 - 8, "Delete")->setEnabled(false);
        button(kContentSize.width - 2 * 84 - 8, "Cancel");
        content_.setDefaultButton(button(kContentSize.width - 84 - 8, "OK"));
    }
    static void print(const std::string& line) { std::cout << line << std::endl; }

    ContentView& content_;
};

std::shared_ptr<Panel> makePanel(const Options& options) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const Rect content{{(screen.width() - kContentSize.width) / 2,
                        (screen.height() - kContentSize.height - kPanelTitleBarHeight) / 2},
                       kContentSize};
    auto panel = options.isPlain ? std::make_shared<Panel>() : std::make_shared<HUDWindow>();
    if (!panel->initWithContentRect(content,
                                    kTitledWindowMask | kClosableWindowMask | kResizableWindowMask,
                                    BackingStore::Buffered, false))
        return nullptr;
    if (options.isPlain)
        panel->setBackgroundColor(calibratedWhite(options.isDark ? 0.17 : 0.93));
    panel->setTitle("Controls");
    SampleControls(panel->contentView()).add();
    return panel;
}

/// Draws the visible panel onto a grey desktop.
ExitStatus drawToFile(const Options& options) {
    QCoreApplication::processEvents(); // activates the panel
    QWidget* const window = QApplication::activeWindow();
    if (!window)
        return fail("the panel was not shown");
    const double scale = window->devicePixelRatioF();
    QImage picture(window->size() * scale, QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    picture.fill(options.isDark ? QColor(0x30, 0x38, 0x40) : QColor(0xb0, 0xc0, 0xd0));
    window->render(&picture, {}, {}, QWidget::DrawChildren);
    if (!picture.save(platform::qt::qString(options.file), "PNG"))
        return fail(options.file + ": cannot be written");
    return ExitStatus::Success;
}

ExitStatus showPanel(const Options& options) {
    const auto panel = makePanel(options);
    if (!panel)
        return ExitStatus::Failure;
    panel->setCloseObserver([] { QApplication::quit(); });
    panel->makeKeyAndOrderFront();
    if (!options.file.empty())
        return drawToFile(options);
    QApplication::exec();
    return flushOutput();
}

} // namespace

void addPanelVerb(CLI::App& commands, DrawingTask& task) {
    const auto options = std::make_shared<Options>();
    CLI::App* verb = commands.add_subcommand(
        "panel", "Show a panel with all kinds of controls and print a line for each action");
    verb->add_flag("--plain", options->isPlain, "Show a plain panel instead of the dark one");
    verb->add_flag("--dark", options->isDark, "Give the plain panel a dark background");
    verb->add_option("--picture", options->file, "Write a picture of the panel to this file");
    verb->callback([options, &task] {
        task = {DrawingTask::Needs::Desktop, [options] { return showPanel(*options); }};
    });
}

} // namespace apps
