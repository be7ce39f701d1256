#include "apps/preferences/MenuExtraSwitches.h"

#include "menuextras/MenuExtraTools.h"
#include "paths/HomeFolders.h"
#include "platform/FileManager.h"
#include "platform/MainThread.h"
#include "platform/base/PathStrings.h"
#include "platform/qt/Strings.h"

#include <QCheckBox>
#include <QEvent>
#include <QPointer>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using platform::Bundle;
using platform::qt::qString;

namespace apps {
namespace {

constexpr int kUnknownTag = -1;
constexpr int kGap = 8;            // points
constexpr int kBoxLightness = 280; // percent of the window colour

/// Returns the menu extras in a pane, sorted by file name.
std::vector<std::shared_ptr<Bundle>> shippedExtras(const Bundle& pane) {
    std::vector<std::shared_ptr<Bundle>> extras;
    const std::string folder = pane.builtInPlugInsPath();
    auto names =
        platform::fileManager().contentsOfDirectory(folder).value_or(std::vector<std::string>());
    std::ranges::sort(names);
    for (const std::string& name : names) {
        if (platform::pathExtension(name) != "menu")
            continue;
        if (auto extra = Bundle::bundleWithPath(platform::appendingPathComponent(folder, name)))
            extras.push_back(std::move(extra));
    }
    return extras;
}

} // namespace

MenuExtraSwitches::MenuExtraSwitches(const Bundle& pane, BarQueries bar)
    : bar_(std::move(bar)), message_(new QLabel), thirdPartyProblems_(new QLabel) {
    worker_.setMaxThreadCount(1);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(new QLabel("Show in the menu bar:"));
    for (const auto& extra : shippedExtras(pane))
        addSwitch(*extra);
    if (switches_.empty())
        column->addWidget(new QLabel("This pane contains no menu extras."));
    message_->setWordWrap(true);
    column->addWidget(message_);
    thirdPartyProblems_->setTextFormat(Qt::PlainText);
    thirdPartyProblems_->setWordWrap(true);
    column->addSpacing(kGap);
    column->addWidget(thirdPartyProblems_);
    column->addStretch();
    updateBoxColours();
    refresh();
}

MenuExtraSwitches::~MenuExtraSwitches() {
    worker_.clear();
    worker_.waitForDone();
}

void MenuExtraSwitches::addSwitch(const Bundle& extra) {
    const std::string identifier = extra.bundleIdentifier().value_or("");
    const auto tag = HalvexMenuExtraTools::menuExtraTagFromID(identifier);
    if (tag == kUnknownTag)
        return;
    const std::string name = platform::lastPathComponent(extra.bundlePath());
    auto* const box =
        new QCheckBox(qString(extra.stringForInfoDictionaryKey("CFBundleName").value_or(name)));
    box->setEnabled(false); // until the bar has replied
    connect(box, &QCheckBox::clicked, this,
            [this, index = switches_.size()](bool on) { toggle(index, on); });
    layout()->addWidget(box);
    auto* const problem = new QLabel;
    problem->setTextFormat(Qt::PlainText);
    problem->setWordWrap(true);
    problem->hide();
    layout()->addWidget(problem);
    switches_.push_back({tag, identifier, box, problem});
}

void MenuExtraSwitches::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        updateBoxColours();
}

/// Lightens the boxes on a dark background, where the style draws them too dark to see.
void MenuExtraSwitches::updateBoxColours() {
    QPalette colours = palette();
    const QColor window = colours.color(QPalette::Window);
    if (window.lightness() < 128)
        colours.setColor(QPalette::Base, window.lighter(kBoxLightness));
    for (const Switch& entry : switches_)
        entry.box->setPalette(colours);
}

void MenuExtraSwitches::refresh() {
    for (const Switch& entry : switches_) {
        runOnWorker([this, box = entry.box, identifier = entry.identifier] {
            runOnMainThread([this, box, state = stateOf(identifier)] {
                const auto found = std::ranges::find(switches_, box, &Switch::box);
                if (!found->isBusy)
                    showState(*found, state);
            });
        });
    }
    runOnWorker([this] {
        const std::string problems = bar_.isRunning() ? bar_.thirdPartyProblems() : "";
        runOnMainThread([this, problems] {
            thirdPartyProblems_->setText(qString(problems));
            thirdPartyProblems_->setVisible(!problems.empty());
        });
    });
}

void MenuExtraSwitches::toggle(std::size_t index, bool on) {
    Switch& entry = switches_[index];
    entry.isBusy = true;
    entry.box->setEnabled(false);
    message_->setText(QString(on ? "Turning on %1 …" : "Turning off %1 …").arg(entry.box->text()));
    runOnWorker([this, index, on, tag = entry.tag, identifier = entry.identifier] {
        paths::makeHomeFolders(platform::fileManager());
        HalvexMenuExtraTools::menuExtraToggle(tag, on ? 1 : 0);
        runOnMainThread(
            [this, index, on, state = stateOf(identifier)] { showToggleResult(index, on, state); });
    });
}

void MenuExtraSwitches::showState(const Switch& entry, const State& state) {
    entry.box->setChecked(state.isLoaded);
    entry.box->setEnabled(true);
    entry.problem->setText(qString(state.problem));
    entry.problem->setVisible(!state.problem.empty());
}

void MenuExtraSwitches::showToggleResult(std::size_t index, bool requested, const State& state) {
    Switch& entry = switches_[index];
    entry.isBusy = false;
    showState(entry, state);
    entry.box->setFocus(); // disabling it moved the focus
    const QString failure = requested ? "%1 could not be turned on. See the system log."
                                      : "%1 could not be turned off. See the system log.";
    message_->setText(state.isLoaded == requested ? QString() : failure.arg(entry.box->text()));
}

MenuExtraSwitches::State MenuExtraSwitches::stateOf(const std::string& identifier) const {
    if (!bar_.isRunning())
        return {};
    return {HalvexMenuExtraTools::isExtraLoaded(identifier), bar_.problem(identifier)};
}

void MenuExtraSwitches::runOnWorker(std::function<void()> work) {
    worker_.start(std::move(work));
}

void MenuExtraSwitches::runOnMainThread(std::function<void()> work) {
    const auto unlessDestroyed = [self = QPointer(this), work = std::move(work)] {
        if (self)
            work();
    };
    platform::mainThread().perform(unlessDestroyed, platform::MainThread::Wait::No);
}

} // namespace apps
