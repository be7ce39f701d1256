#include "platform/qt/X11Applications.h"

#include "platform/Log.h"
#include "platform/qt/ApplicationIcons.h"
#include "platform/qt/ApplicationLauncher.h"
#include "platform/qt/X11Clients.h"
#include "platform/qt/X11Connection.h"
#include "platform/runtime/Guard.h"

#include <QFile>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <array>
#include <unistd.h>

namespace platform::qt {
namespace {

constexpr int kCollecting = 50; // milliseconds
constexpr std::size_t kMaximumIcons = 256;
constexpr const char* kPlainIcon = "application-x-executable";

std::string hostName() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

/// Returns the name of the program that a process of this computer runs, or an empty string.
std::string programName(std::int64_t process) {
    QFile file(QString("/proc/%1/comm").arg(process));
    if (process == 0 || !file.open(QIODevice::ReadOnly))
        return {};
    return withValidUtf8(file.readAll().trimmed().toStdString());
}

std::string titleOf(const X11Client& client) {
    return client.name.empty() ? client.plainName : client.name;
}

/// Whether the window is one of those that users tell apart.
bool isListed(const X11Client& client, const std::map<xcb_window_t, const X11Client*>& all) {
    const bool isDialog = client.transientFor != client.window && all.contains(client.transientFor);
    return client.hasOrdinaryType && !client.skipsTaskbar && !isDialog;
}

/// Returns the window that the dialogs around the focus belong to.
xcb_window_t mainWindow(xcb_window_t window, const std::map<xcb_window_t, const X11Client*>& all) {
    for (int depth = 0; depth < 8; ++depth) {
        const auto found = all.find(window);
        if (found == all.end() || isListed(*found->second, all) ||
            !all.contains(found->second->transientFor))
            break;
        window = found->second->transientFor;
    }
    return window;
}

void addWindow(RunningApplication& application, const X11Client& client, bool isActive) {
    application.isActive = application.isActive || isActive;
    application.isHidden = application.isHidden && client.isMinimised;
    application.windows.push_back({.identifier = client.window,
                                   .title = titleOf(client),
                                   .isActive = isActive,
                                   .isMinimised = client.isMinimised,
                                   .needsAttention = client.needsAttention});
}

/// Quotes a value of a startup notification message.
std::string quotedValue(const std::string& text) {
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\')
            result += '\\';
        result += character;
    }
    return result + '"';
}

} // namespace

/// A connection and the events on it.
class X11Applications::Session : platform::NonCopyable {
  public:
    Session(std::unique_ptr<X11Clients> connected, const std::function<void()>& onEvent)
        : clients(std::move(connected)),
          notifier(clients->fileDescriptor(), QSocketNotifier::Read) {
        QObject::connect(&notifier, &QSocketNotifier::activated, onEvent);
    }

    const std::unique_ptr<X11Clients> clients;
    QSocketNotifier notifier;
};

class X11Applications::Observers : platform::NonCopyable {
  public:
    struct Observer {
        std::function<void()> handler;
        std::string owner;
        bool isNew = true; ///< has not been called yet
    };
    enum class Which { All, New };

    /// Called when the last observer has been removed.
    std::function<void()> onEmpty;

    bool empty() const { return all_.empty(); }
    void add(const std::shared_ptr<Observer>& observer) { all_.push_back(observer); }
    void remove(const std::shared_ptr<Observer>& observer) {
        observer->handler = nullptr;
        std::erase(all_, observer);
        if (all_.empty() && onEmpty)
            onEmpty();
    }
    void notify(Which which) const {
        for (const auto& observer : std::vector(all_)) {
            // Copied: the handler may destroy its watch.
            const auto code = observer->handler;
            if (code && (std::exchange(observer->isNew, false) || which == Which::All))
                runGuarded(std::string(observer->owner), code);
        }
    }

  private:
    std::vector<std::shared_ptr<Observer>> all_;
};

