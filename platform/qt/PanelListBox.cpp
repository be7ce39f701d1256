#include "platform/qt/PanelListBox.h"

#include "platform/qt/PanelPainting.h"
#include "platform/qt/PanelStyle.h"
#include "platform/qt/QtImage.h"
#include "platform/qt/Strings.h"

#include <QAbstractListModel>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>

namespace platform::qt {

/// The rows of a list. Its number of rows changes when it is told of a change.
class PanelListModel final : public QAbstractListModel {
  public:
    PanelListModel(std::shared_ptr<ListBox> list, QObject* parent)
        : QAbstractListModel(parent), list_(std::move(list)) {
        reset();
    }

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : count_;
    }
    QVariant data(const QModelIndex& index, int role) const override {
        const ListRow* const row = rowAt(index);
        if (row && role == Qt::DisplayRole)
            return qString(row->text);
        if (row && role == Qt::AccessibleTextRole)
            return qString(row->detail.empty() ? row->text : row->text + ", " + row->detail);
        return {};
    }
    const ListRow* rowAt(const QModelIndex& index) const {
        const auto position = static_cast<std::size_t>(index.row());
        return list_ && position < list_->rows().size() ? &list_->rows()[position] : nullptr;
    }

    void reset() {
        beginResetModel();
        count_ = list_ ? static_cast<int>(list_->rows().size()) : 0;
        endResetModel();
    }
    void clear() {
        list_.reset();
        reset();
    }
    void insert(int row) {
        beginInsertRows({}, row, row);
        ++count_;
        endInsertRows();
    }
    void remove(int row) {
        beginRemoveRows({}, row, row);
        --count_;
        endRemoveRows();
    }
    void update(int row) { emit dataChanged(index(row), index(row)); }

  private:
    std::shared_ptr<ListBox> list_;
    int count_ = 0;
};

namespace {

constexpr int kImageSide = 16;
constexpr int kPadding = 6;
constexpr int kRowMargin = 4; // above and below the text

/// Draws a row: image, text, and at the right the detail in a paler colour.
class RowDelegate final : public QStyledItemDelegate {
  public:
    RowDelegate(const PanelListModel& model, QObject* parent)
        : QStyledItemDelegate(parent), model_(model) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        return {0, std::max(option.fontMetrics.height(), kImageSide) + 2 * kRowMargin};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const ListRow* const row = model_.rowAt(index);
        if (!row)
            return;
        const PanelColors colors(option.palette);
        const bool isSelected = option.state & QStyle::State_Selected;
        const bool isActive = option.state & QStyle::State_HasFocus || hasFocus(option.widget);
        painter->save();
        painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        const bool isEnabled = option.state & QStyle::State_Enabled;
        if (isSelected) {
            painter->setOpacity(isEnabled ? 1 : kPanelDisabledOpacity);
            painter->setPen(Qt::NoPen);
            painter->setBrush(isActive ? colors.accent : colors.focusFill);
            painter->drawRoundedRect(option.rect, kPanelControlRadius - 1, kPanelControlRadius - 1);
            painter->setOpacity(1);
        }
        QRect area = option.rect.adjusted(kPadding, 0, -kPadding, 0);
        const auto group = isEnabled ? QPalette::Active : QPalette::Disabled;
        const QColor text = isSelected && isActive ? colors.accentText
                                                   : option.palette.color(group, QPalette::Text);
        paintImage(*painter, *row, area, text, option);
        paintTexts(*painter, *row, area, option, text);
        painter->restore();
    }

  private:
    static bool hasFocus(const QWidget* widget) { return widget && widget->hasFocus(); }

    /// Removes the image's place from @p area.
    static void paintImage(QPainter& painter, const ListRow& row, QRect& area, const QColor& text,
                           const QStyleOptionViewItem& option) {
        const auto* const image = dynamic_cast<const QtImage*>(row.image.get());
        if (!image || image->size().width <= 0 || image->size().height <= 0)
            return;
        QSizeF size(image->size().width, image->size().height);
        if (size.width() > kImageSide || size.height() > kImageSide)
            size.scale(kImageSide, kImageSide, Qt::KeepAspectRatio);
        const QRect square = QStyle::visualRect(
            option.direction, area,
            {area.left(), area.center().y() + 1 - kImageSide / 2, kImageSide, kImageSide});
        QRectF place({}, size);
        place.moveCenter(QRectF(square).center());
        // The colour of a template says that it is disabled.
        const bool isPale = !(option.state & QStyle::State_Enabled) && !image->isTemplate();
        painter.setOpacity(isPale ? kPanelDisabledOpacity : 1);
        paintPanelImage(painter, *image, place, text);
        painter.setOpacity(1);
        area = QStyle::visualRect(option.direction, area,
                                  area.adjusted(kImageSide + kPadding, 0, 0, 0));
    }

