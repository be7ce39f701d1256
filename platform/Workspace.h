#pragma once

#include "platform/Notifications.h"
#include "platform/ProcessList.h"
#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <string>

namespace platform {

/// What a program asks of the desktop around it. No operation waits for another program.
class Workspace : NonCopyable {
  public:
    virtual ~Workspace();

    /// Shows a file, selected, in the file browser. @p rootPath is the folder whose window is
    /// asked for; empty: whichever the browser takes. The answer is whether the request could be
    /// sent; a browser that then finds no such file tells the user itself. Main thread.
    virtual bool selectFile(const std::string& path, const std::string& rootPath) = 0;
    /// Starts the program of an application bundle (a folder whose name ends in ".app"); opens any
    /// other file or folder with the program that the desktop has for it. The answer is whether a
    /// program could be started; why not is logged for a bundle. Safe from any thread, though it
    /// may wait for the main one. An application bundle's program announces its launch by itself,
    /// once it is ready to be asked for something: it posts kDidLaunchApplication on the
    /// distributed centre.
    virtual bool openFile(const std::string& path) = 0;
    /// Hands a URL, as it is, to the program that the desktop has for its scheme: "mailto:" to the
    /// mail program. No shell reads it. The answer is whether a program could be started. Main
    /// thread.
    virtual bool openURL(const std::string& url) = 0;
    /// Has an application open a file. "System Preferences" is the only one that is known; its
    /// launch is announced on the distributed centre and on this workspace's own. The answer is
    /// whether it could be started; why not is logged. Safe from any thread.
    virtual bool openFile(const std::string& path, const std::string& withApplication) = 0;
    /// Asks for the frontmost window of an application, and no other, to come to the front. What
    /// has no window, or is gone, is left alone. Safe from any thread.
    virtual void bringToFront(ProcessSerialNumber process) = 0;
    /// Where launches are announced within this process.
    virtual NotificationCenter& notificationCenter() = 0;
    /// Moves a file, a folder or a symbolic link to the Trash, where the user finds it with the
    /// place that it came from. The answer is whether it lies there; if not it is where it was.
    /// Safe from any thread.
    virtual bool recycle(const std::string& path) = 0;
};

/// The process's workspace. Until a host installs another one: one that has a Trash, starts
/// applications, opens URLs with xdg-open and panes with "System Preferences", but cannot show or
/// open anything else.
Workspace& sharedWorkspace();
template <>
Workspace* exchangeService<Workspace>(Workspace* service);

/// Says that an application has been started, on the distributed centre and on the shared
/// workspace's own. What starts applications calls it, and an application itself once it is ready.
/// Any thread.
void announceLaunch(const std::string& applicationName);

} // namespace platform
