#include "platform/qt/HandledEvent.h"

#include "platform/qt/Modifiers.h"

#include <QGuiApplication>

#include <utility>

namespace platform::qt {
namespace {

constinit const HandledEvent* innermost = nullptr;

} // namespace

HandledEvent::HandledEvent(const Event& event)
    : event_(event), outer_(std::exchange(innermost, this)) {}

HandledEvent::~HandledEvent() {
    innermost = outer_;
}

Event HandledEvent::current() {
    if (innermost)
        return innermost->event_;
    return {.modifierFlags = modifierFlags(QGuiApplication::keyboardModifiers()), .clickCount = 0};
}

} // namespace platform::qt
