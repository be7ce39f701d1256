#pragma once

#include "menubar/HalvexMenuViewBase.h"
#include "platform/values/TextAttributes.h"

#include <string>
#include <string_view>
#include <vector>

/// Two texts above each other in the bar.
struct TitleColumn {
    std::string upper;
    std::string lower;
    friend bool operator==(const TitleColumn&, const TitleColumn&) = default;
};

/// How the texts of a clock look.
struct ClockLook {
    platform::TextAttributes title{}; ///< of a title on one line
    platform::TextAttributes upper{}; ///< of the lines of a title on two
    platform::TextAttributes lower{};
};

/// Returns the fonts and colours of the clock, with those of the user's theme. Unset attributes are
/// those of the bar.
ClockLook clockLook();

/// The clock in the bar: its title, or columns of two lines in small text. Main thread only.
class ClockView final : public HalvexMenuViewBase {
  public:
    /// Shows @p columns, the first one at the left, instead of the title. Without columns, shows
    /// the title.
    void setColumns(std::vector<TitleColumn> columns);
    bool hasColumns() const { return !columns_.empty(); }

    /// Returns the width of the columns in points, with room for the widest digits.
    double widthOfColumns();
    /// Returns the width of a text, in points, that has the widest digits.
    double reservedWidth(std::string_view text, const platform::TextAttributes& attributes);
    /// Measures digits again when they are next needed.
    void resetDigits() { widestDigits_.clear(); }

    void drawRect(const platform::Rect& rect) override;

  private:
    struct WidestDigit {
        platform::TextAttributes attributes;
        char digit;
    };

    char widestDigit(const platform::TextAttributes& attributes);
    double width(const TitleColumn& column);
    void drawColumns(platform::GraphicsContext& context, double height);

    std::vector<TitleColumn> columns_;
    std::vector<WidestDigit> widestDigits_;
};
