#include "apps/menubar/AboutWindow.h"

#include "apps/support/Texts.h"

#include <QAction>
#include <QLabel>
#include <QVBoxLayout>

namespace apps {
namespace {

constexpr int kMargin = 28;
constexpr int kSpacing = 8;
constexpr double kHeadlineScale = 1.6; // relative to the font size

QLabel* line(const QString& text, QPalette::ColorRole role) {
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setForegroundRole(role);
    return label;
}

QLabel* headline(const QString& text) {
    QLabel* const label = line(text, QPalette::WindowText);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * kHeadlineScale);
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    return label;
}

} // namespace

AboutWindow::AboutWindow() {
    setWindowTitle(localized("About the Menu Bar"));
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(2 * kMargin, kMargin, 2 * kMargin, kMargin);
    column->setSpacing(kSpacing);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(headline(localized("Halvex Menu Bar")));
    const std::string version = fill(localized("Version %1"), {HALVEX_VERSION});
    column->addWidget(line(QString::fromStdString(version), QPalette::WindowText));
    column->addSpacing(kSpacing);
    column->addWidget(
        line(localized("Copyright © 2026 the HalvexTools authors"), QPalette::PlaceholderText));
    column->addWidget(
        line(localized("Free software under the MIT licence"), QPalette::PlaceholderText));
    auto* const closing = new QAction(this);
    closing->setShortcuts({QKeySequence(QKeySequence::Close), QKeySequence(Qt::Key_Escape)});
    connect(closing, &QAction::triggered, this, &QWidget::close);
    addAction(closing);
}

} // namespace apps
