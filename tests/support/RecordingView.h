#pragma once

#include "platform/EventSource.h"
#include "platform/Graphics.h"
#include "platform/widgets/MenuExtra.h"

#include <functional>
#include <string>
#include <utility>

namespace test {

/// Records its calls as "name x,y flags;" and fills itself with red.
class RecordingView final : public platform::MenuExtraView {
  public:
    RecordingView(double width, double height) { setFrameSize({width, height}); }

    std::string calls;
    bool handles = false; ///< what scrollWheel, keyDown and performDrop return
    std::function<void()> onMouseDown = [] {};
    platform::AccessibleDescription texts;

    /// Returns the calls since the last call of takeCalls.
    std::string takeCalls() { return std::exchange(calls, {}); }

    void drawRect(const platform::Rect& rect) override {
        platform::graphics().currentContext().fillRect(rect, platform::deviceRGB(1, 0, 0),
                                                       platform::CompositingOperation::Copy);
    }
    void mouseDown(const platform::Event& event) override {
        note("down" + std::to_string(event.clickCount), event.location, event.modifierFlags);
        onMouseDown();
    }
    void mouseMoved(const platform::Event& event) override { note("move", event.location); }
    void mouseDragged(const platform::Event& event) override {
        note("drag" + std::to_string(event.clickCount), event.location);
    }
    void mouseUp(const platform::Event& event) override {
        note("up" + std::to_string(event.buttonNumber), event.location);
    }
    void mouseExited() override { calls += "exit;"; }
    bool scrollWheel(const platform::WheelEvent& event) override {
        note("wheel", {event.deltaX, event.deltaY}, event.modifierFlags);
        return handles;
    }
    bool keyDown(const platform::KeyEvent& event) override {
        calls += "key" + std::to_string(static_cast<int>(event.key)) + event.text + ';';
        return handles;
    }
    bool acceptsDrop(const platform::DroppedData& data) const override {
        return data.location.x < 10;
    }
    bool performDrop(const platform::DroppedData& data) override {
        for (const std::string& file : data.files)
            calls += file + ';';
        note(data.files.empty() ? "drop " + data.text : "drop", data.location);
        return handles;
    }
    std::string toolTip() const override { return "a tip"; }
    platform::AccessibleDescription accessibleDescription() const override { return texts; }

  private:
    void note(const std::string& name, platform::Point at, std::uint32_t flags = 0) {
        calls += name + ' ' + std::to_string(static_cast<int>(at.x)) + ',' +
                 std::to_string(static_cast<int>(at.y));
        calls += flags ? " shift;" : ";";
    }
};

} // namespace test
