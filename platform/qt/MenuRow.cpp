#include "platform/qt/MenuRow.h"

#include "platform/qt/MenuShortcut.h"
#include "platform/qt/QtGraphics.h"
#include "platform/qt/Strings.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPolygonF>
#include <QStyle>
#include <QStyleOptionMenuItem>

#include <algorithm>
#include <cmath>

namespace platform::qt {
namespace {

// In points.
constexpr int kStateWidth = 24; // including the left margin
constexpr int kRightMargin = 14;
constexpr int kVerticalMargin = 4;
constexpr int kMinimumHeight = 24; // of a row that is no section header
constexpr int kHeaderMargin = 4;   // above a section header, in addition
constexpr int kIndentation = 12;
constexpr int kGap = 6;        // beside an image
constexpr int kColumnGap = 24; // between the title and what is on the right
constexpr int kArrowWidth = 14;
constexpr int kMaximumTitle = 640;
constexpr int kSeparatorHeight = 11;
constexpr int kSeparatorInset = 12;
constexpr double kMaximumImage = 64;
constexpr double kSmallText = 0.85;
constexpr double kSelectedOpacity = 0.85; // of secondary text on the highlight
constexpr double kLineOpacity = 0.18;
constexpr double kDisabledOpacity = 0.4; // of images

/// Line ends and tabs are shown as blanks.
QString singleLine(const std::string& text) {
    return qString(text).replace('\n', ' ').replace('\t', ' ');
}

QFont smallFont(QFont font) {
    if (font.pixelSize() > 0)
        font.setPixelSize(
            std::max(1, static_cast<int>(std::lround(font.pixelSize() * kSmallText))));
    else
        font.setPointSizeF(font.pointSizeF() * kSmallText);
    return font;
}

QFont titleFont(const MenuItem& item, const QFont& font) {
    if (!item.isSectionHeader())
        return font;
    QFont header = smallFont(font);
    header.setWeight(QFont::DemiBold);
    return header;
}

bool isDigit(QChar character) {
    return character >= '0' && character <= '9';
}

/// Text whose digits all have the width of the widest one.
class TabularText {
  public:
    TabularText(const QString& text, const QFont& font) : text_(text), metrics_(font) {
        for (char digit = '0'; digit <= '9'; ++digit)
            digitWidth_ = std::max(digitWidth_, metrics_.horizontalAdvance(QChar(digit)));
        // Writing from right to left is left to Qt.
        isPlain_ = text.isRightToLeft();
    }

    int width() const {
        double width = 0;
        forEachPart([&](const QString&, double advance) { width += advance; });
        return static_cast<int>(std::ceil(width));
    }
    void draw(QPainter& painter, const QRect& rect) const {
        double x = rect.left();
        forEachPart([&](const QString& part, double advance) {
            painter.drawText(QRectF(x, rect.top(), advance, rect.height()),
                             Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip, part);
            x += advance;
        });
    }

  private:
    template <class Use>
    void forEachPart(const Use& use) const {
        for (qsizetype start = 0, end = 0; start < text_.size(); start = end) {
            const bool digit = isDigit(text_[start]) && !isPlain_;
            end = start + 1;
            while (!digit && end < text_.size() && (isPlain_ || !isDigit(text_[end])))
                ++end;
            const QString part = text_.mid(start, end - start);
            use(part, digit ? digitWidth_ : metrics_.horizontalAdvance(part));
        }
    }

