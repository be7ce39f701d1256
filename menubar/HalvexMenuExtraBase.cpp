#include "menubar/HalvexMenuExtraBase.h"

#include "identifiers/ExportedIdentifiers.h"
#include "platform/EventSource.h"
#include "platform/Graphics.h"
#include "platform/Log.h"
#include "platform/MenuExtraHost.h"
#include "platform/Operation.h"
#include "platform/base/Exception.h"

#include <sstream>
#include <utility>

// Weak, so that a library without this symbol still loads and initWithBundle can log the problem.
extern "C" [[gnu::weak]] const char* const WarnMeTimesFile;

using namespace platform;

namespace {

#if defined(__x86_64__)
constexpr const char* kStartingFormat = "starting %@ Menu Extra for Intel 64Bit %@";
#elif defined(__i386__)
constexpr const char* kStartingFormat = "starting %@ Menu Extra for Intel %@";
#elif defined(__powerpc__)
constexpr const char* kStartingFormat = "starting %@ Menu Extra for PPC %@";
#elif defined(__aarch64__)
constexpr const char* kStartingFormat = "starting %@ Menu Extra for ARM 64Bit %@";
#else
constexpr const char* kStartingFormat = "starting %@ Menu Extra %@";
#endif

/// Returns how log lines name @p extra.
std::string description(const HalvexMenuExtraBase& extra) {
    std::ostringstream text;
    text << "<HalvexMenuExtraBase: " << static_cast<const void*>(&extra) << '>';
    return text.str();
}

const Shadow kTitleShadow{.offset = {2.0, 2.0}, .blurRadius = 1.5};

} // namespace

HalvexMenuExtraBase::~HalvexMenuExtraBase() {
    if (identifiers::isVerbose())
        guardedStep([&] {
            logLine("dealloc HalvexMenuExtraBase %@ %d", description(*this),
                    weak_from_this().use_count());
        });
}

bool HalvexMenuExtraBase::OptionDown() {
    const auto narrowed =
        static_cast<std::uint8_t>(eventSource().currentEvent().modifierFlags & kOptionKeyMask);
    return narrowed != 0;
}

std::shared_ptr<MenuExtra> HalvexMenuExtraBase::initWithBundle(std::shared_ptr<Bundle> bundle) {
    // Lets failed allocations propagate, including those in setTitle and recalWidth.
    const OperationScope scope;
    if (!MenuExtra::initWithBundle(std::move(bundle))) {
        logLine("HalvexMenuExtraBase super initWithBundle failed");
        return nullptr;
    }
    const Bundle& info = *this->bundle();
    logLine(kStartingFormat, info.stringForInfoDictionaryKey("CFBundleName"),
            info.textForInfoDictionaryKey("CFBundleShortVersionString"));
    if (&WarnMeTimesFile == nullptr)
        logLine("\n\nHalvexMenuExtraBase mising Halvex Library\n\n");

    std::atomic_ref(myDebug).store(OptionDown() ? 2 : 0, std::memory_order_relaxed);
    extraHeight_ = static_cast<float>(menuExtraHost().statusBarThickness() - 1.0);
    try {
        createView();
    } catch (const Exception& exception) {
        logLine("HalvexMenuExtraBase setView exception name: %@   reason: %@   userInfo: %@",
                exception.name(), exception.reason(), exception.userInfo());
    }
    if (identifiers::isVerbose())
        logLine("exiting HalvexMenuExtraBase - initWithBundle retainCount: %d",
                weak_from_this().use_count());
    return shared_from_this();
}

void HalvexMenuExtraBase::createView() {
    view_ = std::make_shared<HalvexMenuViewBase>()->initWithFrame(MenuExtra::view()->frame(), this);
    if (view_)
        view_->setClickCount(2);
    setView(view_);
    setTitle("-");
    recalWidth();
}

bool HalvexMenuExtraBase::drawsShadow() const {
    return view_ && view_->drawShadow();
}

