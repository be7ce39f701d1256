#include "apps/menubar/FirstStart.h"

#include "identifiers/ExportedIdentifiers.h"
#include "menuextras/MenuExtraTools.h"
#include "platform/Log.h"

#include <QCoreApplication>

using platform::logLine;

namespace apps {

void FirstStart::turnOnItems() {
    if (!HalvexMenuExtraTools::HalvexPrefsPanelPath())
        return;
    remaining_ = {HalvexProCalMenuID, HalvexMenuID}; // the clock comes first: it is further right
    halvexctl_.setProcessChannelMode(QProcess::ForwardedChannels);
    halvexctl_.setProgram(QCoreApplication::applicationDirPath() + "/halvexctl");
    connect(&halvexctl_, &QProcess::finished, this, [this] { turnOnNext(); });
    connect(&halvexctl_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            logLine("cannot turn on the clock and the calendar: %@: %@",
                    halvexctl_.program().toStdString(), halvexctl_.errorString().toStdString());
    });
    turnOnNext();
}

void FirstStart::turnOnNext() {
    if (remaining_.empty())
        return;
    halvexctl_.setArguments({"toggle", QString::fromStdString(remaining_.back()), "on"});
    remaining_.pop_back();
    halvexctl_.start();
}

} // namespace apps
