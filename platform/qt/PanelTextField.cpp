#include "platform/qt/PanelTextField.h"

#include "platform/qt/Modifiers.h"
#include "platform/qt/Strings.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QSignalBlocker>

namespace platform::qt {
namespace {

constexpr int kTextMargin = 4; // points, inside of the frame

} // namespace

PanelTextField::PanelTextField(std::shared_ptr<TextField> field, std::string owner, QWidget* parent)
    : QLineEdit(parent), PanelControl(*this, std::move(field), std::move(owner)) {
    setTextMargins(kTextMargin, 0, kTextMargin, 0);
    // Not textEdited, which is not emitted for edits by a screen reader.
    connect(this, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (const auto edited = control<TextField>())
            run([&] { edited->userDidEdit(text.toStdString()); });
    });
    controlDidChange();
}

void PanelTextField::applySettings() {
    const QSignalBlocker blocker(this); // the handlers are only for changes by the user
    const auto field = control<TextField>();
    setEchoMode(field->isSecure() ? QLineEdit::Password : QLineEdit::Normal);
    setPlaceholderText(qString(field->placeholder()));
    // Setting the same text would clear the selection and the undo history.
    if (const QString text = qString(field->text()); text != this->text())
        setText(text);
}

void PanelTextField::takeFocus() {
    setFocus(Qt::OtherFocusReason);
    selectAll();
}

void PanelTextField::commit() {
    if (const auto field = control<TextField>())
        run([&] { field->userDidCommit(); });
}

void PanelTextField::commitIfChanged() {
    if (const auto field = control<TextField>(); field && field->hasUncommittedText())
        commit();
}

/// Returns whether the key is an arrow key that the field handles.
bool PanelTextField::step(const QKeyEvent& event) {
    const auto field = control<TextField>();
    const bool isUp = event.key() == Qt::Key_Up;
    if ((!isUp && event.key() != Qt::Key_Down) || !field || !field->canStep() ||
        modifierFlags(event.modifiers()) != 0)
        return false;
    run([&] { field->userDidStep(isUp ? 1 : -1); });
    return true;
}

void PanelTextField::keyPressEvent(QKeyEvent* event) {
    if (step(*event))
        return;
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn)
        commit();
    else if (event->key() != Qt::Key_Escape)
        return QLineEdit::keyPressEvent(event);
    else if (const auto field = control<TextField>())
        run([&] { field->userDidCancel(); });
    event->ignore(); // for the panel's default button, and to close the panel
}

void PanelTextField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    // The user will come back from the field's own menu and from another window.
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        commitIfChanged();
}

void PanelTextField::hideEvent(QHideEvent* event) {
    QLineEdit::hideEvent(event);
    if (!event->spontaneous())
        commitIfChanged();
}

} // namespace platform::qt