    static void paintTexts(QPainter& painter, const ListRow& row, const QRect& area,
                           const QStyleOptionViewItem& option, QColor color) {
        const QFontMetrics& metrics = option.fontMetrics;
        const auto alignment = [&](Qt::AlignmentFlag side) {
            const auto flags = QStyle::visualAlignment(option.direction, side) | Qt::AlignAbsolute;
            return static_cast<int>(flags | Qt::AlignVCenter) | Qt::TextSingleLine;
        };
        QRect rest = area;
        if (!row.detail.empty()) {
            const QString detail =
                metrics.elidedText(qString(row.detail), Qt::ElideRight, area.width() / 2);
            QColor pale = color;
            pale.setAlphaF(color.alphaF() * 0.7F);
            painter.setPen(pale);
            painter.drawText(area, alignment(Qt::AlignRight), detail);
            const int taken = metrics.horizontalAdvance(detail) + 2 * kPadding;
            rest = QStyle::visualRect(option.direction, area, area.adjusted(0, 0, -taken, 0));
        }
        painter.setPen(color);
        painter.drawText(rest, alignment(Qt::AlignLeft),
                         metrics.elidedText(qString(row.text), Qt::ElideRight, rest.width()));
    }

    const PanelListModel& model_;
};

} // namespace

PanelListBox::PanelListBox(std::shared_ptr<ListBox> list, std::string owner, QWidget* parent)
    : QListView(parent), PanelControl(*this, list, std::move(owner)),
      model_(new PanelListModel(list, this)) {
    setModel(model_);
    setItemDelegate(new RowDelegate(*model_, this));
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setFrameShape(QFrame::StyledPanel);
    viewport()->setAutoFillBackground(false);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { followSelection(); });
    connect(this, &QAbstractItemView::activated, this,
            [this](const QModelIndex& index) { activate(index); });
    list->setListDisplay(this);
    controlDidChange();
}

PanelListBox::~PanelListBox() {
    detach();
}

void PanelListBox::willDetach() {
    control<ListBox>()->setListDisplay(nullptr);
    applyRows([](PanelListModel& model) { model.clear(); });
}

void PanelListBox::applyRows(const std::function<void(PanelListModel& model)>& code) {
    const QScopedValueRollback guard(isApplying_, true);
    code(*model_);
}

void PanelListBox::applySettings() {
    const auto selected = control<ListBox>()->selectedRow();
    applyRows([&](const PanelListModel& model) {
        if (selected)
            setCurrentIndex(model.index(static_cast<int>(*selected)));
        else
            selectionModel()->clear();
    });
}

void PanelListBox::rowsDidChange() {
    applyRows([](PanelListModel& model) { model.reset(); });
    applySettings();
}

void PanelListBox::rowDidChange(std::size_t index) {
    model_->update(static_cast<int>(index));
}

void PanelListBox::rowWasInserted(std::size_t index) {
    applyRows([&](PanelListModel& model) { model.insert(static_cast<int>(index)); });
}

void PanelListBox::rowWasRemoved(std::size_t index) {
    applyRows([&](PanelListModel& model) { model.remove(static_cast<int>(index)); });
    applySettings(); // the next row would be selected
}

void PanelListBox::scrollToRow(std::size_t index) {
    scrollTo(model_->index(static_cast<int>(index)));
}

void PanelListBox::followSelection() {
    const auto list = control<ListBox>();
    if (!list || isApplying_)
        return;
    const QModelIndexList rows = selectionModel()->selectedIndexes();
    std::optional<std::size_t> row;
    if (!rows.isEmpty())
        row = static_cast<std::size_t>(rows.front().row());
    run([&] { list->userDidSelect(row); });
}

void PanelListBox::activate(const QModelIndex& index) {
    const auto list = control<ListBox>();
    if (list && index.isValid())
        run([&] { list->userDidActivate(static_cast<std::size_t>(index.row())); });
}

void PanelListBox::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        return QListView::keyPressEvent(event);
    const auto list = control<ListBox>();
    const bool activates = list && list->canActivate() && list->selectedRow();
    event->setAccepted(activates); // otherwise for the panel's default button
    if (activates)
        activate(model_->index(static_cast<int>(*list->selectedRow())));
}

} // namespace platform::qt
