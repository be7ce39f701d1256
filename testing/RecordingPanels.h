#pragma once

#include "platform/PanelService.h"
#include "platform/widgets/Panel.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace halvextest {

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
        void addControl(const std::shared_ptr<platform::Control>& control) override {
            call(dynamic_cast<platform::Button*>(control.get()) ? "button" : "control");
        }
        void removeControl(platform::Control&) override { call("remove control"); }
        void setDefaultButton(platform::Button* button) override {
            call("default " + (button ? button->title() : "none"));
        }
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

} // namespace halvextest
