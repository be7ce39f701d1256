#include "menubar/HalvexMenuViewBase.h"

#include "identifiers/ExportedIdentifiers.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "menubar/ItemPreferences.h"
#include "platform/Graphics.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/Workspace.h"
#include "platform/base/Exception.h"
#include "platform/base/NonCopyable.h"

#include <cmath>

using namespace platform;

namespace {

/// A press of this button is treated like a Control-click. It is not the right button, number 1.
constexpr std::int32_t kControlClickButton = 3;

bool hasModifiers(const Event& event, std::uint32_t mask) {
    return (event.modifierFlags & mask) == mask;
}

class SavedGraphicsState : NonCopyable {
  public:
    explicit SavedGraphicsState(GraphicsContext& context) : context_(context) {
        context_.saveGraphicsState();
    }
    ~SavedGraphicsState() {
        guardedStep([this] { context_.restoreGraphicsState(); });
    }

  private:
    GraphicsContext& context_;
};

/// Returns null, and logs the reason, outside of drawing.
GraphicsContext* currentContext() {
    try {
        return &graphics().currentContext();
    } catch (const Exception& exception) {
        logLine("cannot draw an item: %@", exception.reason());
        return nullptr;
    }
}

void logIfVerbose(const char* line) {
    if (myDebugME != 0)
        logLine(line);
}

} // namespace

std::shared_ptr<HalvexMenuViewBase>
HalvexMenuViewBase::initWithFrame(const Rect& frame, HalvexMenuExtraBase* menuExtra) {
    if (!MenuExtraView::initWithFrame(frame))
        return nullptr;
    menuExtra_ = menuExtra;
    return std::static_pointer_cast<HalvexMenuViewBase>(shared_from_this());
}

bool HalvexMenuViewBase::acceptsFirstMouse(const Event&) const {
    return true;
}

void HalvexMenuViewBase::mouseDown(const Event& event) {
    if (hasModifiers(event, kOptionKeyMask | kControlKeyMask)) {
        if (toggleVerboseLogging())
            return;
    } else if (myDebugME != 0) {
        logLine("mouse down flags: %016x, Double click %d buttonNum=%d", event.modifierFlags,
                event.clickCount, event.buttonNumber);
    }
    if (dispatchClick(event))
        return;
    // The click may have replaced this view.
    menuExtra_->view()->MenuExtraView::mouseDown(event);
}

bool HalvexMenuViewBase::toggleVerboseLogging() const {
    myDebugME = 1 - myDebugME;
    logLine("CTRL+Option/Alt key pressed - myDebug %d", myDebugME);
    if (myDebugME == 0)
        return false;
    guardedOperation([] { sharedWorkspace().selectFile(menubar::productPreferencesFile(), ""); });
    return true;
}

bool HalvexMenuViewBase::dispatchClick(const Event& event) const {
    if (hasModifiers(event, kControlKeyMask) || event.buttonNumber == kControlClickButton) {
        logIfVerbose("ControlKeyMask");
        return menuExtra_->clickWithCtrlKey();
    }
    if (hasModifiers(event, kShiftKeyMask)) {
        logIfVerbose("ShiftKeyMask");
        return menuExtra_->clickWithShiftKey();
    }
    if (hasModifiers(event, kOptionKeyMask)) {
        logIfVerbose("AlttKeyMask");
        return menuExtra_->clickWithAltKey();
    }
    return menuExtra_->clicked();
}

bool HalvexMenuViewBase::scrollWheel(const WheelEvent& event) {
    return menuExtra_->scrolled(event);
}
bool HalvexMenuViewBase::acceptsDrop(const DroppedData& data) const {
    return menuExtra_->acceptsDrop(data);
}
bool HalvexMenuViewBase::performDrop(const DroppedData& data) {
    return menuExtra_->performDrop(data);
}
std::string HalvexMenuViewBase::toolTip() const {
    return menuExtra_->toolTip();
}
AccessibleDescription HalvexMenuViewBase::accessibleDescription() const {
    return menuExtra_->accessibleTexts();
}

void HalvexMenuViewBase::drawRect(const Rect& rect) {
    const auto image = menuExtra_->image();
    const auto title = menuExtra_->attributedTitle();
    if (title && myDebugME != 0)
        logLine("HalvexMenuViewBase  = %@", title->string());
    else if (!title && !image)
        logLine("CalendarMenuView both nil");

    guardedOperation([&] {
        GraphicsContext* context = title || image ? currentContext() : nullptr;
        const double height = rect.size.height;
        if (context && title)
            drawTitle(*context, *title, image ? std::trunc(image->size().width + 3.0) : 0, height);
        if (context && image)
            drawImage(*context, *image, height);
    });
}

void HalvexMenuViewBase::drawTitle(GraphicsContext& context, const AttributedString& title,
                                   double x, double height) const {
    const SavedGraphicsState state(context);
    context.setShouldSmoothFonts(false);
    context.setTextDrawingMode(TextDrawingMode::Fill);
    if (menuExtra_->isMenuDown())
        context.setCompositingOperation(CompositingOperation::XOR);
    if (drawShadow_)
        context.setShadow({1.0, -1.0}, 5.0);
    const double titleHeight = graphics().sizeOfText(title).height;
    context.drawText(title, {x, std::trunc((height - titleHeight) * 0.5 + 1.5)});
}

void HalvexMenuViewBase::drawImage(GraphicsContext& context, const Image& image,
                                   double height) const {
    const Size size = image.size();
    const Rect target{{0, std::trunc((height - size.height) * 0.5)}, size};
    const auto operation =
        menuExtra_->isMenuDown() ? CompositingOperation::XOR : CompositingOperation::Copy;
    context.drawImage(image, target, {{}, size}, operation, 1.0);
}
