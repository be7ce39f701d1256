#pragma once

#include "platform/values/Image.h"
#include "platform/widgets/Control.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform {

/// A row of a list.
struct ListRow {
    std::string text;
    std::string detail{};           ///< shown in a second column, at the right
    std::shared_ptr<Image> image{}; ///< shown before the text, scaled down to at most 16 x 16
                                    ///< points; a template has the colour of the text
};

/// Follows changes of a list's rows. Used by the window of the panel.
class ListDisplay : NonCopyable {
  public:
    virtual ~ListDisplay();

    // Called after the change.
    virtual void rowsDidChange() = 0; ///< all rows
    virtual void rowDidChange(std::size_t index) = 0;
    virtual void rowWasInserted(std::size_t index) = 0;
    virtual void rowWasRemoved(std::size_t index) = 0;
    virtual void scrollToRow(std::size_t index) = 0;
};

/// A list of rows in a panel, of which one can be selected. The arrow keys, Page Up, Page Down,
/// Home, End and typed letters select a row; a double click and Return activate it. It scrolls, and
/// thousands of rows cost no more to draw than those that fit. Main thread only.
class ListBox final : public Control {
  public:
    using SelectionHandler = std::function<void(std::optional<std::size_t> row)>;
    using ActivationHandler = std::function<void(std::size_t row)>;

    /// Creates an empty list.
    explicit ListBox(const Rect& frame);
    ~ListBox() override;

    const std::vector<ListRow>& rows() const { return rows_; }
    /// Returns the index of the selected row, or std::nullopt.
    std::optional<std::size_t> selectedRow() const { return selected_; }

    /// Replaces all rows. No row is selected afterwards.
    void setRows(std::vector<ListRow> rows);
    // Single rows. The selected row stays selected until it is removed.
    // @throws Exception (NSInvalidArgumentException) if there is no such row.
    void setRow(std::size_t index, ListRow row);
    void insertRow(std::size_t index, ListRow row); ///< before the row at @p index, or at the end
    void removeRow(std::size_t index);

    /// Selects a row, or none, without calling a handler, and scrolls to it.
    /// @throws Exception (NSInvalidArgumentException) if there is no such row.
    void setSelectedRow(std::optional<std::size_t> row);
    /// Scrolls as far as needed to show a row. @throws Exception (NSInvalidArgumentException) if
    /// there is no such row.
    void scrollToRow(std::size_t row);

    /// Sets the function to call after the user has selected another row, or none, replacing the
    /// previous one.
    void setSelectionHandler(SelectionHandler handler) { selectionHandler_ = std::move(handler); }
    /// Sets the function to call when the user activates a row, replacing the previous one. Without
    /// it, Return acts on the panel.
    void setActivationHandler(ActivationHandler handler) {
        activationHandler_ = std::move(handler);
    }
    bool canActivate() const { return activationHandler_ != nullptr; }

    // Called by the panel's window.

    void setListDisplay(ListDisplay* display) { listDisplay_ = display; }
    void userDidSelect(std::optional<std::size_t> row);
    void userDidActivate(std::size_t row);

  private:
    void check(std::size_t row, std::size_t limit) const;

    std::vector<ListRow> rows_;
    std::optional<std::size_t> selected_;
    SelectionHandler selectionHandler_;
    ActivationHandler activationHandler_;
    ListDisplay* listDisplay_ = nullptr;
};

} // namespace platform
