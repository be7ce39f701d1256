#pragma once

#include "platform/qt/PanelControl.h"
#include "platform/widgets/ListBox.h"

#include <QListView>

namespace platform::qt {

class PanelListModel;

/// The widget of a list. Main thread only.
class PanelListBox final : public QListView, public PanelControl, public ListDisplay {
    Q_OBJECT

  public:
    PanelListBox(std::shared_ptr<ListBox> list, std::string owner, QWidget* parent);
    ~PanelListBox() override;

    bool wantsFirstFocus() const override { return isEnabled() && !isHidden(); }

    void rowsDidChange() override;
    void rowDidChange(std::size_t index) override;
    void rowWasInserted(std::size_t index) override;
    void rowWasRemoved(std::size_t index) override;
    void scrollToRow(std::size_t index) override;

  protected:
    void applySettings() override;
    void willDetach() override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void followSelection();
    void activate(const QModelIndex& index);
    /// Runs code that changes the rows or the selection, which is not a change by the user.
    void applyRows(const std::function<void(PanelListModel& model)>& code);

    PanelListModel* model_;
    bool isApplying_ = false;
};

} // namespace platform::qt
