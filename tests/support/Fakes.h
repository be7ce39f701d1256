#pragma once

#include "platform/Clock.h"
#include "platform/EventSource.h"
#include "platform/Graphics.h"
#include "platform/MenuExtraHost.h"
#include "platform/MenuExtraServer.h"
#include "platform/PanelService.h"
#include "platform/Pasteboard.h"
#include "platform/UserNotifications.h"
#include "platform/Workspace.h"
#include "platform/base/Exception.h"
#include "platform/runtime/LocalNotificationCenter.h"
#include "platform/widgets/MenuExtra.h"
#include "platform/widgets/Panel.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Services that record how they are used. Each replaces the process's service for its lifetime.
namespace test {

/// An image without pixels.
struct BlankImage final : platform::Image {
    BlankImage(double width, double height) : points{width, height} {}
    platform::Size size() const override { return points; }

    platform::Size points;
};

/// Records drawing as lines of text. Each byte of a drawn text is 7 points wide and 15 high.
class RecordingGraphics final : public platform::Graphics, public platform::GraphicsContext {
  public:
    std::vector<std::string> drawn;

    platform::Size sizeOfText(const platform::AttributedString& text) override {
        return {7.0 * static_cast<double>(text.length()), 15.0};
    }
    /// Returns an image of 13 x 13 points for every path that ends in ".png".
    std::shared_ptr<platform::Image> imageWithContentsOfFile(const std::string& path) override {
        return path.ends_with(".png") ? std::make_shared<BlankImage>(13, 13) : nullptr;
    }
    std::shared_ptr<platform::Image> imageNamed(std::string_view name) override {
        return name == namedImage ? std::make_shared<BlankImage>(9, 9) : nullptr;
    }
    std::shared_ptr<platform::Image> imageByDrawing(platform::Size size,
                                                    const Draw& draw) override {
        drawn.push_back("canvas " + number(size.width) + ' ' + number(size.height));
        draw(*this);
        return std::make_shared<BlankImage>(size.width, size.height);
    }
    std::string namedImage; ///< the only name for which imageNamed returns an image
    bool isDrawing = true;  ///< if false, currentContext throws
    platform::GraphicsContext& currentContext() override {
        if (!isDrawing)
            throw platform::Exception("Name", "nothing is being drawn");
        return *this;
    }

    void saveGraphicsState() override { drawn.emplace_back("save"); }
    void restoreGraphicsState() override { drawn.emplace_back("restore"); }
    void setShouldSmoothFonts(bool smooth) override {
        drawn.emplace_back(smooth ? "smooth" : "no smoothing");
    }
    void setTextDrawingMode(platform::TextDrawingMode mode) override {
        drawn.push_back("text mode " + std::to_string(static_cast<int>(mode)));
    }
    void setCompositingOperation(platform::CompositingOperation operation) override {
        drawn.push_back(words(operation));
    }
    void setShadow(platform::Size offset, double blur) override {
        drawn.push_back("shadow " + number(offset.width) + ' ' + number(offset.height) + " blur " +
                        number(blur));
    }
    void drawText(const platform::AttributedString& text, platform::Point point) override {
        drawn.push_back("text " + text.string() + " at " + number(point.x) + ' ' + number(point.y));
    }
    void drawTextInRect(const platform::AttributedString& text,
                        const platform::Rect& rect) override {
        drawn.push_back("text " + text.string() + " in " + words(rect));
        texts.push_back(text);
    }
    std::vector<platform::AttributedString> texts; ///< drawn with drawTextInRect
    void drawImage(const platform::Image&, const platform::Rect& destination,
                   const platform::Rect& source, platform::CompositingOperation operation,
                   double fraction) override {
        drawn.push_back("image " + words(source) + " into " + words(destination) + ' ' +
                        words(operation) + " fraction " + number(fraction));
    }
    void fillRect(const platform::Rect& rect, const platform::Color& color,
                  platform::CompositingOperation operation) override {
        drawn.push_back("fill " + words(rect) + " with " + words(color) + ' ' + words(operation));
    }
    /// Elements are "move x y", "line x y", "arc x y to x y radius", "close".
    void fillPath(const platform::BezierPath& path, const platform::Color& color,
                  platform::CompositingOperation operation) override {
        using Step = platform::BezierPath::Step;
        drawn.push_back("path with " + words(color) + ' ' + words(operation));
        for (const auto& [step, point, toPoint, radius] : path.elements()) {
            if (step == Step::Close)
                drawn.emplace_back("close");
            else if (step == Step::ArcFromPoint)
                drawn.push_back("arc " + words(point) + " to " + words(toPoint) + " radius " +
                                number(radius));
            else
                drawn.push_back((step == Step::MoveTo ? "move " : "line ") + words(point));
        }
    }