X11Applications::X11Applications(std::string display)
    : display_(std::move(display)), observers_(std::make_shared<Observers>()) {
    observers_->onEmpty = [this] { settle(); };
}

X11Applications::~X11Applications() {
    observers_->onEmpty = nullptr;
}

std::unique_ptr<Watch> X11Applications::observe(std::function<void()> handler) {
    struct ObserverWatch final : Watch {
        ObserverWatch(std::shared_ptr<Observers> all, std::function<void()> code)
            : observers(std::move(all)),
              observer(std::make_shared<Observers::Observer>(
                  Observers::Observer{std::move(code), currentOwner()})) {
            observers->add(observer);
        }
        ~ObserverWatch() override { observers->remove(observer); }

        const std::shared_ptr<Observers> observers;
        const std::shared_ptr<Observers::Observer> observer;
    };
    auto watch = std::make_unique<ObserverWatch>(observers_, std::move(handler));
    // Connecting takes a few milliseconds, which an item that is being loaded must not wait for.
    collect();
    return watch;
}

void X11Applications::startTimer(int milliseconds) {
    if (!timer_) {
        timer_ = std::make_unique<QTimer>();
        timer_->setSingleShot(true);
        QObject::connect(timer_.get(), &QTimer::timeout, [this] { report(); });
    }
    timer_->start(milliseconds);
}

/// Returns null, after logging the reason, without an X server.
X11Clients* X11Applications::connect() {
    if (session_)
        return session_->clients.get();
    xcb_connection_t* const toolkit = x11Connection();
    auto clients = display_.empty() && !toolkit ? nullptr : X11Clients::connect(display_, toolkit);
    if (!clients) {
        logOnce("this program is not on an X11 display");
        return nullptr;
    }
    session_ = std::make_unique<Session>(std::move(clients), [this] { collect(); });
    return session_->clients.get();
}

/// More events are expected: handles them together.
void X11Applications::collect() {
    if (session_)
        session_->notifier.setEnabled(false);
    if (!timer_ || !timer_->isActive())
        startTimer(kCollecting);
}

/// Brings the list up to date.
void X11Applications::update() {
    std::vector<RunningApplication> list;
    bool providesList = false;
    if (X11Clients* const clients = connect()) {
        clients->update();
        providesList = clients->hasWindowManager();
        if (!clients->hasWindowManager() && !clients->isBroken())
            logOnce("there is no window manager that follows EWMH");
        list = makeList(*clients);
        std::erase_if(minimised_, [&](auto window) { return !clients->contains(window); });
        forgetChangedIcons(clients->takeChangedIcons());
        if (clients->isBroken())
            session_.reset();
    }
    hasChanged_ = hasChanged_ || list != list_ || providesList != providesList_;
    providesList_ = providesList;
    list_ = std::move(list);
}

void X11Applications::report() {
    if (observers_->empty())
        return session_.reset();
    update();
    if (session_ && session_->clients->hasEvents())
        collect();
    else if (session_)
        session_->notifier.setEnabled(true);
    const bool hasChanged = std::exchange(hasChanged_, false);
    observers_->notify(hasChanged ? Observers::Which::All : Observers::Which::New);
}

/// Follows each use of the session: ends it when control returns to the main loop or, if there are
/// observers, has the next report tell them and handle the events that have already been read.
void X11Applications::settle() {
    if (!session_)
        return;
    if (observers_->empty())
        startTimer(0);
    else if (hasChanged_ || session_->clients->hasEvents())
        collect();
}

std::vector<RunningApplication> X11Applications::running() {
    update();
    settle();
    return list_;
}

