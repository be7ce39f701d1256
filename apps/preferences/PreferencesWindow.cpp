#include "apps/preferences/PreferencesWindow.h"

#include "apps/preferences/MenuExtraSwitches.h"
#include "menuextras/ExportedIdentifiers.h"
#include "platform/Log.h"

#include <QAction>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

using platform::Bundle;

namespace apps {
namespace {

constexpr QSize kSize(440, 230);
constexpr int kMargin = 20;
constexpr double kHeadline = 1.5; // of the font's size

QLabel* headline(const QString& text) {
    auto* const label = new QLabel(text);
    QFont face = label->font();
    face.setPointSizeF(face.pointSizeF() * kHeadline);
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
    return version ? "Version " + QString::fromStdString(*version) : QString();
}

} // namespace

PreferencesWindow::PreferencesWindow(std::function<bool()> isBarRunning)
    : isBarRunning_(std::move(isBarRunning)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    resize(kSize);
    auto* const closing = new QAction(this);
    closing->setShortcuts({QKeySequence(QKeySequence::Close), QKeySequence(Qt::Key_Escape)});
    connect(closing, &QAction::triggered, this, &QWidget::close);
    addAction(closing);
}

PreferencesWindow::~PreferencesWindow() {
    delete page_;
    open(nullptr);
}

void PreferencesWindow::show(const PaneChoice& choice) {
    if (pane_ && choice.pane && isSame(*pane_, *choice.pane))
        return;
    QVBoxLayout& column = newPage();
    open(choice.pane);
    if (pane_)
        showPane(column);
    else
        showReason(choice, column);
}

void PreferencesWindow::open(std::shared_ptr<Bundle> pane) {
    if (pane_)
        Bundle::setCode(pane_, Bundle::Code::Unloaded);
    pane_ = std::move(pane);
    if (pane_)
        Bundle::setCode(pane_, Bundle::Code::Loaded);
}

void PreferencesWindow::showPane(QVBoxLayout& column) {
    const QString name = QString::fromStdString(paneName(*pane_));
    setWindowTitle(name);
    column.addWidget(headline(name));
    column.addWidget(new QLabel(versionText(*pane_)));
    column.addSpacing(kMargin);
    if (pane_->bundleIdentifier() == HalvexPrefsBundleID) {
        switches_ = new MenuExtraSwitches(*pane_, isBarRunning_);
        column.addWidget(switches_, 1);
        return;
    }
    column.addWidget(paragraph("This pane has no settings that can be shown here."), 1);
}

void PreferencesWindow::showReason(const PaneChoice& choice, QVBoxLayout& column) {
    platform::logLine("preference pane %@ cannot be shown: %@", choice.wanted, choice.reason);
    setWindowTitle("Preferences");
    column.addWidget(headline("This preference pane cannot be shown"));
    column.addSpacing(kMargin / 2);
    column.addWidget(paragraph(QString::fromStdString(choice.wanted)));
    column.addWidget(paragraph(QString::fromStdString(choice.reason)));
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

void PreferencesWindow::present() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    QWidget::show();
    raise();
    activateWindow();
}

void PreferencesWindow::refresh() {
    if (switches_)
        switches_->refresh();
}

} // namespace apps