void HalvexMenuExtraBase::requestRedisplay() {
    if (view_)
        view_->setNeedsDisplay(true);
}

void HalvexMenuExtraBase::setTitle(const std::optional<std::string>& title) {
    guardedOperation([&] {
        auto text = title ? std::make_shared<AttributedString>(*title) : nullptr;
        if (text && drawsShadow())
            text->addShadow(kTitleShadow, 0, text->length());
        const auto previous = std::exchange(appText_, std::move(text));
        const bool sameText = title && previous && *title == previous->string();
        if (!sameText)
            requestRedisplay();
        recalWidth();
    });
}

void HalvexMenuExtraBase::setAttributedTitle(const std::shared_ptr<AttributedString>& title) {
    guardedOperation([&] {
        if (title == appText_)
            return;
        appText_ = title ? std::make_shared<AttributedString>(*title) : nullptr;
        recalWidth();
    });
}

void HalvexMenuExtraBase::setImage(const std::shared_ptr<Image>& image) {
    guardedOperation([&] {
        if (image == icon_)
            return;
        icon_ = image;
        recalWidth();
    });
}

std::shared_ptr<AttributedString> HalvexMenuExtraBase::attributedTitle() const {
    return appText_;
}
std::shared_ptr<Image> HalvexMenuExtraBase::image() const {
    return icon_;
}
std::shared_ptr<Image> HalvexMenuExtraBase::alternateImage() const {
    return iconSelected_;
}
std::shared_ptr<Menu> HalvexMenuExtraBase::menu() const {
    return menu_;
}

void HalvexMenuExtraBase::recalWidth() {
    guardedOperation([&] {
        const float shadow = drawsShadow() ? 2.5F : 0.0F;
        const float icon = icon_ ? static_cast<float>(icon_->size().width) : 0.0F;
        const float text =
            appText_ ? static_cast<float>(graphics().sizeOfText(*appText_).width) : 0.0F;
        SetViewWidth(text + (icon + 2.0F) + shadow);
    });
}

void HalvexMenuExtraBase::SetViewWidth(float width) {
    guardedOperation([&] {
        if (width == extraWidth_)
            return;
        extraWidth_ = width;
        if (view_)
            view_->setFrameSize({width, view_->frame().size.height});
        setLength(width);
        requestRedisplay();
    });
}

bool HalvexMenuExtraBase::CheckForSecFormat(const std::optional<std::string>& format) const {
    return format && format->find("%S") != std::string::npos;
}

bool HalvexMenuExtraBase::clicked() {
    return false;
}
bool HalvexMenuExtraBase::clickWithAltKey() {
    return false;
}
bool HalvexMenuExtraBase::clickWithShiftKey() {
    return false;
}
bool HalvexMenuExtraBase::clickWithCtrlKey() {
    return false;
}

void HalvexMenuExtraBase::setToolTip(std::string text) {
    toolTip_ = std::move(text);
}
std::string HalvexMenuExtraBase::toolTip() const {
    return guardedOperation([&] { return toolTip_; });
}

void HalvexMenuExtraBase::setAccessibleTexts(AccessibleDescription texts) {
    accessibleTexts_ = std::move(texts);
    requestRedisplay(); // the host announces changes when it draws
}
AccessibleDescription HalvexMenuExtraBase::accessibleTexts() const {
    return guardedOperation([&] { return accessibleTexts_; });
}

bool HalvexMenuExtraBase::scrolled(const WheelEvent&) {
    return false;
}
bool HalvexMenuExtraBase::acceptsDrop(const DroppedData&) const {
    return false;
}
bool HalvexMenuExtraBase::performDrop(const DroppedData&) {
    return false;
}

bool HalvexMenuExtraBase::validateMenuItem(const MenuItem&) {
    return true;
}

void HalvexMenuExtraBase::willUnload() {
    MenuExtra::willUnload();
}
