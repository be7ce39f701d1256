#pragma once

#include "platform/Notifications.h"
#include "platform/ProcessList.h"
#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <string>

namespace platform {

/// The desktop: applications, file browser and Trash. Operations do not wait for other programs.
class Workspace : NonCopyable {
  public:
    virtual ~Workspace();

    /// Shows a file in the file browser and selects it. @p rootPath is the folder of the
    /// browser window to use, or empty; the desktop's implementation ignores it. Returns
    /// whether the request was sent. If the file does not exist, the browser reports it to the
    /// user. Main thread only.
    virtual bool selectFile(const std::string& path, const std::string& rootPath) = 0;
    /// Starts the program of an application bundle (a folder whose name ends in ".app"), or opens
    /// any other file or folder with its default application. Returns whether a program was
    /// started; for a bundle, logs the reason if not. A bundle's program calls announceLaunch
    /// itself once it is ready to receive requests. Thread-safe; may wait for the main thread.
    virtual bool openFile(const std::string& path) = 0;
    /// Opens a URL with the default application for its scheme, such as the mail program for
    /// "mailto:". Passes the URL unchanged and without a shell. Returns whether a program was
    /// started. Main thread only.
    virtual bool openURL(const std::string& url) = 0;
    /// Opens a file with a specific application and announces its launch with announceLaunch. The
    /// only supported application is "System Preferences". Returns whether it was started, and logs
    /// the reason if not. Thread-safe.
    virtual bool openFile(const std::string& path, const std::string& withApplication) = 0;
    /// Raises the frontmost window of an application, but not its other windows. Does nothing if
    /// the process has no window or has exited. Thread-safe.
    virtual void bringToFront(ProcessSerialNumber process) = 0;
    /// Returns the center to which announceLaunch posts within this process.
    virtual NotificationCenter& notificationCenter() = 0;
    /// Moves a file, a folder or a symbolic link to the Trash, which records its original path.
    /// Returns whether it was moved; if not, it is unchanged. Thread-safe.
    virtual bool recycle(const std::string& path) = 0;
};

/// Returns the process's workspace. The default moves items to the Trash, starts application
/// bundles, opens URLs with xdg-open and opens panes with "System Preferences". It cannot open
/// other files or select files: those calls return false.
Workspace& sharedWorkspace();
template <>
Workspace* exchangeService<Workspace>(Workspace* service);

/// Posts kDidLaunchApplication on the distributed center and on the shared workspace's center.
/// Called after an application has been started, and by an application bundle's program once it is
/// ready to receive requests. Thread-safe.
void announceLaunch(const std::string& applicationName);

} // namespace platform
