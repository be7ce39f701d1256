// Watches the top rows of the X screen and prints when they change.
//
//     screen-watch prepare
//         Paints the screen in a colour that no bar uses, and sets the number of desktops to one,
//         as a window manager would, because some bars wait for this.
//
//     screen-watch start LIMIT-MS COMMAND [ARGUMENT...]
//         Starts COMMAND and prints three times in microseconds from just before its exec: until
//         its bar is mapped, until any pixel of the top rows is painted, and until text is drawn
//         there. Then stops COMMAND and waits until the rows are empty again.
//
//     screen-watch change LIMIT-MS COMMAND [ARGUMENT...]
//         Runs COMMAND until it exits and prints the microseconds from just before its exec until
//         the first change of the rows.
//
//     screen-watch ticks SECONDS
//         Prints, for each second of the wall clock in which the rows changed, the microseconds
//         from the second's beginning to the first change.
//
// The program sleeps until the X server reports drawing, so it hardly affects what it measures.
// COMMAND's output goes to standard error. If the expected change does not happen, the program
// prints an error and exits with 1.

#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

/// A colour that no bar paints. Pixels of this colour have not been painted.
constexpr uint32_t kBareColour = 0x5a2d7c;
/// The top rows that are watched, enough for the tallest bar.
constexpr uint16_t kRows = 32;
/// A window narrower than this (pixels) is a helper window, not a bar.
constexpr uint16_t kBarWidth = 400;
/// Rows with at least this many horizontal changes of colour contain text. A border, a vertical
/// gradient and the ends of a bar have fewer, "00:00" has more.
constexpr int kTextEdges = 40;

template <class T>
struct FreeDeleter {
    void operator()(T* pointer) const { std::free(pointer); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter<T>>;

microseconds now(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::duration_cast<microseconds>(std::chrono::seconds(time.tv_sec) +
                                                    std::chrono::nanoseconds(time.tv_nsec));
}

microseconds monotonic() {
    return now(CLOCK_MONOTONIC);
}

using Pixels = std::vector<uint32_t>;

/// The top rows of the X screen and the events that report changes there. Throws std::runtime_error
/// if the server cannot be reached or lacks a feature.
class Screen {
  public:
    struct Change {
        microseconds when{};
        bool barMapped = false;
        bool drawn = false;
    };

    Screen() : connection_(xcb_connect(nullptr, nullptr), &xcb_disconnect) {
        if (xcb_connection_has_error(connection_.get()) != 0)
            throw std::runtime_error("no X display");
        screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
        listenToRoot();
        watchDrawing();
    }

    void prepare() {
        xcb_change_window_attributes(connection_.get(), screen_->root, XCB_CW_BACK_PIXEL,
                                     &kBareColour);
        xcb_clear_area(connection_.get(), 0, screen_->root, 0, 0, 0, 0);
        constexpr std::string_view name = "_NET_NUMBER_OF_DESKTOPS";
        constexpr uint32_t count = 1;
        Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
            connection_.get(),
            xcb_intern_atom(connection_.get(), 0, static_cast<uint16_t>(name.size()), name.data()),
            nullptr));
        if (!atom)
            throw std::runtime_error("the X server closed the connection");
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, screen_->root, atom->atom,
                            XCB_ATOM_CARDINAL, 32, 1, &count);
        topRows(); // waits until the server has processed the requests
    }

    uint16_t width() const { return screen_->width_in_pixels; }

    /// Waits for the next event. Returns std::nullopt if `deadline` (monotonic) passes first.
    std::optional<Change> wait(microseconds deadline) {
        while (true) {
            Reply<xcb_generic_event_t> event(xcb_poll_for_event(connection_.get()));
            if (event)
                return changeOf(*event);
            if (xcb_connection_has_error(connection_.get()) != 0)
                throw std::runtime_error("the X server closed the connection");
            const auto left = deadline - monotonic();
            if (left <= 0us)
                return std::nullopt;
            pollfd waiting{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
            poll(&waiting, 1, static_cast<int>(left / 1ms) + 1);
        }
    }

    /// Returns the watched rows as 0xRRGGBB. Drawing after this call causes another event.
    Pixels topRows() {
        xcb_damage_subtract(connection_.get(), damage_, XCB_NONE, XCB_NONE);
        Reply<xcb_get_image_reply_t> reply(
            xcb_get_image_reply(connection_.get(),
                                xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                              screen_->root, 0, 0, width(), kRows, ~0U),
                                nullptr));
        Pixels pixels(static_cast<size_t>(width()) * kRows);
        const size_t size = pixels.size() * sizeof(uint32_t);
        if (!reply || static_cast<size_t>(xcb_get_image_data_length(reply.get())) != size)
            throw std::runtime_error("the screen cannot be read (24 bits of colour are needed)");
        std::memcpy(pixels.data(), xcb_get_image_data(reply.get()), size);
        for (uint32_t& pixel : pixels)
            pixel &= 0xffffff;
        return pixels;
    }

  private:
    void listenToRoot() {
        const uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_.get(), screen_->root, XCB_CW_EVENT_MASK, &events);
    }

    void watchDrawing() {
        const auto* extension = xcb_get_extension_data(connection_.get(), &xcb_damage_id);
        if (extension == nullptr || extension->present == 0)
            throw std::runtime_error("the X server has no DAMAGE extension");
        damageEvent_ = static_cast<uint8_t>(extension->first_event + XCB_DAMAGE_NOTIFY);
        Reply<xcb_damage_query_version_reply_t> version(xcb_damage_query_version_reply(
            connection_.get(), xcb_damage_query_version(connection_.get(), 1, 1), nullptr));
        damage_ = xcb_generate_id(connection_.get());
        xcb_damage_create(connection_.get(), damage_, screen_->root,
                          XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
        xcb_flush(connection_.get());
    }

    Change changeOf(const xcb_generic_event_t& event) {
        Change change{.when = monotonic()};
        const uint8_t type = event.response_type & 0x7f;
        change.drawn = type == damageEvent_;
        if (type == XCB_MAP_NOTIFY)
            change.barMapped = isBar(reinterpret_cast<const xcb_map_notify_event_t&>(event).window);
        return change;
    }

    bool isBar(xcb_window_t window) {
        Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(
            connection_.get(), xcb_get_geometry(connection_.get(), window), nullptr));
        return geometry && geometry->width >= kBarWidth && geometry->y < kRows;
    }

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
    xcb_screen_t* screen_ = nullptr;
    xcb_damage_damage_t damage_ = XCB_NONE;
    uint8_t damageEvent_ = 0;
};

