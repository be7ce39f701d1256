#pragma once

#include "platform/widgets/Control.h"

#include <functional>

namespace platform {

/// A slider for a number in a panel. It can be dragged, clicked, and moved with the wheel and the
/// keyboard: the arrow keys move it by a hundredth of the range or one tick mark, Page Up and Page
/// Down by a tenth, Home and End to the limits. Main thread only.
class Slider final : public Control {
  public:
    using Handler = std::function<void(double value)>;

    /// Creates a horizontal slider for a value from 0 to 1. The value is 0.
    explicit Slider(const Rect& frame);
    ~Slider() override;

    double minValue() const { return minimum_; }
    double maxValue() const { return maximum_; }
    double value() const { return value_; }
    int numberOfTickMarks() const { return tickMarks_; }
    bool allowsTickMarkValuesOnly() const { return snaps_; }
    bool isContinuous() const { return continuous_; }
    bool isVertical() const { return vertical_; }

    /// Sets the limits, and moves the value between them. If @p maximum is not greater than
    /// @p minimum, or a limit is not finite, both limits become @p minimum, or else 0.
    void setRange(double minimum, double maximum);
    /// Sets the value, limited to the range and rounded to a tick mark if the slider allows only
    /// those. Ignores NaN. Does not call the handler.
    void setValue(double value);
    /// Sets the number of tick marks, which are distributed evenly from the minimum to the maximum.
    /// Fewer than 2, the default, means none.
    void setNumberOfTickMarks(int count);
    /// Sets whether the slider allows only the values at its tick marks, if it has any.
    void setAllowsTickMarkValuesOnly(bool only);
    /// Sets whether the handler is called during a drag, the default, or only after it.
    void setContinuous(bool continuous) { change(continuous_, continuous); }
    /// Sets whether the slider is vertical, with the maximum at the top.
    void setVertical(bool vertical) { change(vertical_, vertical); }
    /// Sets the function to call after the user has moved the slider, replacing the previous one.
    void setHandler(Handler handler) { handler_ = std::move(handler); }

    /// Returns the number of intervals between the positions of the slider.
    int intervals() const;
    /// Returns the position nearest to @p value, from 0 to intervals().
    int positionOf(double value) const;
    double valueAt(int position) const;
    /// Called by the panel's window after the user has moved the slider.
    void userDidMove(int position);

  private:
    bool snaps() const { return snaps_ && tickMarks_ > 1; }
    double allowed(double value) const;

    double minimum_ = 0;
    double maximum_ = 1;
    double value_ = 0;
    int tickMarks_ = 0;
    bool snaps_ = false;
    bool continuous_ = true;
    bool vertical_ = false;
    Handler handler_;
};

} // namespace platform
