#pragma once

#include "platform/MenuExtraServer.h"
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

/// What the bar said, or why there is nothing, for people.
template <class Value>
struct BarAnswer {
    std::optional<Value> value;
    std::string reason;
    explicit operator bool() const { return value.has_value(); }
};

/// A row of the bar's list of items.
struct BarItem {
    std::string identifier;
    std::string path;
    std::int32_t position = 0;
    double width = 0; ///< points
};

/// The menu bar, asked over the session bus, which starts it when it can and none is running. Needs
/// neither an application object nor an event loop. A call waits kTimeout at most, the first one
/// also for the connection, and gives up at once when there is no bus or nobody to answer. After a
/// bar that hangs has let one call wait in vain, it is not asked for kRest. Any thread.
class BarClient final : public MenuExtraServer {
  public:
    static constexpr int kTimeout = 5000; ///< milliseconds, the start of a bar included
    static constexpr std::chrono::seconds kRest{10};
    /// The status when no bar gives an answer that makes sense. Why is logged, once in a row.
    static constexpr std::int32_t kNoAnswer = -609;

    /// @p busAddress is empty for the session bus. Connects with the first call.
    explicit BarClient(std::string busAddress = {});
    ~BarClient() override;

    std::int32_t getMenuExtra(const std::string& identifier,
                              MenuExtraReference& reference) override;
    std::int32_t addMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                              std::int32_t, std::int32_t, std::int32_t) override;
    std::int32_t removeMenuExtra(MenuExtraReference reference, std::int32_t flags) override;

    // These log nothing.

    /// The process of the bar that is running; none is started.
    BarAnswer<std::uint32_t> processIdentifier();
    /// Whether there is a session bus to find a bar on.
    bool hasBus();
    /// The bar's items from right to left.
    BarAnswer<std::vector<BarItem>> listMenuExtras();
    /// Clicks an item; whether it handled the click itself, rather than open its menu. False too
    /// when there is no such item.
    BarAnswer<bool> click(const std::string& identifier, const Event& event);
    /// Has the bar drawn into a PNG file at an absolute path; whether that was done.
    BarAnswer<bool> snapshot(const std::string& path);

  private:
    using Answer = BarAnswer<QList<QVariant>>;

    Answer call(const char* member, const QList<QVariant>& arguments, const char* signature);
    Answer callLogged(const char* member, const QList<QVariant>& arguments, const char* signature);
    bool isHanging();
    void noteHanging();
    BarAnswer<bool> askYesOrNo(const char* member, const QList<QVariant>& arguments);

    BusConnection bus_;
    std::mutex mutex_;
    // Guarded by the mutex:
    std::string loggedReason_;
    std::uint32_t hangingProcess_ = 0;
    std::chrono::steady_clock::time_point hangsUntil_;
};

} // namespace platform::qt
