// Shows the machine's load of the last minutes as a graph in the bar's text colour. The key "Bars"
// of its preferences is the number of measurements to show, 20 by default.
#include "menubar/HalvexMenuExtraBase.h"
#include "menubar/ItemPreferences.h"
#include "platform/Graphics.h"
#include "platform/Timers.h"
#include "platform/widgets/Menu.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <string>
#include <thread>
#include <utility>

using namespace platform;
using namespace std::chrono_literals;

namespace {

constexpr double kBarWidth = 2, kHeight = 14; // points
constexpr const char* kBars = "Bars";

/// Returns the processes that are running or waiting, per processor.
double load() {
    double average = 0;
    getloadavg(&average, 1);
    return average / std::max(1U, std::thread::hardware_concurrency());
}

} // namespace

class LoadGraph final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(bundle))
            return nullptr;
        preferences_ = menubar::preferencesOf(bundle);
        menu_ = std::make_shared<Menu>();
        for (const int bars : {10, 20, 40})
            menu_->addItem(
                std::to_string(bars) + " bars",
                [this, bars](MenuItem&) { preferences_.set(kBars, std::int64_t{bars}); },
                weak_from_this());
        changes_ = preferences_.onChange([this](const auto&) { draw(); });
        timer_ = timers().every(5s, 1s, [this] { measure(); });
        setTitle(std::nullopt);
        measure();
        return shared_from_this();
    }
    void willUnload() override {
        timer_.reset();
        changes_.reset();
        HalvexMenuExtraBase::willUnload();
    }

  private:
    void measure() {
        loads_.push_back(load());
        draw();
    }
    void draw() {
        const auto bars = static_cast<std::size_t>(
            std::clamp<std::int64_t>(preferences_.integer(kBars, 20), 1, 100));
        while (loads_.size() > bars)
            loads_.pop_front();
        const Size size{static_cast<double>(bars) * kBarWidth, kHeight};
        const auto graph = graphics().imageByDrawing(size, [&](GraphicsContext& context) {
            double x = size.width - static_cast<double>(loads_.size()) * kBarWidth;
            for (const double each : loads_) {
                const double height = std::clamp(each, 0.0, 1.0) * (kHeight - 1) + 1;
                context.fillRect({{x, 0}, {kBarWidth - 0.5, height}}, calibratedWhite(0),
                                 CompositingOperation::Copy);
                x += kBarWidth;
            }
        });
        setImage(graphics().templateImage(graph));
        view()->setNeedsDisplay(true); // the width may be the same
    }

    Preferences preferences_;
    std::deque<double> loads_; // the oldest first; 1 if all processors are busy
    std::unique_ptr<Watch> timer_, changes_;
};

HALVEX_MENU_EXTRA(LoadGraph)
