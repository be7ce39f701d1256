#pragma once

#include "platform/widgets/Menu.h"

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QRect>
#include <QSize>

#include <memory>
#include <vector>

class QPainter;
class QStyleOptionMenuItem;

/// How an item of a menu looks. Lengths are in points. Main thread.
namespace platform::qt {

/// The parts of a menu's rows that line up on the right.
struct MenuColumns {
    int image = 0;    ///< the width of the trailing images
    int shortcut = 0; ///< the width of the shortcuts beside a trailing text or image
    bool submenus = false;
};

MenuColumns menuColumns(const std::vector<std::shared_ptr<MenuItem>>& items, const QFont& font);

/// Returns the size that the item needs in a menu with @p columns.
QSize menuRowSize(const MenuItem& item, const MenuColumns& columns, const QFont& font);

/// Paints an item into option.rect, with the highlight if it is selected and enabled.
void paintMenuRow(QPainter& painter, const MenuItem& item, const MenuColumns& columns,
                  const QStyleOptionMenuItem& option, const QFont& font);

/// Returns the colour of separators and borders: a shade of the text's colour or, with high
/// contrast, in which secondary text has the colour of other text, that colour.
QColor menuLineColor(const QPalette& palette);

/// Paints the background of a selected item.
void paintMenuHighlight(QPainter& painter, const QRect& row, const QPalette& palette);

/// Returns whether @p width is too small for the item's title.
bool isTitleCut(const MenuItem& item, const MenuColumns& columns, const QFont& font, int width);

} // namespace platform::qt
