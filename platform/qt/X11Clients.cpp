#include "platform/qt/X11Clients.h"

#include "platform/qt/DesktopEntryFile.h"
#include "platform/qt/X11Connection.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <set>
#include <span>
#include <unistd.h>
#include <utility>

namespace platform::qt {
namespace {

enum AtomIndex : std::size_t {
    ActiveWindow,
    ClientList,
    ClientListStacking,
    SupportingCheck,
    CloseWindow,
    Icon,
    ChangeState,
    StateHidden,
    StateSkipTaskbar,
    StateAttention,
    StartupBegin,
    StartupRest,
    TypeNormal,
    TypeDialog,
    FirstOtherType,
    kAtomCount = FirstOtherType + 12
};

constexpr std::array<std::string_view, kAtomCount> kAtomNames{
    "_NET_ACTIVE_WINDOW",
    "_NET_CLIENT_LIST",
    "_NET_CLIENT_LIST_STACKING",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_CLOSE_WINDOW",
    "_NET_WM_ICON",
    "WM_CHANGE_STATE",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_STATE_SKIP_TASKBAR",
    "_NET_WM_STATE_DEMANDS_ATTENTION",
    "_NET_STARTUP_INFO_BEGIN",
    "_NET_STARTUP_INFO",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_NET_WM_WINDOW_TYPE_DIALOG",
    "_NET_WM_WINDOW_TYPE_DESKTOP",
    "_NET_WM_WINDOW_TYPE_DOCK",
    "_NET_WM_WINDOW_TYPE_TOOLBAR",
    "_NET_WM_WINDOW_TYPE_MENU",
    "_NET_WM_WINDOW_TYPE_UTILITY",
    "_NET_WM_WINDOW_TYPE_SPLASH",
    "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
    "_NET_WM_WINDOW_TYPE_POPUP_MENU",
    "_NET_WM_WINDOW_TYPE_TOOLTIP",
    "_NET_WM_WINDOW_TYPE_NOTIFICATION",
    "_NET_WM_WINDOW_TYPE_COMBO",
    "_NET_WM_WINDOW_TYPE_DND",
};

/// Of windows in a list, and of other short lists. Longer ones are cut.
constexpr std::uint32_t kMaximumWords = 4096;
constexpr std::uint32_t kMaximumIconWords = 1024 * 1024;
constexpr std::uint32_t kFromPager = 2; ///< a request by the user
constexpr std::uint32_t kIconic = 3;

using PropertyReply = std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)>;

/// The value of a property, which may have any type and size.
class Value {
  public:
    explicit Value(const xcb_get_property_reply_t* reply) : reply_(reply) {}

    std::span<const std::uint32_t> numbers() const {
        if (!reply_ || reply_->format != 32)
            return {};
        return {static_cast<const std::uint32_t*>(xcb_get_property_value(reply_)),
                reply_->value_len};
    }
    std::uint32_t number() const { return numbers().empty() ? 0 : numbers().front(); }
    bool contains(xcb_atom_t atom) const { return std::ranges::count(numbers(), atom) > 0; }

