#include "apps/preferences/PreferencesWindow.h"

#include "identifiers/ExportedIdentifiers.h"
#include "platform/Log.h"
#include "platform/qt/Strings.h"

#include <QAction>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

using platform::Bundle;
using platform::qt::qString;

namespace apps {
namespace {

constexpr QSize kSize(440, 230);
constexpr int kMargin = 20;
constexpr double kHeadlineScale = 1.5; // relative to the font size

QLabel* headline(const QString& text) {
    auto* const label = new QLabel(text);
    QFont face = label->font();
    face.setPointSizeF(face.pointSizeF() * kHeadlineScale);
    face.setBold(true);
    label->setFont(face);
    label->setWordWrap(true);
    return label;
}

QLabel* paragraph(const QString& text) {
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setWordWrap(true);
    return label;
}

bool isSame(const Bundle& one, const Bundle& other) {
    return one.bundlePath() == other.bundlePath() &&
           *one.infoDictionary() == *other.infoDictionary();
}

QString versionText(const Bundle& pane) {
    const auto version = pane.stringForInfoDictionaryKey("CFBundleShortVersionString");
    return version ? "Version " + qString(*version) : QString();
}

} // namespace

PreferencesWindow::PreferencesWindow(BarQueries bar) : bar_(std::move(bar)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    resize(kSize);
    auto* const closeAction = new QAction(this);
    closeAction->setShortcuts({QKeySequence(QKeySequence::Close), QKeySequence(Qt::Key_Escape)});
    connect(closeAction, &QAction::triggered, this, &QWidget::close);
    addAction(closeAction);
}

PreferencesWindow::~PreferencesWindow() {
    delete page_;
    setPane(nullptr);
}

void PreferencesWindow::showPane(const PaneLookup& lookup) {
    if (pane_ && lookup.pane && isSame(*pane_, *lookup.pane))
        return;
    QVBoxLayout& column = newPage();
    setPane(lookup.pane);
    if (pane_)
        fillPanePage(column);
    else
        fillErrorPage(lookup, column);
}

void PreferencesWindow::setPane(std::shared_ptr<Bundle> pane) {
    if (pane_)
        Bundle::setCodeState(pane_, Bundle::Code::Unloaded);
    pane_ = std::move(pane);
    if (pane_)
        Bundle::setCodeState(pane_, Bundle::Code::Loaded);
}

void PreferencesWindow::fillPanePage(QVBoxLayout& column) {
    const QString name = qString(paneName(*pane_));
    setWindowTitle(name);
    column.addWidget(headline(name));
    column.addWidget(new QLabel(versionText(*pane_)));
    column.addSpacing(kMargin);
    if (pane_->bundleIdentifier() == HalvexPrefsBundleID) {
        switches_ = new MenuExtraSwitches(*pane_, bar_);
        column.addWidget(switches_, 1);
        return;
    }
    column.addWidget(paragraph("This pane has no settings that this program can show."), 1);
}

void PreferencesWindow::fillErrorPage(const PaneLookup& lookup, QVBoxLayout& column) {
    platform::logLine("preference pane %@ cannot be shown: %@", lookup.request, lookup.error);
    setWindowTitle("Preferences");
    column.addWidget(headline("This preference pane cannot be shown"));
    column.addSpacing(kMargin / 2);
    column.addWidget(paragraph(qString(lookup.request)));
    column.addWidget(paragraph(qString(lookup.error)));
    column.addStretch();
}

QVBoxLayout& PreferencesWindow::newPage() {
    switches_ = nullptr;
    delete page_;
    page_ = new QWidget;
    layout()->addWidget(page_);
    auto* const column = new QVBoxLayout(page_);
    column->setContentsMargins(0, 0, 0, 0);
    return *column;
}

void PreferencesWindow::refresh() {
    if (switches_)
        switches_->refresh();
}

} // namespace apps
