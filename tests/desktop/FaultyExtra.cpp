#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Bundle.h"
#include "platform/Clock.h"
#include "platform/FileManager.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/syscall.h>
#include <thread>
#include <typeinfo>
#include <unistd.h>
#include <utility>

using namespace platform;

namespace {

class FaultyExtra;

/// The principal class, "PLACE: FAILURE", says where the item fails and how. Read from Info.plist,
/// because static constructors run before the bar passes it.
const std::string fault = Bundle::bundleForClass(typeid(FaultyExtra*))
                              ->stringForInfoDictionaryKey("NSPrincipalClass")
                              .value_or("");

[[gnu::noinline]] int overflowStack(volatile int* outer) {
    std::array<volatile int, 1000> local{};
    local[0] = *outer;
    return *outer == 0 ? overflowStack(local.data()) + local[0] : 0;
}

// Unsanitized: the sanitizer would end the process without a signal.
__attribute__((no_sanitize("undefined"))) void writeToNull() {
    static volatile int* volatile null = nullptr;
    *null = 1;
}

using Failure = std::pair<std::string_view, void (*)()>;
constexpr std::array kFailures{
    Failure{"exception", [] { throw std::runtime_error("deliberate"); }},
    Failure{"SIGSEGV", writeToNull},
    Failure{"stack overflow",
            [] {
                volatile int zero = 0;
                overflowStack(&zero);
            }},
    Failure{"abort", [] { std::abort(); }},
    Failure{"exit", [] { std::exit(0); }},
    Failure{"_exit", [] { _exit(0); }},
    Failure{"kill SIGKILL", [] { kill(getpid(), SIGKILL); }},
    Failure{"raise SIGKILL", [] { raise(SIGKILL); }},
    Failure{"kill SIGTERM", [] { kill(getpid(), SIGTERM); }},
    Failure{"raise SIGTERM", [] { raise(SIGTERM); }},
    Failure{"endless wait",
            [] {
                for (;;)
                    pause();
            }},
    Failure{"short wait", [] { usleep(800'000); }},
    Failure{"busy loop",
            [] {
                for (volatile bool forever = true; forever;) {
                }
            }},
};

/// Appends the time to a file in the home folder, from which the test measures.
void recordTime() {
    const std::string file = std::string(std::getenv("HOME")) + "/failures";
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    const std::string line = std::to_string(time.tv_sec * 1000 + time.tv_nsec / 1'000'000) + '\n';
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    [[maybe_unused]] const auto ignored = write(descriptor, line.data(), line.size());
    close(descriptor);
}

bool isPlace(const std::string& place) {
    return fault.starts_with(place + ": ");
}

void failAt(const std::string& place) {
    if (!isPlace(place))
        return;
    recordTime();
    for (const auto& [name, fail] : kFailures)
        if (fault.ends_with(": " + std::string(name)))
            fail();
}

const struct AtLoadAndUnload {
    AtLoadAndUnload() { failAt("static constructor"); }
    ~AtLoadAndUnload() { failAt("static destructor"); }
} atLoadAndUnload;

class FaultyView final : public HalvexMenuViewBase {
  public:
    void drawRect(const Rect& rect) override {
        failAt("first drawing");
        if (wasClicked)
            failAt("later drawing");
        HalvexMenuViewBase::drawRect(rect);
    }
    bool wasClicked = false;
};

class FaultyExtra final : public HalvexMenuExtraBase {
  public:
    ~FaultyExtra() override { failAt("destructor"); }

    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        HalvexMenuExtraBase::initWithBundle(std::move(bundle));
        failAt("initialiser");
        failAt("initialiser at start");
        faultyView_->initWithFrame(view()->frame(), this);
        setView(faultyView_);
        setTitle("Fault");
        menu_ = std::make_shared<Menu>();
        menu_->addItem(
            "Fail", [](MenuItem&) { failAt("action"); }, weak_from_this());
        if (isPlace("timer"))
            ticks_ = systemClock().tick(TickInterval::Second, [] { failAt("timer"); });
        if (isPlace("file watch"))
            file_ = fileManager().watchFile(fileManager().homeDirectory() + "/watched",
                                            [] { failAt("file watch"); });
        return shared_from_this();
    }
    bool clicked() override {
        failAt("click");
        if (isPlace("thread"))
            std::thread([] { failAt("thread"); }).detach();
        if (isPlace("thread of unloaded code"))
            std::thread([] {
                for (;;)
                    usleep(1000);
            }).detach();
        faultyView_->wasClicked = true;
        faultyView_->setNeedsDisplay(true);
        return !isPlace("menu") && !isPlace("action");
    }
    void menuWillOpen() override { failAt("menu"); }
    void willUnload() override {
        failAt("willUnload");
        failAt("thread of unloaded code"); // its code is about to be unloaded
        HalvexMenuExtraBase::willUnload();
    }

  private:
    std::shared_ptr<FaultyView> faultyView_ = std::make_shared<FaultyView>();
    std::unique_ptr<Watch> ticks_, file_;
};

} // namespace

extern "C" MenuExtra* HALVEX_MENU_EXTRA_ENTRY(const char*) {
    return new FaultyExtra;
}