std::vector<RunningApplication> X11Applications::makeList(const X11Clients& source) {
    static const std::string host = hostName();
    const std::vector<X11Client> clients = source.clients();
    std::map<xcb_window_t, const X11Client*> all;
    for (const X11Client& client : clients)
        all.emplace(client.window, &client);
    const xcb_window_t active = mainWindow(source.activeWindow(), all);

    std::vector<RunningApplication> list;
    Identities current;
    for (const X11Client& client : clients) {
        if (!isListed(client, all))
            continue;
        const bool isLocal = client.host.empty() || client.host == host;
        const std::int64_t process = isLocal ? client.process : 0;
        const auto& [identifier, name, hasDesktopEntry] = identityOf(client, process, current);
        auto application = std::ranges::find(list, identifier, &RunningApplication::identifier);
        if (application == list.end())
            application = list.insert(list.end(), {.identifier = identifier,
                                                   .name = name.empty() ? titleOf(client) : name,
                                                   .hasDesktopEntry = hasDesktopEntry,
                                                   .process = process,
                                                   .isHidden = true});
        addWindow(*application, client, client.window == active);
    }
    identities_ = std::move(current);
    return list;
}

/// Finds the identity among those of the previous list, or else by reading the desktop entries, and
/// adds it to @p current.
const X11Applications::Identity& X11Applications::identityOf(const X11Client& client,
                                                             std::int64_t process,
                                                             Identities& current) const {
    const bool isUnknown = client.applicationId.empty() && client.instance.empty() &&
                           client.windowClass.empty() && process == 0;
    const IdentityKey key{client.applicationId, client.instance, client.windowClass, process,
                          isUnknown ? client.window : 0};
    if (const auto known = current.find(key); known != current.end())
        return known->second;
    const auto previous = identities_.find(key);
    return current
        .emplace(key, previous == identities_.end() ? identify(client, process) : previous->second)
        .first->second;
}

X11Applications::Identity X11Applications::identify(const X11Client& client,
                                                    std::int64_t process) const {
    const std::string entry =
        entries_.identifierForWindow(client.applicationId, client.instance, client.windowClass);
    if (const auto file = entries_.read(entry))
        return {entry, file->entry.name, true};
    if (!client.windowClass.empty())
        return {client.windowClass, client.windowClass};
    const std::string program = programName(process);
    if (!program.empty())
        return {"process:" + std::to_string(process), program};
    return {"window:" + std::to_string(client.window), {}};
}

const RunningApplication* X11Applications::find(const std::string& identifier) {
    running();
    const auto found = std::ranges::find(list_, identifier, &RunningApplication::identifier);
    return found == list_.end() ? nullptr : &*found;
}

std::optional<DesktopEntry> X11Applications::desktopEntry(const std::string& identifier) {
    auto file = entries_.read(identifier);
    return file ? std::optional(std::move(file->entry)) : std::nullopt;
}

std::shared_ptr<Image> X11Applications::icon(const std::string& identifier, double size) {
    const std::pair key(identifier, size);
    if (const auto known = icons_.find(key); known != icons_.end())
        return known->second;
    if (icons_.size() >= kMaximumIcons)
        icons_.clear();
    auto image = loadIcon(identifier, size);
    settle();
    if (image)
        icons_.emplace(key, image);
    return image;
}

std::shared_ptr<Image> X11Applications::loadIcon(const std::string& identifier, double size) {
    const auto file = entries_.read(identifier);
    auto image = file ? iconNamed(file->entry.icon, size) : nullptr;
    const RunningApplication* const application = image ? nullptr : find(identifier);
    if (application && session_)
        for (const ApplicationWindow& window : application->windows)
            if (!image)
                image = iconFromProperty(
                    session_->clients->icon(static_cast<xcb_window_t>(window.identifier)), size);
    if (!image && (file || application))
        image = iconNamed(kPlainIcon, size);
    return image;
}

void X11Applications::forgetChangedIcons(const std::vector<std::uint32_t>& windows) {
    for (const RunningApplication& application : list_) {
        const bool isChanged =
            std::ranges::any_of(application.windows, [&](const ApplicationWindow& window) {
                return std::ranges::count(windows, window.identifier) > 0;
            });
        if (!isChanged)
            continue;
        hasChanged_ = true;
        std::erase_if(icons_,
                      [&](const auto& icon) { return icon.first.first == application.identifier; });
    }
}

