#pragma once

#include "platform/MenuExtraServer.h"
#include "platform/qt/BarItem.h"
#include "platform/qt/BusConnection.h"
#include "platform/values/Event.h"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

template <class T>
class QList;
class QVariant;

namespace platform::qt {

/// The value that the bar returned, or the reason why the call failed.
template <class Value>
struct BarReply {
    std::optional<Value> value;
    std::string reason; ///< human-readable; empty if there is a value
    explicit operator bool() const { return value.has_value(); }
};

/// Calls the menu bar over the session bus, which starts an installed bar if none is running.
/// Needs neither an application object nor an event loop. A call blocks for at most kTimeout,
/// plus the time to connect (see BusConnection::get), and fails immediately if the bus or the bar
/// is unavailable. If a call times out because the bar hangs, calls to that bar fail immediately
/// for kHangPause. Thread-safe.
class BarClient final : public MenuExtraServer {
  public:
    static constexpr int kTimeout = 5000; ///< milliseconds, including the start of a bar
    static constexpr std::chrono::seconds kHangPause{10};
    /// The status if there is no reply or an invalid one. The reason is logged unless it is the
    /// same as for the previous call.
    static constexpr std::int32_t kNoReply = -609;

    /// @p busAddress is empty for the session bus. The first call connects.
    explicit BarClient(std::string busAddress = {});
    ~BarClient() override;

    std::int32_t getMenuExtra(const std::string& identifier,
                              MenuExtraReference& reference) override;
    std::int32_t addMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                              std::int32_t, std::int32_t, std::int32_t) override;
    std::int32_t removeMenuExtra(MenuExtraReference reference, std::int32_t flags) override;

    // The following operations do not log.

    /// Returns the process identifier of the running bar. Does not start a bar.
    BarReply<std::uint32_t> processIdentifier();
    /// Returns whether the session bus can be reached.
    bool hasBus();
    /// Returns the bar's items, rightmost first.
    BarReply<std::vector<BarItem>> listMenuExtras();
    /// Returns all items that the bar knows, those loaded first.
    BarReply<std::vector<KnownItem>> items();
    /// Clicks an item. Returns whether the item handled the click itself rather than opening or
    /// closing its menu. Fails if the item is not loaded, has no menu, or raises an exception.
    BarReply<bool> click(const std::string& identifier, const Event& event);
    /// Makes the bar save an image of itself and its open menu, if any, as PNG at an absolute path.
    /// Returns whether the image was saved.
    BarReply<bool> snapshot(const std::string& path);
    /// Makes the bar save an image of one item. Fails if the item is not loaded.
    BarReply<bool> snapshotItem(const std::string& identifier, const std::string& path);

    // These return why they failed, human-readable, or an empty string.

    /// Moves an item to the left of those with the same position.
    std::string setPosition(const std::string& identifier, std::int32_t position);
    /// Lets the keyboard select items. Returns when the first one is selected, within two seconds.
    std::string focus();
    /// Enables an item. The bar loads it after it has replied.
    std::string enable(const std::string& identifier);
    /// Unloads an item and disables it, or forgets it if its bundle is missing.
    std::string disable(const std::string& identifier);

  private:
    using Reply = BarReply<QList<QVariant>>;

    Reply call(const char* member, const QList<QVariant>& arguments, const char* signature);
    Reply callLogged(const char* member, const QList<QVariant>& arguments, const char* signature);
    bool isHanging();
    void recordHang();
    template <class Row>
    BarReply<std::vector<Row>> callForRows(const char* member, const char* signature);
    BarReply<bool> callForBool(const char* member, const QList<QVariant>& arguments);

    BusConnection bus_;
    std::mutex mutex_;
    // Guarded by the mutex:
    std::string loggedReason_;
    std::uint32_t hangingProcess_ = 0;
    std::chrono::steady_clock::time_point hangsUntil_;
};

} // namespace platform::qt
