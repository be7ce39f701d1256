#include "identifiers/ExportedIdentifiers.h"
#include "paths/ThemeFolders.h"
#include "platform/Appearance.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/Preferences.h"
#include "platform/base/PathStrings.h"
#include "platform/runtime/Guard.h"
#include "platform/runtime/HandlerList.h"
#include "ui/Theme.h"
#include "ui/ThemeFile.h"

#include <algorithm>
#include <set>
#include <utility>

using namespace platform;

namespace ui {
namespace {

constexpr const char* kThemeKey = "Theme";

std::string chosenName() {
    return preferences(appHalvex4Prefs).string(kThemeKey);
}

/// Returns the folder of the theme @p name, or where the user would create it.
std::string folderOf(const std::string& name) {
    const std::vector<std::string> folders = paths::themeFolders();
    for (const std::string& parent : folders) {
        std::string folder = appendingPathComponent(parent, name);
        if (fileManager().isFile(appendingPathComponent(folder, ThemeFile::kName)))
            return folder;
    }
    return appendingPathComponent(folders.front(), name);
}

/// Logs that the theme @p name cannot be used, unless that was the last failure. An empty reason
/// allows the next failure to be logged.
void logFailure(const std::string& name, const std::string& reason) {
    static std::string logged;
    const std::string failure = reason.empty() ? "" : name + ": " + reason;
    if (failure != std::exchange(logged, failure) && !failure.empty())
        logLine("cannot use the theme %@: %@", name, reason);
}

std::shared_ptr<const Theme> readTheme(const std::string& name) {
    std::string reason;
    std::shared_ptr<const Theme> theme;
    std::string shown = name;
    if (name.empty()) {
        theme = ThemeFile::defaultLook();
    } else if (!ThemeFile::isName(name)) {
        reason = "it is not the name of a folder";
    } else {
        const std::string folder = folderOf(name);
        shown = appendingPathComponent(folder, ThemeFile::kName);
        theme = ThemeFile::read(folder, reason);
    }
    logFailure(shown, reason);
    return theme ? theme : ThemeFile::defaultLook();
}

/// The theme and its watches. Exists while there are handlers.
class SharedTheme : NonCopyable {
  public:
    /// Returns the instance that all handlers share, or null.
    static std::shared_ptr<SharedTheme> existing() { return instance().lock(); }
    static std::shared_ptr<SharedTheme> obtain() {
        auto shared = existing();
        if (!shared) {
            shared = std::make_shared<SharedTheme>();
            instance() = shared;
        }
        return shared;
    }

    SharedTheme() {
        // The item that happens to be the first does not own the watches.
        runGuarded({}, [this] {
            preferencesWatch_ = preferences_.onChange([this](const auto& keys) {
                if (std::ranges::find(keys, kThemeKey) != keys.end())
                    reload();
            });
        });
        read();
    }

    const std::shared_ptr<const Theme>& theme() const { return theme_; }
    std::unique_ptr<Watch> add(std::function<void()> handler) {
        return handlers_.add(std::move(handler));
    }

  private:
    static std::weak_ptr<SharedTheme>& instance() {
        static std::weak_ptr<SharedTheme> shared;
        return shared;
    }

    void reload() {
        read();
        handlers_.call();
    }

    void read() {
        const std::string name = chosenName();
        theme_ = readTheme(name);
        fileWatch_.reset();
        appearanceWatch_.reset();
        if (!ThemeFile::isName(name))
            return;
        runGuarded({}, [&] {
            const auto file = appendingPathComponent(folderOf(name), ThemeFile::kName);
            fileWatch_ = fileManager().watchFile(file, [this] { reload(); });
            appearanceWatch_ = appearance().onChange([this] { handlers_.call(); });
        });
    }

    Preferences preferences_ = preferences(appHalvex4Prefs);
    std::shared_ptr<const Theme> theme_;
    HandlerList<> handlers_;
    std::unique_ptr<Watch> preferencesWatch_;
    std::unique_ptr<Watch> fileWatch_;
    std::unique_ptr<Watch> appearanceWatch_;
};

/// A handler. Keeps the shared theme alive.
class Registration final : public Watch {
  public:
    Registration(std::shared_ptr<SharedTheme> shared, std::unique_ptr<Watch> handler)
        : shared_(std::move(shared)), handler_(std::move(handler)) {}

  private:
    std::shared_ptr<SharedTheme> shared_;
    std::unique_ptr<Watch> handler_; // destroyed first
};

} // namespace

std::shared_ptr<const Theme> currentTheme() {
    return guardedOperation(
        [] {
            const auto shared = SharedTheme::existing();
            return shared ? shared->theme() : readTheme(chosenName());
        },
        ThemeFile::defaultLook());
}

std::unique_ptr<Watch> onThemeChange(std::function<void()> handler) {
    auto shared = SharedTheme::obtain();
    auto watch = shared->add(std::move(handler));
    return std::make_unique<Registration>(std::move(shared), std::move(watch));
}

std::vector<std::string> themeNames() {
    return guardedOperation([] {
        std::set<std::string> names;
        for (const std::string& parent : paths::themeFolders())
            for (const std::string& name :
                 fileManager().contentsOfDirectory(parent).value_or(std::vector<std::string>()))
                if (ThemeFile::isName(name) &&
                    fileManager().isFile(appendingPathComponent(
                        appendingPathComponent(parent, name), ThemeFile::kName)))
                    names.insert(name);
        return std::vector<std::string>(names.begin(), names.end());
    });
}

} // namespace ui