  private:
    static std::string number(double value) {
        std::string text = std::to_string(value + 0.0); // no -0
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.')
            text.pop_back();
        return text;
    }
    static std::string words(platform::CompositingOperation operation) {
        return "operation " + std::to_string(static_cast<int>(operation));
    }
    static std::string words(platform::Point point) {
        return number(point.x) + ' ' + number(point.y);
    }
    static std::string words(const platform::Color& color) {
        return number(color.red) + ' ' + number(color.green) + ' ' + number(color.blue) + ' ' +
               number(color.alpha) + " space " + std::to_string(static_cast<int>(color.space));
    }
    static std::string words(const platform::Rect& rect) {
        return number(rect.origin.x) + ' ' + number(rect.origin.y) + ' ' + number(rect.size.width) +
               ' ' + number(rect.size.height);
    }

    platform::ScopedService<platform::Graphics> service_{*this};
};

/// A bar with a thickness of 22 points that counts the calls of its items.
class RecordingHost final : public platform::MenuExtraHost {
  public:
    int redisplays = 0;
    int lengthChanges = 0;
    int menuToggles = 0;

    double statusBarThickness() const override { return 22; }
    void viewNeedsDisplay(platform::MenuExtraView&) override { ++redisplays; }
    void lengthChanged(platform::MenuExtra&) override { ++lengthChanges; }
    void toggleMenu(platform::MenuExtra&) override { ++menuToggles; }

  private:
    platform::ScopedService<platform::MenuExtraHost> service_{*this};
};

class RecordingWorkspace final : public platform::Workspace {
  public:
    std::vector<std::string> selected; ///< "path|root path"
    std::vector<std::string> opened;   ///< "path", "path|application" or "front <process>"
    bool opens = true;                 ///< the result of openFile
    std::vector<std::string> recycled;
    bool recycles = true; ///< the result of recycle

    bool selectFile(const std::string& path, const std::string& rootPath) override {
        selected.push_back(path + '|' + rootPath);
        return true;
    }
    bool openFile(const std::string& path) override {
        opened.push_back(path);
        return opens;
    }
    bool openURL(const std::string&) override { return false; }
    bool openFile(const std::string& path, const std::string& withApplication) override {
        opened.push_back(path + '|' + withApplication);
        return opens;
    }
    void bringToFront(platform::ProcessSerialNumber process) override {
        opened.push_back("front " + std::to_string(process));
    }
    platform::NotificationCenter& notificationCenter() override { return center_; }
    bool recycle(const std::string& path) override {
        recycled.push_back(path);
        return recycles;
    }

  private:
    platform::LocalNotificationCenter center_;
    platform::ScopedService<platform::Workspace> service_{*this};
};

/// A menu bar with the items in loaded. It records requests; only the test loads items.
class RecordingMenuBar final : public platform::MenuExtraServer {
  public:
    std::vector<std::string> loaded; ///< identifiers
    /// "add <url> <position> <the four numbers>", "remove <identifier> <flags>"
    std::vector<std::string> requests;
    std::vector<std::string> queried; ///< the identifiers passed to getMenuExtra
    /// If set, the status and the reference that getMenuExtra returns for every identifier.
    std::optional<std::pair<std::int32_t, platform::MenuExtraReference>> result;
    /// Called by addMenuExtra. Returns its status.
    std::function<std::int32_t(const std::string& url)> onAdd = [](const auto&) { return 0; };

    std::int32_t getMenuExtra(const std::string& identifier,
                              platform::MenuExtraReference& reference) override {
        queried.push_back(identifier);
        if (result) {
            reference = result->second;
            return result->first;
        }
        const auto found = std::find(loaded.begin(), loaded.end(), identifier);
        if (found == loaded.end())
            return static_cast<std::int32_t>(platform::MenuExtraStatus::NotLoaded);
        reference = static_cast<platform::MenuExtraReference>(found - loaded.begin()) + 1;
        return 0;
    }
    std::int32_t addMenuExtra(const std::string& url, std::int32_t position, std::int32_t first,
                              std::int32_t second, std::int32_t third,
                              std::int32_t fourth) override {
        requests.push_back("add " + url);
        for (const std::int32_t number : {position, first, second, third, fourth})
            requests.back() += ' ' + std::to_string(number);
        return onAdd(url);
    }
    std::int32_t removeMenuExtra(platform::MenuExtraReference reference,
                                 std::int32_t flags) override {
        const auto item = loaded.begin() + static_cast<std::ptrdiff_t>(reference) - 1;
        requests.push_back("remove " + *item + ' ' + std::to_string(flags));
        loaded.erase(item);
        return 0;
    }

  private:
    platform::ScopedService<platform::MenuExtraServer> service_{*this};
};

/// Panels whose windows record calls as text. A window is resized immediately, an animated one with
/// one frame half-way between the old and the new.
class RecordingPanels final : public platform::PanelService {
  public:
    std::vector<std::string> calls;
    bool makesWindows = true;

    std::unique_ptr<platform::PanelWindow> makeWindow(platform::Panel& panel) override {
        calls.push_back("window " + std::to_string(panel.styleMask()));
        return makesWindows ? std::make_unique<Window>(*this, panel) : nullptr;
    }