bool X11Applications::activate(const std::string& identifier) {
    const auto* application = find(identifier);
    if (!application)
        return false;
    const auto& windows = application->windows;
    const auto visible = std::ranges::find(windows, false, &ApplicationWindow::isMinimised);
    return activateWindow((visible == windows.end() ? windows.front() : *visible).identifier);
}

bool X11Applications::activateWindow(std::uint64_t window) {
    for (const RunningApplication& application : running())
        for (const ApplicationWindow& candidate : application.windows)
            if (candidate.identifier == window && session_) {
                session_->clients->activate(static_cast<xcb_window_t>(window));
                settle();
                return true;
            }
    return false;
}

void X11Applications::minimise(const RunningApplication& application) {
    for (const ApplicationWindow& window : application.windows)
        if (!window.isMinimised && session_) {
            minimised_.insert(window.identifier);
            session_->clients->minimise(static_cast<xcb_window_t>(window.identifier));
        }
}

bool X11Applications::hide(const std::string& identifier) {
    const auto* application = find(identifier);
    if (application)
        minimise(*application);
    return application;
}

bool X11Applications::hideOthers(const std::string& identifier) {
    if (!find(identifier))
        return false;
    for (const RunningApplication& application : list_)
        if (application.identifier != identifier)
            minimise(application);
    return true;
}

bool X11Applications::show(const std::string& identifier) {
    const auto* application = find(identifier);
    if (!application || !session_)
        return false;
    std::vector<std::uint64_t> minimised, byHide;
    // Restoring may raise a window: the most recently used one comes last.
    const auto& windows = application->windows;
    for (auto window = windows.rbegin(); window != windows.rend(); ++window) {
        if (window->isMinimised)
            minimised.push_back(window->identifier);
        if (minimised_.erase(window->identifier) > 0 && window->isMinimised)
            byHide.push_back(window->identifier);
    }
    for (const std::uint64_t window : byHide.empty() ? minimised : byHide)
        session_->clients->restore(static_cast<xcb_window_t>(window));
    return true;
}

bool X11Applications::quit(const std::string& identifier) {
    const auto* application = find(identifier);
    if (!application || !session_)
        return false;
    for (const ApplicationWindow& window : application->windows)
        session_->clients->requestClose(static_cast<xcb_window_t>(window.identifier));
    settle();
    return true;
}

/// Returns an identifier with the time of the request, which lets the new window take the focus.
/// Announces it if the application has promised to confirm it.
std::string X11Applications::startupToken(const DesktopEntryFile& file) {
    if (display_.empty() && !x11Connection())
        return {};
    X11Clients* const clients = connect();
    if (!clients)
        return {};
    std::string token = "halvex-" + std::to_string(getpid()) + '-' + std::to_string(++launches_) +
                        "-" + hostName() + "_TIME" + std::to_string(clients->serverTime());
    if (file.notifiesStartup)
        clients->broadcastStartup("new: ID=" + quotedValue(token) +
                                  " NAME=" + quotedValue(file.entry.name) +
                                  " SCREEN=0 ICON=" + quotedValue(file.entry.icon) +
                                  " APPLICATION_ID=" + quotedValue(file.entry.path) +
                                  " WMCLASS=" + quotedValue(file.windowClass));
    settle();
    return token;
}

bool X11Applications::launch(const std::string& identifier, const std::vector<std::string>& urls) {
    const auto file = entries_.read(identifier);
    const std::string reason = file ? launchApplication(*file, urls, startupToken(*file))
                                    : "there is no desktop entry with this identifier";
    if (!reason.empty())
        logLine("cannot launch %@: %@", identifier, reason);
    return reason.empty();
}

void X11Applications::logOnce(const char* reason) {
    if (logged_.insert(reason).second)
        logLine("applications are not listed: %@", reason);
}

} // namespace platform::qt
