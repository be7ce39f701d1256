#pragma once

#include "extras/HalvexTimeMenu/ConvertRange.h"
#include "platform/widgets/MenuExtra.h"

#include <string>
#include <vector>

/// The scale below the slider of the Convert panel: the hours of both days and their dates, white
/// on dark. Main thread only.
class ConvertScale final : public platform::MenuExtraView {
  public:
    /// @p inset is the distance in points from the edges of the view to the ends of the scale.
    explicit ConvertScale(double inset) : inset_(inset) {}

    /// A text on the scale, centred at @p place (0 to 1).
    struct Text {
        double place = 0;
        std::string text;
    };
    void show(std::vector<ConvertRange::Mark> marks, std::vector<Text> hours,
              std::vector<Text> dates);

    void drawRect(const platform::Rect& rect) override;
    platform::AccessibleDescription accessibleDescription() const override;

  private:
    double positionOf(double place) const;
    void drawTicks() const;
    void drawTexts(const std::vector<Text>& texts, double top, double opacity) const;

    const double inset_;
    std::vector<ConvertRange::Mark> marks_;
    std::vector<Text> hours_;
    std::vector<Text> dates_;
};
