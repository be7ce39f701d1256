#include "apps/preferences/MenuExtraSwitches.h"

#include "menuextras/MenuExtraTools.h"
#include "paths/HomeFolders.h"
#include "platform/FileManager.h"
#include "platform/MainThread.h"
#include "platform/base/PathStrings.h"

#include <QCheckBox>
#include <QEvent>
#include <QPointer>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using platform::Bundle;

namespace apps {
namespace {

constexpr int kUnknownTag = -1;
constexpr int kLighter = 280; // percent

/// The menu extras that a pane ships, by file name.
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

MenuExtraSwitches::MenuExtraSwitches(const Bundle& pane, std::function<bool()> isBarRunning)
    : isBarRunning_(std::move(isBarRunning)), message_(new QLabel) {
    worker_.setMaxThreadCount(1);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(new QLabel("Show in the menu bar:"));
    for (const auto& extra : shippedExtras(pane))
        addSwitch(*extra);
    if (switches_.empty())
        column->addWidget(new QLabel("This pane ships no menu extras."));
    message_->setWordWrap(true);
    column->addWidget(message_);
    column->addStretch();
    colourBoxes();
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
    auto* const box = new QCheckBox(
        QString::fromStdString(extra.stringForInfoDictionaryKey("CFBundleName").value_or(name)));
    box->setEnabled(false); // until the bar has been asked
    connect(box, &QCheckBox::clicked, this,
            [this, index = switches_.size()](bool on) { turn(index, on); });
    layout()->addWidget(box);
    switches_.push_back({tag, identifier, box});
}

void MenuExtraSwitches::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        colourBoxes();
}

/// On a dark ground the style's boxes can hardly be seen.
void MenuExtraSwitches::colourBoxes() {
    QPalette colours = palette();
    const QColor window = colours.color(QPalette::Window);
    if (window.lightness() < 128)
        colours.setColor(QPalette::Base, window.lighter(kLighter));
    for (const Switch& entry : switches_)
        entry.box->setPalette(colours);
}

void MenuExtraSwitches::refresh() {
    for (const Switch& entry : switches_) {
        later([this, box = entry.box, identifier = entry.identifier] {
            showLater([this, box, loaded = isLoaded(identifier)] {
                const auto found = std::ranges::find(switches_, box, &Switch::box);
                if (found->isBusy)
                    return;
                box->setChecked(loaded);
                box->setEnabled(true);
            });
        });
    }
}

void MenuExtraSwitches::turn(std::size_t index, bool on) {
    Switch& entry = switches_[index];
    entry.isBusy = true;
    entry.box->setEnabled(false);
    message_->setText(QString(on ? "Turning on %1 …" : "Turning off %1 …").arg(entry.box->text()));
    later([this, index, on, tag = entry.tag, identifier = entry.identifier] {
        paths::makeHomeFolders(platform::fileManager());
        HalvexMenuExtraTools::menuExtraToggle(tag, on ? 1 : 0);
        showLater([this, index, on, loaded = isLoaded(identifier)] { turned(index, on, loaded); });
    });
}

void MenuExtraSwitches::turned(std::size_t index, bool wanted, bool loaded) {
    Switch& entry = switches_[index];
    entry.isBusy = false;
    entry.box->setChecked(loaded);
    entry.box->setEnabled(true);
    entry.box->setFocus(); // disabling it has taken the focus away
    const QString failure = wanted ? "%1 could not be turned on; the system log says why."
                                   : "%1 could not be turned off; the system log says why.";
    message_->setText(loaded == wanted ? QString() : failure.arg(entry.box->text()));
}

bool MenuExtraSwitches::isLoaded(const std::string& identifier) const {
    return isBarRunning_() && HalvexMenuExtraTools::isExtraLoaded(identifier);
}

void MenuExtraSwitches::later(std::function<void()> work) {
    worker_.start(std::move(work));
}

void MenuExtraSwitches::showLater(std::function<void()> code) {
    const auto unlessGone = [self = QPointer(this), code = std::move(code)] {
        if (self)
            code();
    };
    platform::mainThread().perform(unlessGone, platform::MainThread::Wait::No);
}

} // namespace apps