bool isBare(const Pixels& pixels) {
    return std::ranges::all_of(pixels, [](uint32_t pixel) { return pixel == kBareColour; });
}

bool showsText(const Pixels& pixels, uint16_t width) {
    int edges = 0;
    for (size_t at = 1; at < pixels.size(); ++at) {
        const uint32_t left = pixels[at - 1];
        const uint32_t right = pixels[at];
        if (at % width != 0 && left != right && left != kBareColour && right != kBareColour)
            ++edges;
    }
    return edges >= kTextEdges;
}

/// A command in its own process group. Destroying the object terminates the group.
class Command {
  public:
    explicit Command(std::span<char*> words) {
        prctl(PR_SET_CHILD_SUBREAPER, 1);
        void* page = mmap(nullptr, sizeof(microseconds), PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (page == MAP_FAILED)
            throw std::runtime_error("out of memory");
        started_ = new (page) microseconds{};
        pid_ = fork();
        if (pid_ < 0)
            throw std::runtime_error("fork failed");
        if (pid_ == 0)
            become(words);
    }
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    ~Command() {
        end();
        munmap(started_, sizeof(microseconds));
    }

    /// Waits until the command exits.
    void join() const { waitpid(pid_, nullptr, 0); }

    /// Returns the monotonic time just before exec. Valid once the command has drawn something.
    microseconds started() const { return *started_; }

  private:
    [[noreturn]] void become(std::span<char*> words) {
        setpgid(0, 0);
        dup2(STDERR_FILENO, STDOUT_FILENO);
        *started_ = monotonic();
        execvp(words.front(), words.data());
        std::perror(words.front());
        _exit(127);
    }

    void end() {
        setpgid(pid_, pid_);
        kill(-pid_, SIGTERM);
        for (auto waited = 0ms; !allGone() && waited < 3s; waited += 2ms) {
            if (waited == 2s)
                kill(-pid_, SIGKILL);
            std::this_thread::sleep_for(2ms);
        }
    }

    static bool allGone() {
        while (true) {
            const pid_t reaped = waitpid(-1, nullptr, WNOHANG);
            if (reaped <= 0)
                return reaped < 0;
        }
    }

    microseconds* started_;
    pid_t pid_;
};

void waitUntilBare(Screen& screen) {
    const auto deadline = monotonic() + 3s;
    while (!isBare(screen.topRows()))
        if (!screen.wait(deadline))
            throw std::runtime_error("another window covers the top of the screen");
}

struct Start {
    std::optional<microseconds> mapped, painted, text;
};

Start watchStart(Screen& screen, const Command& command, microseconds deadline) {
    Start start;
    while (!start.text) {
        const auto change = screen.wait(deadline);
        if (!change)
            return start;
        const auto since = change->when - command.started();
        if (change->barMapped && !start.mapped)
            start.mapped = since;
        if (!change->drawn)
            continue;
        const Pixels rows = screen.topRows();
        if (!start.painted && !isBare(rows))
            start.painted = since;
        if (showsText(rows, screen.width()))
            start.text = since;
    }
    return start;
}

int measureStart(std::chrono::milliseconds limit, std::span<char*> words) {
    Screen screen;
    waitUntilBare(screen);
    Start start;
    {
        const Command command(words);
        start = watchStart(screen, command, monotonic() + limit);
        // A bar that is stopped while it starts may leave state that affects the next start.
        std::this_thread::sleep_for(150ms);
    }
    waitUntilBare(screen);
    if (!start.mapped || !start.text) {
        std::fprintf(stderr, "screen-watch: %s within %lld ms\n",
                     start.mapped ? "no text" : "no bar was mapped",
                     static_cast<long long>(limit.count()));
        return 1;
    }
    std::printf("%lld %lld %lld\n", static_cast<long long>(start.mapped->count()),
                static_cast<long long>(start.painted->count()),
                static_cast<long long>(start.text->count()));
    return 0;
}

int measureChange(std::chrono::milliseconds limit, std::span<char*> words) {
    Screen screen;
    const Pixels shown = screen.topRows();
    const Command command(words);
    const auto deadline = monotonic() + limit;
    while (const auto change = screen.wait(deadline)) {
        if (!change->drawn || screen.topRows() == shown)
            continue;
        std::printf("%lld\n", static_cast<long long>((change->when - command.started()).count()));
        command.join();
        return 0;
    }
    std::fprintf(stderr, "screen-watch: nothing changed on the screen\n");
    return 1;
}

int measureTicks(std::chrono::seconds length) {
    Screen screen;
    Pixels shown = screen.topRows();
    auto lastSecond = std::chrono::floor<std::chrono::seconds>(now(CLOCK_REALTIME));
    const auto deadline = monotonic() + length;
    int ticks = 0;
    while (const auto change = screen.wait(deadline)) {
        const auto wall = now(CLOCK_REALTIME) - (monotonic() - change->when);
        Pixels rows = screen.topRows();
        const auto second = std::chrono::floor<std::chrono::seconds>(wall);
        if (rows == shown)
            continue;
        shown = std::move(rows);
        if (second == lastSecond)
            continue;
        lastSecond = second;
        ++ticks;
        std::printf("%lld\n", static_cast<long long>((wall - second).count()));
    }
    if (ticks == 0)
        std::fprintf(stderr, "screen-watch: nothing changed on the screen\n");
    return ticks == 0 ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::span<char*> words(argv, static_cast<size_t>(argc));
    try {
        if (argc == 2 && std::string_view(argv[1]) == "prepare") {
            Screen().prepare();
            return 0;
        }
        if (argc >= 4 && std::string_view(argv[1]) == "start")
            return measureStart(std::chrono::milliseconds(std::stoi(argv[2])), words.subspan(3));
        if (argc >= 4 && std::string_view(argv[1]) == "change")
            return measureChange(std::chrono::milliseconds(std::stoi(argv[2])), words.subspan(3));
        if (argc == 3 && std::string_view(argv[1]) == "ticks")
            return measureTicks(std::chrono::seconds(std::stoi(argv[2])));
        std::fprintf(stderr, "usage: screen-watch prepare | start LIMIT-MS COMMAND... |"
                             " change LIMIT-MS COMMAND... | ticks SECONDS\n");
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "screen-watch: %s\n", problem.what());
    }
    return 1;
}
