#pragma once

#include "platform/widgets/Control.h"

#include <functional>
#include <string>

namespace platform {

/// A field in a panel for one line of text. Texts are UTF-8; line breaks become spaces.
///
/// The text is committed when the user presses Return, and when the keyboard focus moves to another
/// control or the panel closes after the text has changed. Escape restores the committed text, and
/// then closes the panel if it is closable. Main thread only.
class TextField final : public Control {
  public:
    using Handler = std::function<void(const std::string& text)>;

    /// Creates an empty field.
    explicit TextField(const Rect& frame);
    ~TextField() override;

    /// Returns the text that the field shows.
    const std::string& text() const { return text_; }
    const std::string& placeholder() const { return placeholder_; }
    bool isSecure() const { return secure_; }

    /// Replaces the text, which then counts as committed. Calls no handler.
    void setText(std::string text);
    /// Sets the text to show while the field is empty.
    void setPlaceholder(std::string text) { change(placeholder_, std::move(text)); }
    /// Sets whether the field shows dots instead of the text, which cannot be copied.
    void setSecure(bool secure) { change(secure_, secure); }
    /// Selects the text, and moves the keyboard focus to the field.
    void selectText() { focus(); }

    /// Sets the function to call after each change by the user, replacing the previous one.
    void setChangeHandler(Handler handler) { changed_ = std::move(handler); }
    /// Sets the function to call when the user commits the text, replacing the previous one. Return
    /// calls it even if the text is unchanged.
    void setCommitHandler(Handler handler) { committed_ = std::move(handler); }

    /// Sets the function to call when the user presses the up (1) or the down arrow key (-1),
    /// replacing the previous one. Use it to step a number, a date or a time.
    void setStepHandler(std::function<void(int direction)> handler) { step_ = std::move(handler); }
    bool canStep() const { return step_ != nullptr; }

    // Called by the panel's window.

    void userDidEdit(std::string text);
    void userDidStep(int direction);
    void userDidCommit();
    /// Restores the committed text.
    void userDidCancel();
    bool hasUncommittedText() const { return text_ != committedText_; }

  private:
    std::string text_;
    std::string committedText_;
    std::string placeholder_;
    bool secure_ = false;
    Handler changed_;
    Handler committed_;
    std::function<void(int direction)> step_;
};

} // namespace platform
