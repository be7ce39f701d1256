#include "tests/desktop/support/BarProcess.h"

#include <QDBusArgument>
#include <QUrl>

namespace test {

BarProcess::BarProcess(const QStringList& arguments, const Settings& settings,
                       std::shared_ptr<PrivateBus> sessionBus, Watcher watcher)
    : ProgramProcess(HALVEX_MENUBAR, "com.quorvanesoftware.MenuBar",
                     "com.quorvanesoftware.MenuBar1", std::move(sessionBus), settings),
      watcher_(watcher) {
    start(arguments);
}

QStringList BarProcess::withOptions(const QStringList& arguments) const {
    return watcher_ == Watcher::None ? QStringList{"--no-restart"} + arguments : arguments;
}

void BarProcess::start(const QStringList& arguments) {
    ProgramProcess::start(withOptions(arguments));
}

void BarProcess::launch(const QStringList& arguments) {
    ProgramProcess::launch(withOptions(arguments));
}

std::string BarProcess::install(const std::string& bundle) const {
    const auto folder = home() / "Library/Application Support/Quorvane Software/Menu Extras";
    return copyBundle(bundle, folder / std::filesystem::path(bundle).filename());
}

std::uint32_t BarProcess::reference(const QString& identifier) const {
    const auto answer = call("GetMenuExtra", {identifier});
    const bool loaded = answer.size() == 2 && answer.at(0).toInt() == 0;
    return loaded ? answer.at(1).toUInt() : 0;
}

int BarProcess::add(const std::string& bundle, int position) const {
    const auto url = QUrl::fromLocalFile(QString::fromStdString(bundle)).toString();
    return call("AddMenuExtra", {url, position, 0, 0, 0, 0}).value(0, -999).toInt();
}

bool BarProcess::hasLoaded(const QString& identifier) const {
    return eventually([&] { return reference(identifier) != 0; });
}

bool BarProcess::loads(const std::string& bundle, const QString& identifier, int position) const {
    return add(bundle, position) == 0 && hasLoaded(identifier);
}

int BarProcess::remove(const QString& identifier) const {
    return call("RemoveMenuExtra", {reference(identifier), 0}).value(0, -999).toInt();
}

bool BarProcess::click(const QString& identifier) const {
    return call("Click", {identifier, 0U, 1, 0}).value(0).toBool();
}

std::vector<std::string> BarProcess::identifiers() const {
    std::vector<std::string> result;
    const auto rows = call("ListMenuExtras").value(0).value<QDBusArgument>();
    rows.beginArray();
    while (!rows.atEnd()) {
        rows.beginStructure();
        result.push_back(rows.asVariant().toString().toStdString());
        rows.endStructure();
    }
    return result;
}

} // namespace test