    /// Returns the texts between null bytes.
    std::vector<std::string> texts() const {
        std::vector<std::string> texts;
        for (std::string_view rest = bytes(); !rest.empty();) {
            const auto end = std::min(rest.find('\0'), rest.size());
            texts.push_back(text(rest.substr(0, end)));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        return texts;
    }
    std::string text() const { return texts().empty() ? std::string() : texts().front(); }

  private:
    std::string_view bytes() const {
        if (!reply_ || reply_->format != 8)
            return {};
        return {static_cast<const char*>(xcb_get_property_value(reply_)), reply_->value_len};
    }
    std::string text(std::string_view bytes) const {
        const bool isLatin1 = reply_->type == XCB_ATOM_STRING;
        std::string valid = withValidUtf8(bytes);
        // Many programs set UTF-8 under this type.
        if (!isLatin1 || valid == bytes)
            return valid;
        std::string converted;
        for (const char byte : bytes) {
            const auto code = static_cast<unsigned char>(byte);
            if (code < 0x80) {
                converted += byte;
            } else {
                converted += static_cast<char>(0xC0 | (code >> 6));
                converted += static_cast<char>(0x80 | (code & 0x3F));
            }
        }
        return converted;
    }

    const xcb_get_property_reply_t* reply_;
};

using Atoms = std::vector<xcb_atom_t>;

/// What the list needs to know of each window.
struct Rule {
    std::string_view property;
    std::uint32_t words; ///< to read at most
    void (*apply)(X11Client& client, const Value& value, const Atoms& atoms);
};

void applyState(X11Client& client, const Value& value, const Atoms& atoms) {
    client.isMinimised = value.contains(atoms[StateHidden]);
    client.skipsTaskbar = value.contains(atoms[StateSkipTaskbar]);
    client.needsAttention = value.contains(atoms[StateAttention]);
}

/// Programs list several types, the most specific one first, some of which are their own.
void applyType(X11Client& client, const Value& value, const Atoms& atoms) {
    const auto types = std::span(atoms).subspan(TypeNormal, kAtomCount - TypeNormal);
    const auto numbers = value.numbers();
    const auto type = std::ranges::find_first_of(numbers, types);
    client.hasOrdinaryType =
        type == numbers.end() || *type == atoms[TypeNormal] || *type == atoms[TypeDialog];
}

void applyClass(X11Client& client, const Value& value, const Atoms&) {
    const auto texts = value.texts();
    client.instance = texts.empty() ? "" : texts[0];
    client.windowClass = texts.size() < 2 ? "" : texts[1];
}

void applyApplicationId(X11Client& client, const Value& value, const Atoms&) {
    constexpr std::string_view kExtension = ".desktop";
    std::string text = value.text();
    if (text.ends_with(kExtension))
        text.resize(text.size() - kExtension.size());
    // Two properties set this, and a window rarely has both.
    if (!text.empty())
        client.applicationId = std::move(text);
}

// At most 32: X11Client::unread has a bit for each.
constexpr std::array kRules{
    Rule{"_NET_WM_NAME", 1024,
         [](auto& client, auto& value, auto&) { client.name = value.text(); }},
    Rule{"WM_NAME", 1024,
         [](auto& client, auto& value, auto&) { client.plainName = value.text(); }},
    Rule{"WM_CLASS", 256, applyClass},
    Rule{"_GTK_APPLICATION_ID", 256, applyApplicationId},
    Rule{"_KDE_NET_WM_DESKTOP_FILE", 256, applyApplicationId},
    Rule{"WM_CLIENT_MACHINE", 256,
         [](auto& client, auto& value, auto&) { client.host = value.text(); }},
    Rule{"_NET_WM_PID", 1,
         [](auto& client, auto& value, auto&) { client.process = value.number(); }},
    Rule{"WM_TRANSIENT_FOR", 1,
         [](auto& client, auto& value, auto&) { client.transientFor = value.number(); }},
    Rule{"_NET_WM_WINDOW_TYPE", 64, applyType},
    Rule{"_NET_WM_STATE", 64, applyState},
};

constexpr std::uint32_t kAllUnread = (1U << kRules.size()) - 1;

/// Returns the reply, or null if the window does not exist any more.
PropertyReply replyOf(xcb_connection_t* connection, xcb_get_property_cookie_t cookie) {
    xcb_generic_error_t* error = nullptr;
    auto reply = ownedReply(xcb_get_property_reply(connection, cookie, &error));
    std::free(error);
    return reply;
}

} // namespace

std::unique_ptr<X11Clients> X11Clients::connect(const std::string& display,
                                                xcb_connection_t* toolkit) {
    int screen = 0;
    xcb_connection_t* const connection =
        xcb_connect(display.empty() ? nullptr : display.c_str(), &screen);
    if (!xcb_connection_has_error(connection))
        return std::unique_ptr<X11Clients>(new X11Clients(connection, screen, toolkit));
    xcb_disconnect(connection);
    return nullptr;
}

X11Clients::X11Clients(xcb_connection_t* connection, int screen, xcb_connection_t* toolkit)
    : connection_(connection), self_(xcb_generate_id(connection)) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screen > 0 && screens.rem > 1; --screen)
        xcb_screen_next(&screens);
    root_ = screens.data->root;
    if (toolkit) {
        toolkitBase_ = xcb_get_setup(toolkit)->resource_id_base;
        toolkitMask_ = xcb_get_setup(toolkit)->resource_id_mask;
    }
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, 0, self_, root_, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    xcb_change_window_attributes(connection, root_, XCB_CW_EVENT_MASK, &events);
    internAtoms();
}

X11Clients::~X11Clients() {
    xcb_disconnect(connection_);
}

void X11Clients::internAtoms() {
    std::vector<xcb_intern_atom_cookie_t> cookies;
    const auto request = [&](std::string_view name) {
        cookies.push_back(
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    };
    std::ranges::for_each(kAtomNames, request);
    for (const Rule& rule : kRules)
        request(rule.property);
    for (const auto cookie : cookies) {
        const auto reply = ownedReply(xcb_intern_atom_reply(connection_, cookie, nullptr));
        atoms_.push_back(reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE});
    }
}

int X11Clients::fileDescriptor() const {
    return xcb_get_file_descriptor(connection_);
}

bool X11Clients::isBroken() const {
    return xcb_connection_has_error(connection_) != 0;
}