  private:
    class Window final : public platform::PanelWindow {
      public:
        Window(RecordingPanels& owner, platform::Panel& panel) : owner_(owner), panel_(panel) {}

        void setTitle(const std::string& title) override { call("title " + title); }
        void setLook(const platform::PanelLook& look) override {
            const auto& ground = look.backgroundColor;
            call(std::string(ground.pattern ? "pattern" : "colour") + " alpha " +
                 std::to_string(static_cast<int>(look.alphaValue)) +
                 (look.opaque ? " opaque" : "") + (look.hasShadow ? " shadow" : "") +
                 (look.movableByWindowBackground ? " movable" : "") +
                 (look.showsResizeIndicator ? " indicator" : ""));
        }
        void setFrame(const platform::Rect& frame, bool display, bool animate) override {
            call(std::string("frame") + (display ? " display" : "") + (animate ? " animate" : ""));
            const platform::Size size = panel_.frame().size;
            if (animate)
                panel_.frameDidChange(
                    {frame.origin,
                     {(size.width + frame.size.width) / 2, (size.height + frame.size.height) / 2}});
            panel_.frameDidChange(frame);
        }
        void addButton(const std::shared_ptr<platform::Button>&) override { call("button"); }
        void display() override { call("display"); }
        void makeKeyAndOrderFront() override {}
        void orderOut() override {}

      private:
        void call(std::string words) { owner_.calls.push_back(std::move(words)); }

        RecordingPanels& owner_;
        platform::Panel& panel_;
    };

    platform::ScopedService<platform::PanelService> service_{*this};
};

class RecordingPasteboard final : public platform::Pasteboard {
  public:
    std::string text;

    void setString(std::string_view string) override { text = string; }

  private:
    platform::ScopedService<platform::Pasteboard> service_{*this};
};

/// Shows notifications until they are withdrawn. Keys are not separated by owner.
class RecordingUserNotifications final : public platform::UserNotifications {
  public:
    std::vector<platform::UserNotification> shown; ///< in the order they were posted
    bool shows = true;                             ///< the result of post

    bool post(const platform::UserNotification& notification) override {
        withdraw(notification.key);
        if (shows)
            shown.push_back(notification);
        return shows;
    }
    void withdraw(std::string_view key) override {
        std::erase_if(shown, [&](const auto& other) { return !key.empty() && other.key == key; });
    }
    void removeExpired() override {
        std::erase_if(shown, [](const auto& one) { return one.handler && one.observer.expired(); });
    }
    /// Chooses an action, as a user does. Returns whether a notification with this key offers it.
    bool choose(std::string_view key, const std::string& action) {
        for (const auto& [itsKey, title, body, icon, actions, weak, handler] : std::vector(shown))
            for (const auto& [identifier, label] : actions)
                if (const auto observer = weak.lock(); itsKey == key && identifier == action) {
                    if (observer && handler)
                        handler(action);
                    return true;
                }
        return false;
    }

  private:
    platform::ScopedService<platform::UserNotifications> service_{*this};
};

class FixedEvents final : public platform::EventSource {
  public:
    platform::Event event;

    platform::Event currentEvent() const override { return event; }

  private:
    platform::ScopedService<platform::EventSource> service_{*this};
};

/// A clock in UTC that changes and ticks only in moveTo.
class ManualClock final : public platform::Clock {
  public:
    std::int64_t seconds = 0;
    /// The durations of all sleeps in microseconds. No sleep takes any time.
    std::vector<std::uint64_t> sleeps;
    std::function<void()> duringSleep = [] {};

    std::int64_t now() const override { return seconds; }
    void sleep(std::uint64_t microseconds) override {
        sleeps.push_back(microseconds);
        duringSleep();
    }
    std::tm localTime(std::int64_t secondsSince1970) const override {
        std::tm time{};
        gmtime_r(&secondsSince1970, &time);
        return time;
    }
    std::unique_ptr<platform::Watch> tick(platform::TickInterval interval,
                                          std::function<void()> handler) override {
        auto ticker = std::make_unique<Ticker>(*this, interval, std::move(handler));
        tickers_.push_back(ticker.get());
        return ticker;
    }

    /// Sets the time and calls the handlers of all tickers.
    void moveTo(std::int64_t time) {
        seconds = time;
        for (const Ticker* ticker : std::vector(tickers_))
            ticker->handler();
    }
    std::vector<platform::TickInterval> intervals() const {
        std::vector<platform::TickInterval> result;
        for (const Ticker* ticker : tickers_)
            result.push_back(ticker->interval);
        return result;
    }

  private:
    struct Ticker final : platform::Watch {
        Ticker(ManualClock& owner, platform::TickInterval every, std::function<void()> code)
            : clock(owner), interval(every), handler(std::move(code)) {}
        ~Ticker() override { std::erase(clock.tickers_, this); }

        ManualClock& clock;
        platform::TickInterval interval;
        std::function<void()> handler;
    };

    std::vector<Ticker*> tickers_;
    platform::ScopedService<platform::Clock> service_{*this};
};

} // namespace test
