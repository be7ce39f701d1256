#pragma once

#include <QLabel>

namespace apps {

/// A right-aligned line of plain text. Reduces the font size until the text fits the label's width
/// or the minimum size is reached.
class FittingLabel final : public QLabel {
    Q_OBJECT

  public:
    /// @p maxFontSize is in pixels.
    explicit FittingLabel(int maxFontSize);

    /// Sets the text and adjusts the font size. Call this instead of setText().
    void showText(const QString& text);
    QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void fit();

    const int maxFontSize_;
};

} // namespace apps