void X11Clients::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        time_ = change.time;
        propertyChanged(change.window, change.atom);
        break;
    }
    case XCB_DESTROY_NOTIFY: // of the window manager's window
        isRootUnread_ = true;
        break;
    default: // errors of windows that have been closed
        break;
    }
}

void X11Clients::propertyChanged(xcb_window_t window, xcb_atom_t property) {
    if (window == root_) {
        isRootUnread_ = isRootUnread_ || property == atoms_[ActiveWindow] ||
                        property == atoms_[ClientList] || property == atoms_[ClientListStacking] ||
                        property == atoms_[SupportingCheck];
        return;
    }
    const auto client = clients_.find(window);
    if (client == clients_.end())
        return;
    if (property == atoms_[Icon])
        changedIcons_.push_back(window);
    const auto rules = std::span(atoms_).subspan(kAtomCount);
    const auto rule = std::ranges::find(rules, property);
    if (rule != rules.end())
        client->second.unread |= 1U << std::distance(rules.begin(), rule);
}

void X11Clients::readEvents(xcb_generic_event_t* (*next)(xcb_connection_t*)) {
    while (const auto event = ownedReply(next(connection_))) {
        handle(*event);
        hasEvents_ = true;
    }
}

void X11Clients::update() {
    readEvents(xcb_poll_for_event);
    if (isRootUnread_)
        readRoot();
    readClients();
    setActive(active_);
    hasEvents_ = false;
}

bool X11Clients::hasEvents() {
    readEvents(xcb_poll_for_queued_event);
    return hasEvents_;
}

void X11Clients::readRoot() {
    isRootUnread_ = false;
    const auto request = [&](AtomIndex property) {
        return xcb_get_property(connection_, 0, root_, atoms_[property], XCB_ATOM_WINDOW, 0,
                                kMaximumWords);
    };
    const std::array cookies{request(SupportingCheck), request(ActiveWindow), request(ClientList),
                             request(ClientListStacking)};
    std::array<std::vector<std::uint32_t>, cookies.size()> values;
    for (std::size_t i = 0; i < cookies.size(); ++i) {
        const auto reply = replyOf(connection_, cookies[i]);
        const auto numbers = Value(reply.get()).numbers();
        values[i].assign(numbers.begin(), numbers.end());
    }
    auto& [check, active, list, stacking] = values;
    manager_ = check.empty() ? xcb_window_t{XCB_WINDOW_NONE} : validManager(check.front());
    // Without a window manager, the lists are left over from the previous one. Its successor will
    // find the same windows, so they are not forgotten.
    if (!hasWindowManager())
        return;
    // Some window managers do not stack minimised windows.
    std::set<xcb_window_t> stacked(stacking.begin(), stacking.end());
    std::erase_if(list, [&](xcb_window_t window) { return !stacked.insert(window).second; });
    list.insert(list.end(), stacking.begin(), stacking.end());
    setStacking(list);
    active_ = active.empty() ? xcb_window_t{XCB_WINDOW_NONE} : active.front();
}

/// Returns @p candidate if it is the window of a running window manager, and watches it.
xcb_window_t X11Clients::validManager(xcb_window_t candidate) {
    // The mask replaces one that may have been set before.
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    if (candidate != manager_)
        xcb_change_window_attributes(connection_, candidate, XCB_CW_EVENT_MASK, &events);
    const auto reply =
        replyOf(connection_, xcb_get_property(connection_, 0, candidate, atoms_[SupportingCheck],
                                              XCB_ATOM_WINDOW, 0, 1));
    return Value(reply.get()).number() == candidate ? candidate : xcb_window_t{XCB_WINDOW_NONE};
}

void X11Clients::setStacking(const std::vector<std::uint32_t>& stacking) {
    stacking_ = stacking;
    std::set<xcb_window_t> listed(stacking.begin(), stacking.end());
    listed.erase(manager_); // has other events
    std::erase_if(clients_, [&](const auto& client) { return !listed.contains(client.first); });
    for (const xcb_window_t window : listed) {
        const auto [client, isNew] = clients_.try_emplace(window, X11Client{.window = window});
        if (!isNew)
            continue;
        client->second.unread = kAllUnread;
        // Before its properties are read, so that no change is missed.
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &events);
    }
}

