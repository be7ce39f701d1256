#include "platform/widgets/ListBox.h"

#include "platform/base/Exception.h"

namespace platform {
namespace {

auto at(std::vector<ListRow>& rows, std::size_t index) {
    return rows.begin() + static_cast<std::ptrdiff_t>(index);
}

} // namespace

ListDisplay::~ListDisplay() = default;

ListBox::ListBox(const Rect& frame) : Control(frame) {}
ListBox::~ListBox() = default;

void ListBox::check(std::size_t row, std::size_t limit) const {
    if (row >= limit)
        throw Exception(kInvalidArgumentException, "the list has no row " + std::to_string(row) +
                                                       ", but " + std::to_string(rows_.size()) +
                                                       " rows");
}

void ListBox::setRows(std::vector<ListRow> rows) {
    rows_ = std::move(rows);
    selected_.reset();
    if (listDisplay_)
        listDisplay_->rowsDidChange();
}

void ListBox::setRow(std::size_t index, ListRow row) {
    check(index, rows_.size());
    rows_[index] = std::move(row);
    if (listDisplay_)
        listDisplay_->rowDidChange(index);
}

void ListBox::insertRow(std::size_t index, ListRow row) {
    check(index, rows_.size() + 1);
    rows_.insert(at(rows_, index), std::move(row));
    if (selected_ && *selected_ >= index)
        ++*selected_;
    if (listDisplay_)
        listDisplay_->rowWasInserted(index);
}

void ListBox::removeRow(std::size_t index) {
    check(index, rows_.size());
    rows_.erase(at(rows_, index));
    if (selected_ == index)
        selected_.reset();
    else if (selected_ && *selected_ > index)
        --*selected_;
    if (listDisplay_)
        listDisplay_->rowWasRemoved(index);
}

void ListBox::setSelectedRow(std::optional<std::size_t> row) {
    if (row)
        check(*row, rows_.size());
    change(selected_, row);
    if (row && listDisplay_)
        listDisplay_->scrollToRow(*row);
}

void ListBox::scrollToRow(std::size_t row) {
    check(row, rows_.size());
    if (listDisplay_)
        listDisplay_->scrollToRow(row);
}

void ListBox::userDidSelect(std::optional<std::size_t> row) {
    if (row == selected_)
        return;
    selected_ = row;
    if (const auto handler = selectionHandler_)
        handler(row);
}

void ListBox::userDidActivate(std::size_t row) {
    if (const auto handler = activationHandler_)
        handler(row);
}

} // namespace platform
