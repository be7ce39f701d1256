#include "ui/HUDWindow.h"

#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "ui/HUDBackground.h"

#include <typeinfo>
#include <utility>

using namespace platform;

namespace {

constexpr double kButtonSize = 13.0;
constexpr double kButtonInset = 16.0; // from the top and right edges to the button's origin
constexpr const char* kButtonImageName = "white_i";

constexpr std::uint32_t kStyleMask = kTitledWindowMask | kClosableWindowMask |
                                     kMiniaturizableWindowMask | kResizableWindowMask |
                                     kUtilityWindowMask | kHUDWindowMask;

/// Returns the program's image for the button, or else the one in the bundle that holds @p type.
std::shared_ptr<Image> buttonImage(const std::type_info& type) {
    if (auto image = graphics().imageNamed(kButtonImageName))
        return image;
    const auto bundle = Bundle::bundleForClass(type);
    if (const auto path = bundle->pathForResource(kButtonImageName, "png"))
        return graphics().imageWithContentsOfFile(*path);
    logLine("bundle %@ (%@) missing image %@", bundle->description(), bundle->bundlePath(),
            kButtonImageName);
    return nullptr;
}

} // namespace

HUDWindow::HUDWindow() = default;

HUDWindow::~HUDWindow() = default;

std::shared_ptr<Panel> HUDWindow::initWithContentRect(const Rect& contentRect, std::uint32_t,
                                                      BackingStore backing, bool defer) {
    return guardedOperation([&]() -> std::shared_ptr<Panel> {
        auto self = Panel::initWithContentRect(contentRect, kStyleMask, backing, defer);
        if (!self)
            return nullptr;
        setBackgroundColor(clearColor());
        setAlphaValue(1.0);
        setOpaque(false);
        setHasShadow(true);
        setMovableByWindowBackground(true);
        forceDisplay_ = false;
        setBackgroundColor(sizedHUDBackground());
        setShowsResizeIndicator(true);
        repaintsWhenResized_ = true;
        return self;
    });
}

bool HUDWindow::canBecomeKeyWindow() const {
    return true;
}

Color HUDWindow::sizedHUDBackground() const {
    return guardedOperation(
        [&] {
            const Size size = frame().size;
            return colorWithPatternImage(
                graphics().imageByDrawing(size, [&](GraphicsContext& context) {
                    ui::drawHUDBackground(context, size, title());
                }));
        },
        clearColor());
}

void HUDWindow::windowDidResize() {
    guardedOperation([&] {
        setBackgroundColor(sizedHUDBackground());
        if (forceDisplay_)
            display();
    });
}

void HUDWindow::setFrame(const Rect& frame, bool display, bool animate) {
    const auto self = shared_from_this(); // a handler may release the panel during the animation
    forceDisplay_ = true;
    guardedOperation([&] { Panel::setFrame(frame, display, animate); });
    forceDisplay_ = false;
}

void HUDWindow::sizeDidChange() {
    if (repaintsWhenResized_)
        windowDidResize();
}

void HUDWindow::setTitle(std::string title) {
    guardedOperation([&] {
        Panel::setTitle(std::move(title));
        windowDidResize();
    });
}

void HUDWindow::mouseUp(const Event&) {
    sendAction(action_, target_, *this);
}

void HUDWindow::makeButtonWhite(Button& button) const {
    guardedOperation([&] {
        if (button.attributedTitle().length() == 0)
            return;
        TextAttributes attributes = button.attributedTitle().attributesAt(0);
        attributes.foregroundColor = calibratedWhite(1);
        button.setAttributedTitle(AttributedString(button.title(), attributes));
    });
}

void HUDWindow::addiButton(const Rect& rect, std::weak_ptr<ActionTarget> target,
                           Selector selector) {
    guardedOperation([&] {
        const auto button = std::make_shared<Button>(
            Rect{{rect.size.width - kButtonInset, rect.size.height - kButtonInset},
                 {kButtonSize, kButtonSize}});
        contentView().addButton(button);
        button->setBezelStyle(BezelStyle::Rounded);
        button->setButtonType(ButtonType::MomentaryChange);
        button->setBordered(false);
        button->setAutoresizingMask(Autoresizing::kMinXMargin | Autoresizing::kMinYMargin);
        button->setImage(buttonImage(typeid(*this)));
        button->setTitle("");
        button->setImagePosition(ImagePosition::ImageBelow);
        button->setTarget(std::move(target));
        button->setFocusRingType(FocusRingType::None);
        button->setAction(std::move(selector));
        button->setAccessibilityLabel("Information");
    });
}

void HUDWindow::addCloseButton(const std::shared_ptr<ActionTarget>&) {}