void X11Clients::readClients() {
    std::vector<std::pair<X11Client*, std::vector<xcb_get_property_cookie_t>>> requests;
    for (auto& [window, client] : clients_) {
        if (client.unread == 0)
            continue;
        auto& cookies = requests.emplace_back(&client, 0).second;
        for (std::size_t i = 0; i < kRules.size(); ++i)
            if (client.unread & (1U << i))
                cookies.push_back(xcb_get_property(connection_, 0, window, atoms_[kAtomCount + i],
                                                   XCB_ATOM_ANY, 0, kRules[i].words));
    }
    std::vector<xcb_window_t> closed;
    for (auto& [client, cookies] : requests)
        if (!readReplies(*client, cookies))
            closed.push_back(client->window);
    for (const xcb_window_t window : closed)
        clients_.erase(window);
}

/// Returns false if the window has been closed.
bool X11Clients::readReplies(X11Client& client,
                             const std::vector<xcb_get_property_cookie_t>& cookies) {
    auto cookie = cookies.begin();
    bool exists = true;
    for (std::size_t i = 0; i < kRules.size(); ++i) {
        if (!(client.unread & (1U << i)))
            continue;
        const auto reply = replyOf(connection_, *cookie++);
        exists = exists && reply;
        kRules[i].apply(client, Value(reply.get()), atoms_);
    }
    client.unread = 0;
    return exists;
}

void X11Clients::setActive(xcb_window_t window) {
    auto client = clients_.find(window);
    // A dialog counts as a use of its main window too.
    for (int depth = 0; client != clients_.end() && depth < 8; ++depth) {
        if (client->second.lastUse == 0 || client->second.lastUse < uses_)
            client->second.lastUse = ++uses_;
        client = clients_.find(client->second.transientFor);
    }
}

bool X11Clients::isOwn(const X11Client& client) const {
    return client.process == static_cast<std::uint32_t>(getpid()) ||
           (toolkitMask_ != 0 && (client.window & ~toolkitMask_) == toolkitBase_);
}

std::vector<X11Client> X11Clients::clients() const {
    std::vector<X11Client> clients;
    if (!hasWindowManager())
        return clients;
    for (auto window = stacking_.rbegin(); window != stacking_.rend(); ++window)
        if (const auto client = clients_.find(*window);
            client != clients_.end() && !isOwn(client->second))
            clients.push_back(client->second);
    std::ranges::stable_sort(clients, std::greater(), &X11Client::lastUse);
    return clients;
}

std::vector<xcb_window_t> X11Clients::takeChangedIcons() {
    return std::exchange(changedIcons_, {});
}

std::vector<std::uint32_t> X11Clients::icon(xcb_window_t window) const {
    const auto reply =
        replyOf(connection_, xcb_get_property(connection_, 0, window, atoms_[Icon],
                                              XCB_ATOM_CARDINAL, 0, kMaximumIconWords));
    const auto numbers = Value(reply.get()).numbers();
    return {numbers.begin(), numbers.end()};
}

void X11Clients::sendToRoot(xcb_window_t window, xcb_atom_t type,
                            const std::vector<std::uint32_t>& data) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    std::ranges::copy(data, std::begin(event.data.data32));
    xcb_send_event(connection_, 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection_);
}

void X11Clients::activate(xcb_window_t window) {
    sendToRoot(window, atoms_[ActiveWindow], {kFromPager, serverTime(), active_});
}

void X11Clients::minimise(xcb_window_t window) {
    sendToRoot(window, atoms_[ChangeState], {kIconic});
}

void X11Clients::restore(xcb_window_t window) {
    xcb_map_window(connection_, window); // which the window manager intercepts
    xcb_flush(connection_);
}

void X11Clients::requestClose(xcb_window_t window) {
    sendToRoot(window, atoms_[CloseWindow], {serverTime(), kFromPager});
}

std::uint32_t X11Clients::serverTime() {
    // A change of a property has the server's time, even if it adds nothing.
    xcb_change_property(connection_, XCB_PROP_MODE_APPEND, self_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING,
                        8, 0, nullptr);
    xcb_flush(connection_);
    while (const auto event = ownedReply(xcb_wait_for_event(connection_))) {
        handle(*event);
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY && change.window == self_)
            return time_;
        hasEvents_ = true;
    }
    return 0;
}

void X11Clients::broadcastStartup(std::string_view message) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 8;
    event.window = self_;
    // The null byte at the end is part of the message.
    const std::string bytes = std::string(message) + '\0';
    constexpr std::size_t kPart = sizeof event.data.data8;
    for (std::size_t start = 0; start < bytes.size(); start += kPart) {
        event.type = atoms_[start == 0 ? StartupBegin : StartupRest];
        std::memset(event.data.data8, 0, kPart);
        std::memcpy(event.data.data8, bytes.data() + start, std::min(kPart, bytes.size() - start));
        xcb_send_event(connection_, 0, root_, XCB_EVENT_MASK_PROPERTY_CHANGE,
                       reinterpret_cast<const char*>(&event));
    }
    xcb_flush(connection_);
}

} // namespace platform::qt
