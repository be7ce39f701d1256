#include "apps/support/Appearance.h"
#include "platform/Graphics.h"
#include "platform/qt/Desktop.h"
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
#include <QTest>
#include <QWidget>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// panel_pictures FOLDER light|dark|hud
// Draws every control of a panel, enabled and disabled, one picture for each that has the focus;
// see scripts/draw-panels.
using namespace platform;

namespace {

constexpr double kColumnWidth = 220; // points
constexpr double kGap = 16;
constexpr Size kContent{2 * kColumnWidth + 3 * kGap, 500};

std::shared_ptr<Image> ring(bool isTemplate) {
    const auto image = graphics().imageByDrawing({16, 16}, [](GraphicsContext& context) {
        BezierPath path;
        path.appendOvalInRect({{2, 2}, {12, 12}});
        context.strokePath(path, {.width = 2}, deviceRGB(0.9, 0.45, 0.1),
                           CompositingOperation::SourceOver);
    });
    return isTemplate ? graphics().templateImage(image) : image;
}

class Wave final : public MenuExtraView {
  public:
    static std::shared_ptr<MenuExtraView> framed(const Rect& frame) {
        return std::make_shared<Wave>()->initWithFrame(frame);
    }
    void drawRect(const Rect& rect) override {
        BezierPath path;
        path.moveToPoint({0, 0});
        path.curveToPoint({rect.size.width, rect.size.height}, {rect.size.width, 0},
                          {0, rect.size.height});
        graphics().currentContext().strokePath(path, {.width = 2}, deviceRGB(0.3, 0.6, 0.9),
                                               CompositingOperation::SourceOver);
        graphics().currentContext().drawText(AttributedString("Text without a colour"), {8, 20});
    }
};

/// Places controls below each other.
class Column {
  public:
    Column(ContentView& content, double left, bool isEnabled)
        : content_(content), left_(left), isEnabled_(isEnabled) {}

    /// Adds a control of this height. It has the whole width, or the part from @p from to @p to.
    template <class T, class... Arguments>
    std::shared_ptr<T> add(double height, std::pair<double, double> part, Arguments... arguments) {
        if (part.first == 0)
            y_ -= height + 8;
        const Rect frame{{left_ + part.first * kColumnWidth, y_},
                         {(part.second - part.first) * kColumnWidth - 4, height}};
        auto control = made<T>(frame, arguments...);
        control->setEnabled(isEnabled_);
        content_.addControl(control);
        return control;
    }

  private:
    template <class T, class... Arguments>
    static std::shared_ptr<T> made(const Rect& frame, Arguments... arguments) {
        if constexpr (std::is_same_v<T, ViewBox>)
            return std::make_shared<ViewBox>(Wave::framed(frame));
        else
            return std::make_shared<T>(frame, arguments...);
    }

