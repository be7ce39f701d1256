#pragma once

#include "platform/Applications.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace halvextest {

/// Applications that the test defines. Replaces the process's service for its lifetime, and records
/// the requests that are sent, such as "hide editor.desktop", without carrying them out.
class ManualApplications final : public platform::Applications {
  public:
    std::vector<platform::DesktopEntry> installed;
    std::map<std::string, std::shared_ptr<platform::Image>> icons; ///< by identifier
    std::vector<std::string> requests;
    bool providesRunning = true; ///< whether the desktop provides the list

    /// Replaces the list and calls the observers' handlers.
    void setRunning(std::vector<platform::RunningApplication> applications) {
        running_ = std::move(applications);
        for (const auto& handler : std::vector(handlers_))
            if (const auto code = *handler)
                code();
    }
    bool isObserved() const { return !handlers_.empty(); }

    std::vector<platform::RunningApplication> running() override { return running_; }
    bool providesList() const override { return providesRunning; }
    /// Unlike the desktop's, does not call the handler before the first change.
    std::unique_ptr<platform::Watch> observe(std::function<void()> handler) override {
        struct Observer final : platform::Watch {
            Observer(ManualApplications& applications, Handler code)
                : owner(applications), handler(std::move(code)) {}
            ~Observer() override {
                *handler = nullptr;
                std::erase(owner.handlers_, handler);
            }

            ManualApplications& owner;
            const Handler handler;
        };
        handlers_.push_back(std::make_shared<std::function<void()>>(std::move(handler)));
        return std::make_unique<Observer>(*this, handlers_.back());
    }
    std::shared_ptr<platform::Image> icon(const std::string& identifier, double) override {
        const auto found = icons.find(identifier);
        return found == icons.end() ? nullptr : found->second;
    }
    std::optional<platform::DesktopEntry> desktopEntry(const std::string& identifier) override {
        const auto found =
            std::ranges::find(installed, identifier, &platform::DesktopEntry::identifier);
        return found == installed.end() ? std::nullopt : std::optional(*found);
    }
    bool activate(const std::string& identifier) override { return send("activate", identifier); }
    bool activateWindow(std::uint64_t window) override {
        const auto shows = [window](const auto& application) {
            return std::ranges::count(application.windows, window,
                                      &platform::ApplicationWindow::identifier) > 0;
        };
        return record(std::ranges::any_of(running_, shows),
                      "activate window " + std::to_string(window));
    }
    bool hide(const std::string& identifier) override { return send("hide", identifier); }
    bool hideOthers(const std::string& identifier) override {
        return send("hide others", identifier);
    }
    bool show(const std::string& identifier) override { return send("show", identifier); }
    bool quit(const std::string& identifier) override { return send("quit", identifier); }
    bool launch(const std::string& identifier, const std::vector<std::string>& urls) override {
        std::string request = "launch " + identifier;
        for (const std::string& url : urls)
            request += ' ' + url;
        return record(desktopEntry(identifier).has_value(), std::move(request));
    }

  private:
    using Handler = std::shared_ptr<std::function<void()>>;

    bool send(const std::string& request, const std::string& identifier) {
        const bool runs =
            std::ranges::count(running_, identifier, &platform::RunningApplication::identifier) > 0;
        return record(runs, request + ' ' + identifier);
    }
    bool record(bool isPossible, std::string request) {
        if (isPossible)
            requests.push_back(std::move(request));
        return isPossible;
    }

    std::vector<platform::RunningApplication> running_;
    std::vector<Handler> handlers_;
    platform::ScopedService<platform::Applications> service_{*this};
};

} // namespace halvextest
