#include "apps/support/Appearance.h"
#include "apps/support/DesktopFont.h"
#include "platform/Graphics.h"
#include "platform/qt/Desktop.h"
#include "platform/qt/QtMenu.h"
#include "platform/qt/Strings.h"
#include "platform/widgets/MenuExtra.h"

#include <QApplication>
#include <QPainter>
#include <QTest>

#include <functional>
#include <string>
#include <vector>

// menu_pictures FOLDER light|dark|contrast
// Draws menus with all features to FOLDER, one picture each; see scripts/draw-menus.
using namespace platform;

namespace {

std::shared_ptr<Image> disc(double size, const Color& color) {
    return graphics().imageByDrawing({size, size}, [&](GraphicsContext& context) {
        BezierPath path;
        const double radius = size / 2;
        path.moveToPoint({radius, 0});
        for (const auto& [corner, to] : {std::pair(Point{size, 0}, Point{size, radius}),
                                         {Point{size, size}, Point{radius, size}},
                                         {Point{0, size}, Point{0, radius}},
                                         {Point{0, 0}, Point{radius, 0}}})
            path.appendArcFromPoint(corner, to, radius);
        context.fillPath(path, color, CompositingOperation::SourceOver);
    });
}

std::shared_ptr<Image> bars(int strength) {
    return graphics().imageByDrawing({16, 12}, [&](GraphicsContext& context) {
        for (int i = 0; i < 4; ++i)
            context.fillRect({{i * 4.0, 0}, {3, 3.0 + 3 * i}},
                             calibratedWhite(0.5, i < strength ? 1 : 0.3),
                             CompositingOperation::SourceOver);
    });
}

/// A month, with today marked.
class MonthView final : public MenuExtraView {
  public:
    void drawRect(const Rect& rect) override {
        const double cell = rect.size.width / 7;
        for (int day = 0; day < 35; ++day) {
            const AttributedString text(std::to_string(day + 1));
            const Size size = graphics().sizeOfText(text);
            const int week = day / 7;
            const Point origin{day % 7 * cell, rect.size.height - (week + 1) * 24.0};
            if (day == 16)
                graphics().currentContext().fillRect({{origin.x + 3, origin.y}, {cell - 6, 24}},
                                                     deviceRGB(0.9, 0.4, 0.2),
                                                     CompositingOperation::SourceOver);
            graphics().currentContext().drawText(
                text, {origin.x + (cell - size.width) / 2, origin.y + (24 - size.height) / 2});
        }
    }
};

class LineView final : public MenuExtraView {
  public:
    void drawRect(const Rect& rect) override {
        graphics().currentContext().drawText(AttributedString("A view with the menu's highlight"),
                                             {24, (rect.size.height - 15) / 2});
    }
};

MenuItem& add(Menu& menu, const char* title) {
    return menu.addItem(std::make_shared<MenuItem>(title, [](MenuItem&) {}));
}

std::shared_ptr<Menu> worldClock() {
    auto menu = std::make_shared<Menu>();
    menu->addItem(MenuItem::sectionHeader("World clock"));
    for (const auto& [name, time, subtitle] : {std::tuple("Berlin", "14:05", ""),
                                               {"Auckland", "1:05", "Tomorrow, +11 h"},
                                               {"San Francisco", "11:11", "Today, −9 h"}}) {
        MenuItem& item = add(*menu, name);
        item.setTrailingText(time);
        item.setSubtitle(subtitle);
    }
    menu->items()[1]->setState(MenuItem::State::On);
    menu->addSeparator();
    menu->addItem(MenuItem::sectionHeader("Calendars"));
    MenuItem& calendar = add(*menu, "Personal");
    calendar.setImage(disc(10, deviceRGB(0.2, 0.6, 0.3)));
    calendar.setTrailingText("10:00 – 11:30");
    add(*menu, "תל אביב־יפו").setTrailingText("16:05");
    add(*menu, "Preferences…").setShortcut(KeyShortcut{Key::None, ",", kControlKeyMask});
    return menu;
}

std::shared_ptr<Menu> features() {
    auto menu = std::make_shared<Menu>();
    add(*menu, "On").setState(MenuItem::State::On);
    add(*menu, "Mixed").setState(MenuItem::State::Mixed);
    menu->addItem("Disabled", {}, {}).setSubtitle("with a subtitle");
    menu->items().back()->setImage(disc(16, deviceRGB(0.2, 0.4, 0.9)));
    for (const int level : {1, 2})
        add(*menu, "Indented & more").setIndentationLevel(level);
    add(*menu, "Shortcut").setShortcut(KeyShortcut{Key::None, "k", kControlKeyMask});
    add(*menu, "Another")
        .setShortcut(
            KeyShortcut{Key::Delete, {}, kControlKeyMask | kOptionKeyMask | kShiftKeyMask});
    MenuItem& large = add(*menu, "Large image");
    large.setImage(disc(32, deviceRGB(0.8, 0.2, 0.5)));
    large.setSubtitle("Small text below the title");
    add(*menu, "Restart");
    add(*menu, "Restart without asking").setAlternateModifiers(kOptionKeyMask);
    MenuItem& more = add(*menu, "More");
    more.setTrailingText("3");
    more.setSubmenu(worldClock());
    add(*menu, "A title that is so long that it does not fit into any reasonable menu, which "
               "is therefore cut off at its end with an ellipsis, and shown in full in a tooltip");
    return menu;
}

std::shared_ptr<Menu> wireless() {
    auto menu = std::make_shared<Menu>();
    menu->addItem(MenuItem::sectionHeader("Networks"));
    for (int i = 0; const char* name : {"Home", "Library", "Café Müller 5 GHz", "4711"}) {
        MenuItem& item = add(*menu, name);
        item.setTrailingImage(bars(4 - i));
        item.setTrailingText(i++ % 2 ? "" : "WPA2");
    }
    menu->items()[1]->setState(MenuItem::State::On);
    return menu;
}

std::shared_ptr<Menu> views() {
    auto menu = std::make_shared<Menu>();
    const auto addView = [&](const std::shared_ptr<MenuExtraView>& view, Size size,
                             MenuItem::ViewStyle style) {
        view->setFrameSize(size);
        add(*menu, "View").setView(view, style);
    };
    add(*menu, "June").setState(MenuItem::State::On);
    addView(std::make_shared<MonthView>(), {200, 120}, MenuItem::ViewStyle::FillsWidth);
    menu->addSeparator();
    addView(std::make_shared<LineView>(), {230, 24}, MenuItem::ViewStyle::Highlighted);
    add(*menu, "Today");
    return menu;
}

std::shared_ptr<Menu> high() {
    auto menu = std::make_shared<Menu>();
    for (int i = 1; i <= 60; ++i)
        add(*menu, "Row").setTrailingText(std::to_string(i));
    return menu;
}

/// Draws a menu and its open submenus onto a background.
void save(QMenu& menu, const QString& file) {
    std::vector<QWidget*> shown{&menu};
    for (QMenu* submenu : menu.findChildren<QMenu*>())
        if (submenu->isVisible())
            shown.push_back(submenu);
    QRect area;
    for (const QWidget* widget : shown)
        area |= widget->geometry();
    area.adjust(-8, -8, 8, 8);
    QImage image(area.size() * menu.devicePixelRatioF(), QImage::Format_RGB32);
    image.setDevicePixelRatio(menu.devicePixelRatioF());
    image.fill(QColor(0x5f, 0x87, 0x9c));
    QPainter painter(&image);
    for (QWidget* widget : shown)
        painter.drawPixmap(widget->pos() - area.topLeft(), widget->grab());
    image.save(file);
}

struct Picture {
    const char* name;
    std::function<std::shared_ptr<Menu>()> menu;
    std::vector<Qt::Key> keys; // to press in the open menu
    Qt::LayoutDirection direction = Qt::LeftToRight;
};

void draw(const Picture& picture, const QString& folder) {
    QApplication::setLayoutDirection(picture.direction);
    qt::QtMenu menu(picture.menu(), "pictures");
    menu.popup({40, 40});
    for (const Qt::Key key : picture.keys)
        QTest::keyPress(QApplication::activePopupWidget(), key,
                        key == Qt::Key_Alt ? Qt::AltModifier : Qt::NoModifier);
    QTest::qWait(50);
    save(menu, folder + '/' + picture.name + ".png");
    menu.close();
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 3)
        return 1;
    qt::install();
    apps::applyAppearance(apps::parseAppearance(argv[2]).value_or(apps::Appearance::Light),
                          {.accent = {}, .highContrast = argv[2] == std::string("contrast")});
    apps::applyDesktopFont();
    const auto down = [](std::size_t count) { return std::vector(count, Qt::Key_Down); };
    auto submenu = down(9);
    submenu.push_back(Qt::Key_Right);
    auto mirrored = submenu;
    mirrored.back() = Qt::Key_Left;
    auto alternate = down(8);
    alternate.push_back(Qt::Key_Alt);
    for (const Picture& picture :
         {Picture{"world-clock", worldClock, down(2)}, Picture{"features", features, submenu},
          Picture{"alternate", features, alternate},
          Picture{"right-to-left", features, mirrored, Qt::RightToLeft},
          Picture{"wireless", wireless, down(2)}, Picture{"views", views, down(3)},
          Picture{"high", high, {Qt::Key_Up}}})
        draw(picture, QString::fromLocal8Bit(argv[1]));
}
