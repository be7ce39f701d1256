// Changes and draws the titles of items as the bar does once a second, for counting instructions:
//     perf stat -e instructions:u title ITEMS CHANGES
// The difference between two numbers of changes is the cost of the changes alone.

#include "menubar/HalvexMenuExtraBase.h"
#include "platform/MenuExtraHost.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/QtGraphics.h"

#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

using namespace platform;

namespace {

class Host final : public MenuExtraHost {
  public:
    double statusBarThickness() const override { return 22; }
    void viewNeedsDisplay(MenuExtraView&) override {}
    void lengthChanged(MenuExtra&) override {}
    void toggleMenu(MenuExtra&) override {}
};

void draw(qt::QtGraphics& painter, QImage& layer, const HalvexMenuExtraBase& item) {
    layer.fill(Qt::transparent);
    const qt::ScopedContext scope(painter, layer, {150, 22}, 1);
    item.view()->drawRect({{}, {150, 22}});
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const int count = argc > 1 ? std::atoi(argv[1]) : 1;
    const int changes = argc > 2 ? std::atoi(argv[2]) : 1000;
    platform::expat::install();
    qt::QtGraphics painter;
    const ScopedService<Graphics> service(painter);
    Host host;
    const ScopedService<MenuExtraHost> hostService(host);
    QImage layer(150, 22, QImage::Format_ARGB32_Premultiplied);
    std::vector<std::shared_ptr<HalvexMenuExtraBase>> items;
    for (int i = 0; i < count; ++i) {
        items.push_back(std::make_shared<HalvexMenuExtraBase>());
        items.back()->initWithBundle(Bundle::mainBundle());
    }
    for (int change = 0; change < changes; ++change) {
        for (std::size_t i = 0; i < items.size(); ++i)
            items[i]->setTitle("Mon 23 Nov " + std::to_string(i) + ":" + std::to_string(change));
        for (const auto& item : items)
            draw(painter, layer, *item);
    }
}
