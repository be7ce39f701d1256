#pragma once

#include "tests/desktop/support/ProgramProcess.h"

#include <cstdint>

namespace test {

constexpr const char* kOwnClock = "com.apple.menuextra.clock";
constexpr const char* kTestExtra = "test.extra";

/// The real menu bar.
class BarProcess : public ProgramProcess {
  public:
    enum class Watcher { None, Started };

    /// Starts the bar. Without a watcher, the bar is one process, which the object follows.
    explicit BarProcess(const QStringList& arguments = {}, const Settings& settings = {},
                        std::shared_ptr<PrivateBus> bus = std::make_shared<PrivateBus>(),
                        Watcher watcher = Watcher::None);

    /// As ProgramProcess.
    void start(const QStringList& arguments = {});
    void launch(const QStringList& arguments = {});

    /// Copies a bundle into the user's "Menu Extras" folder, replacing one of that name, and
    /// returns the copy's path.
    std::string install(const std::string& bundle) const;

    // The D-Bus interface.
    std::uint32_t reference(const QString& identifier) const; ///< 0 if not loaded
    int add(const std::string& bundle, int position = 999) const;
    /// Waits until the item is loaded.
    bool hasLoaded(const QString& identifier) const;
    /// Adds the bundle and waits until its item is loaded.
    bool loads(const std::string& bundle, const QString& identifier, int position = 999) const;
    int remove(const QString& identifier) const;
    bool click(const QString& identifier) const;
    std::vector<std::string> identifiers() const; ///< rightmost first

  private:
    QStringList withOptions(const QStringList& arguments) const;

    const Watcher watcher_;
};

} // namespace test
