#pragma once

#include <QLabel>

namespace apps {

/// A line of text at the right, as large as fits.
class FittingLabel final : public QLabel {
    Q_OBJECT

  public:
    /// @p pixels is the largest size of the text.
    explicit FittingLabel(int pixels);

    void showText(const QString& text);
    QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void fit();

    const int pixels_;
};

} // namespace apps