    ContentView& content_;
    const double left_;
    const bool isEnabled_;
    double y_ = kContent.height - 4;
};

constexpr std::pair<double, double> kWhole{0, 1}, kLeft{0, 0.5}, kRight{0.5, 1};

/// The controls of the enabled column by what they are.
struct Controls {
    std::vector<std::pair<std::string, std::shared_ptr<Control>>> focusable;
    std::shared_ptr<Button> defaultButton;
};

void addTexts(Column& column, Controls& controls) {
    column.add<Label>(20, kWhole, "A label");
    const auto small = column.add<Label>(32, kWhole,
                                         "A small label that wraps, because it is "
                                         "too long for a single line");
    small->setControlSize(ControlSize::Small);
    small->setWraps(true);
    const auto field = column.add<TextField>(24, kWhole);
    field->setText("Text in a field");
    column.add<TextField>(24, kLeft)->setPlaceholder("Placeholder");
    const auto secret = column.add<TextField>(24, kRight);
    secret->setText("secret");
    secret->setSecure(true);
    controls.focusable.emplace_back("field", field);
}

void addButtons(Column& column, Controls& controls) {
    const auto plain = column.add<Button>(24, kLeft);
    plain->setTitle("Cancel");
    controls.defaultButton = column.add<Button>(24, kRight);
    controls.defaultButton->setTitle("OK");
    for (const bool isTemplate : {false, true}) {
        const auto part = isTemplate ? kRight : kLeft;
        const auto image = column.add<Button>(24, part);
        image->setImage(ring(isTemplate));
        image->setImagePosition(ImagePosition::ImageOnly);
    }
    const auto bare = column.add<Button>(24, kWhole);
    bare->setTitle("Without a border");
    bare->setBordered(false);
    controls.focusable.emplace_back("button", plain);
    controls.focusable.emplace_back("default-button", controls.defaultButton);
}

void addSliders(Column& column, Controls& controls) {
    const auto plain = column.add<Slider>(22, kWhole);
    plain->setValue(0.65);
    const auto ticks = column.add<Slider>(26, kWhole);
    ticks->setNumberOfTickMarks(6);
    ticks->setValue(0.4);
    const auto vertical = column.add<Slider>(70, {0, 0.15});
    vertical->setVertical(true);
    vertical->setValue(0.3);
    column.add<ViewBox>(70, {0.2, 1});
    controls.focusable.emplace_back("slider", plain);
}

void addList(Column& column, Controls& controls) {
    const auto list = column.add<ListBox>(98, kWhole);
    list->setRows({{"Coloured", "09:30", ring(false)},
                   {"Template", "14:00", ring(true)},
                   {"Selected", "17:30", ring(true)},
                   {"A row with a name that is far too long", "Tomorrow", ring(true)},
                   {"Without an image", "21:30"}});
    list->setSelectedRow(2);
    controls.focusable.emplace_back("list", list);
}

Controls addColumn(ContentView& content, double left, bool isEnabled) {
    Column column(content, left, isEnabled);
    Controls controls;
    addTexts(column, controls);
    addButtons(column, controls);
    addSliders(column, controls);
    addList(column, controls);
    return controls;
}

std::shared_ptr<Panel> makePanel(std::string_view style) {
    const auto panel = style == "hud" ? std::make_shared<HUDWindow>() : std::make_shared<Panel>();
    const auto mask = kTitledWindowMask | kClosableWindowMask | kResizableWindowMask;
    if (!panel->initWithContentRect({{100, 100}, kContent}, mask, BackingStore::Buffered, false))
        return nullptr;
    if (style != "hud")
        panel->setBackgroundColor(calibratedWhite(style == "dark" ? 0.17 : 0.93));
    panel->setTitle("Controls");
    return panel;
}

bool save(QWidget& window, const std::string& file) {
    QTest::qWait(20);
    const double scale = window.devicePixelRatioF();
    QImage picture((QSizeF(window.size()) * scale).toSize(), QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    picture.fill(QColor(0x5f, 0x87, 0x9c));
    window.render(&picture, {}, {}, QWidget::DrawChildren);
    return picture.save(qt::qString(file));
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 3)
        return 1;
    qt::install();
    const std::string_view style = argv[2];
    apps::applyAppearance(style == "dark" ? apps::Appearance::Dark : apps::Appearance::Light);
    const auto panel = makePanel(style);
    if (!panel)
        return 1;
    const Controls enabled = addColumn(panel->contentView(), kGap, true);
    addColumn(panel->contentView(), 2 * kGap + kColumnWidth, false);
    panel->contentView().setDefaultButton(enabled.defaultButton);
    panel->makeKeyAndOrderFront();
    QCoreApplication::processEvents();
    QWidget* const window = QApplication::activeWindow();
    if (!window)
        return 1;
    for (const auto& [name, control] : enabled.focusable) {
        control->focus();
        if (!save(*window, std::string(argv[1]) + '/' + name + ".png"))
            return 1;
    }
}
