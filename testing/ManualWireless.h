#pragma once

#include "platform/Wireless.h"
#include "platform/runtime/HandlerList.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace halvextest {

/// Wireless adapters that change only in show, and record requests.
class ManualWireless final : public platform::Wireless {
  public:
    /// "scan", "connect wlan0 NAME", "disconnect wlan0", "radio on" or "radio off".
    std::vector<std::string> calls;
    bool accepts = true; ///< the result of requests

    /// Changes the status and notifies the observers.
    void show(platform::WirelessStatus status) {
        status_ = std::move(status);
        handlers_.call();
    }
    bool isObserved() const { return !handlers_.isEmpty(); }

    const platform::WirelessStatus& status() const override { return status_; }
    std::unique_ptr<platform::Watch> observe(std::function<void()> handler) override {
        return handlers_.add(std::move(handler));
    }
    void scan() override { calls.emplace_back("scan"); }
    bool connect(const std::string& interface, const platform::WirelessNetwork& network) override {
        return record("connect " + interface + ' ' + network.name);
    }
    bool disconnect(const std::string& interface) override {
        return record("disconnect " + interface);
    }
    bool setRadio(platform::WirelessRadio radio) override {
        return record(radio == platform::WirelessRadio::On ? "radio on" : "radio off");
    }

  private:
    bool record(std::string call) {
        calls.push_back(std::move(call));
        return accepts;
    }

    platform::WirelessStatus status_;
    platform::HandlerList<> handlers_;
    platform::ScopedService<platform::Wireless> service_{*this};
};

} // namespace halvextest