    QString text_;
    QFontMetricsF metrics_;
    double digitWidth_ = 0;
    bool isPlain_ = false;
};

/// Returns the size at which an image is shown.
QSize shownSize(const std::shared_ptr<const Image>& image) {
    const Size size = image ? image->size() : Size{};
    if (!(size.width > 0) || !(size.height > 0))
        return {0, 0};
    const double scale = std::min({1.0, kMaximumImage / size.width, kMaximumImage / size.height});
    return {static_cast<int>(std::ceil(size.width * scale)),
            static_cast<int>(std::ceil(size.height * scale))};
}

void drawImage(QPainter& painter, const Image& image, const QRect& rect, const QColor& textColor,
               double opacity) {
    auto* const target = dynamic_cast<QtGraphics*>(&graphics());
    if (!target)
        return;
    const double scale = painter.device()->devicePixelRatioF();
    QImage layer((QSizeF(rect.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::transparent);
    const Size size = image.size();
    const double shrink = std::min({1.0, rect.width() / size.width, rect.height() / size.height});
    ScopedContext(*target, layer, rect.size(), scale, textColor)
        .context()
        .drawImage(image, {{}, {size.width * shrink, size.height * shrink}}, {{}, size},
                   CompositingOperation::SourceOver, opacity);
    layer.setDevicePixelRatio(scale);
    painter.drawImage(rect.topLeft(), layer);
}

bool hasTrailing(const MenuItem& item) {
    return item.trailingImage() || !item.trailingText().empty();
}

int shortcutWidth(const MenuItem& item, const QFont& font) {
    return item.shortcut() ? QFontMetrics(font).horizontalAdvance(shortcutText(*item.shortcut()))
                           : 0;
}

/// The widths of an item's parts, and its height.
struct Parts {
    Parts(const MenuItem& item, const MenuColumns& columns, const QFont& font)
        : title(titleFont(item, font)), subtitle(smallFont(font)), image(shownSize(item.image())),
          trailingImage(shownSize(item.trailingImage())), isHeader(item.isSectionHeader()) {
        titleHeight = QFontMetrics(title).height();
        subtitleHeight = item.subtitle().empty() ? 0 : QFontMetrics(subtitle).height();
        left = kStateWidth + item.indentationLevel() * kIndentation +
               (image.isEmpty() ? 0 : image.width() + kGap);
        right = kRightMargin + (columns.submenus ? kArrowWidth : 0);
        const auto withGap = [](int width) { return width ? width + kGap : 0; };
        if (!hasTrailing(item))
            shortcut = withGap(shortcutWidth(item, font));
        else {
            shortcut = withGap(columns.shortcut);
            imageColumn = withGap(columns.image);
        }
        if (!item.trailingText().empty())
            trailingText = TabularText(singleLine(item.trailingText()), font).width();
    }

    int trailing() const {
        const int width = shortcut + imageColumn + trailingText;
        return width ? width + kColumnGap : 0;
    }
    int height() const {
        const int content =
            std::max({titleHeight + subtitleHeight, image.height(), trailingImage.height()});
        return std::max(isHeader ? 0 : kMinimumHeight, content + 2 * kVerticalMargin);
    }

    QFont title;
    QFont subtitle;
    QSize image;
    QSize trailingImage;
    int titleHeight = 0;
    int subtitleHeight = 0;
    int left = 0;        // up to the title
    int right = 0;       // the margin and the arrow
    int shortcut = 0;    // including the gap
    int imageColumn = 0; // including the gap
    int trailingText = 0;
    bool isHeader = false;
};

int textWidth(const MenuItem& item, const Parts& parts) {
    const double title = QFontMetricsF(parts.title).horizontalAdvance(singleLine(item.title()));
    const double subtitle =
        QFontMetricsF(parts.subtitle).horizontalAdvance(singleLine(item.subtitle()));
    return static_cast<int>(std::ceil(std::max(title, subtitle)));
}

/// Paints one item. Rectangles are mirrored for writing from right to left.
class RowPainter {
  public:
    RowPainter(QPainter& painter, const MenuItem& item, const MenuColumns& columns,
               const QStyleOptionMenuItem& option, const QFont& font)
        : painter_(painter), item_(item), columns_(columns), option_(option), font_(font),
          parts_(item, columns, font) {
        enabled_ = option.state & QStyle::State_Enabled;
        const bool selected = enabled_ && (option.state & QStyle::State_Selected);
        text_ = selected ? option.palette.color(QPalette::HighlightedText)
                         : option.palette.color(enabled_ ? QPalette::Active : QPalette::Disabled,
                                                QPalette::Text);
        secondary_ =
            selected || !enabled_ ? text_ : option.palette.color(QPalette::PlaceholderText);
        if (selected)
            secondary_.setAlphaF(float(kSelectedOpacity) * secondary_.alphaF());
        if (item.isSectionHeader())
            text_ = option.palette.color(QPalette::PlaceholderText);
    }

    void paint() {
        painter_.save();
        painter_.setRenderHint(QPainter::Antialiasing);
        paintState();
        paintTitle();
        paintTrailing();
        paintArrow();
        painter_.restore();
    }

  private:
    /// Returns a part of the row with a distance from its left edge.
    QRect part(int left, int width) const {
        const QRect rect(option_.rect.left() + left, option_.rect.top(), width,
                         option_.rect.height());
        return QStyle::visualRect(option_.direction, option_.rect, rect);
    }
    QRect centered(QSize size, const QRect& rect) const {
        return QStyle::alignedRect(option_.direction, Qt::AlignCenter, size, rect);
    }
    /// Returns the corner of a box in the middle of a part, on the boundary of a pixel.
    QPointF glyphCorner(QSize size, const QRect& rect) const {
        const double scale = painter_.device()->devicePixelRatioF();
        const QPointF corner = centered(size, rect).topLeft();
        return {std::round(corner.x() * scale) / scale, std::round(corner.y() * scale) / scale};
    }

    void paintState() {
        const QPointF corner = glyphCorner({10, 10}, part(0, kStateWidth));
        const auto at = [&](double x, double y) { return corner + QPointF(x, y); };
        painter_.setPen(QPen(text_, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        if (item_.state() == MenuItem::State::On)
            painter_.drawPolyline(QPolygonF{at(1, 5.5), at(3.8, 8.5), at(9, 1.5)});
        else if (item_.state() == MenuItem::State::Mixed)
            painter_.drawLine(at(1.5, 5), at(8.5, 5));
    }

    void paintTitle() {
        const double opacity = enabled_ ? 1 : kDisabledOpacity;
        if (!parts_.image.isEmpty()) {
            const int left = parts_.left - kGap - parts_.image.width();
            drawImage(painter_, *item_.image(),
                      centered(parts_.image, part(left, parts_.image.width())), text_, opacity);
        }
        const int width = option_.rect.width() - parts_.left - parts_.trailing() - parts_.right;
        const QRect area = part(parts_.left, width);
        const int height = parts_.titleHeight + parts_.subtitleHeight;
        int top = area.top() + (area.height() - height) / 2;
        if (item_.isSectionHeader())
            top = area.bottom() + 1 - kVerticalMargin - height;
        paintText(item_.title(), parts_.title, text_,
                  QRect(area.left(), top, width, parts_.titleHeight));
        if (parts_.subtitleHeight)
            paintText(item_.subtitle(), parts_.subtitle, secondary_,
                      QRect(area.left(), top + parts_.titleHeight, width, parts_.subtitleHeight));
    }

    void paintText(const std::string& text, const QFont& font, const QColor& color,
                   const QRect& rect) {
        painter_.setFont(font);
        painter_.setPen(color);
        const auto alignment =
            QStyle::visualAlignment(option_.direction, Qt::AlignLeft | Qt::AlignVCenter);
        const QString line = singleLine(text);
        painter_.setLayoutDirection(line.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        painter_.drawText(rect,
                          static_cast<int>(alignment | Qt::AlignAbsolute) | Qt::TextSingleLine,
                          QFontMetrics(font).elidedText(line, Qt::ElideRight, rect.width()));
    }

    void paintTrailing() {
        int right = option_.rect.width() - parts_.right;
        painter_.setFont(font_);
        painter_.setPen(secondary_);
        painter_.setLayoutDirection(Qt::LeftToRight);
        if (item_.shortcut()) {
            const auto alignment =
                QStyle::visualAlignment(option_.direction, Qt::AlignRight | Qt::AlignVCenter);
            painter_.drawText(part(right - parts_.shortcut, parts_.shortcut),
                              static_cast<int>(alignment | Qt::AlignAbsolute),
                              shortcutText(*item_.shortcut()));
        }
        right -= parts_.shortcut;
        if (!parts_.trailingImage.isEmpty())
            drawImage(painter_, *item_.trailingImage(),
                      centered(parts_.trailingImage, part(right - columns_.image, columns_.image)),
                      text_, enabled_ ? 1 : kDisabledOpacity);
        right -= parts_.imageColumn;
        if (parts_.trailingText)
            TabularText(singleLine(item_.trailingText()), font_)
                .draw(painter_, part(right - parts_.trailingText, parts_.trailingText));
    }

    void paintArrow() {
        if (!item_.submenu())
            return;
        const bool mirrored = option_.direction == Qt::RightToLeft;
        const QPointF corner =
            glyphCorner({5, 9}, part(option_.rect.width() - kRightMargin - 5, 5));
        const auto at = [&](double x, double y) {
            return corner + QPointF(mirrored ? 5 - x : x, y);
        };
        painter_.setPen(QPen(secondary_, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter_.drawPolyline(QPolygonF{at(0.5, 0.5), at(4.5, 4.5), at(0.5, 8.5)});
    }

    QPainter& painter_;
    const MenuItem& item_;
    const MenuColumns& columns_;
    const QStyleOptionMenuItem& option_;
    const QFont& font_;
    const Parts parts_;
    bool enabled_ = false;
    QColor text_;
    QColor secondary_;
};

void paintSeparator(QPainter& painter, const QStyleOptionMenuItem& option) {
    painter.fillRect(QRect(option.rect.left() + kSeparatorInset, option.rect.center().y(),
                           option.rect.width() - 2 * kSeparatorInset, 1),
                     menuLineColor(option.palette));
}

} // namespace

MenuColumns menuColumns(const std::vector<std::shared_ptr<MenuItem>>& items, const QFont& font) {
    MenuColumns columns;
    for (const auto& item : items) {
        if (item->isHidden())
            continue;
        columns.image = std::max(columns.image, shownSize(item->trailingImage()).width());
        if (hasTrailing(*item))
            columns.shortcut = std::max(columns.shortcut, shortcutWidth(*item, font));
        columns.submenus = columns.submenus || item->submenu();
    }
    return columns;
}

QSize menuRowSize(const MenuItem& item, const MenuColumns& columns, const QFont& font) {
    if (item.isSeparatorItem())
        return {1, kSeparatorHeight}; // QMenu leaves out empty rows
    const Parts parts(item, columns, font);
    const int text = std::min(textWidth(item, parts), kMaximumTitle);
    return {parts.left + text + parts.trailing() + parts.right,
            parts.height() + (item.isSectionHeader() ? kHeaderMargin : 0)};
}

bool isTitleCut(const MenuItem& item, const MenuColumns& columns, const QFont& font, int width) {
    const Parts parts(item, columns, font);
    return textWidth(item, parts) > width - parts.left - parts.trailing() - parts.right;
}

QColor menuLineColor(const QPalette& palette) {
    QColor color = palette.color(QPalette::Active, QPalette::Text);
    if (color != palette.color(QPalette::Active, QPalette::PlaceholderText))
        color.setAlphaF(float(kLineOpacity));
    return color;
}

void paintMenuHighlight(QPainter& painter, const QRect& row, const QPalette& palette) {
    constexpr int kInset = 5;
    constexpr double kRadius = 5;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette.highlight());
    painter.drawRoundedRect(row.adjusted(kInset, 0, -kInset, 0), kRadius, kRadius);
    painter.restore();
}

void paintMenuRow(QPainter& painter, const MenuItem& item, const MenuColumns& columns,
                  const QStyleOptionMenuItem& option, const QFont& font) {
    if (item.isSeparatorItem())
        return paintSeparator(painter, option);
    const auto selected = QStyle::State_Enabled | QStyle::State_Selected;
    if ((option.state & selected) == selected)
        paintMenuHighlight(painter, option.rect, option.palette);
    RowPainter(painter, item, columns, option, font).paint();
}

} // namespace platform::qt
