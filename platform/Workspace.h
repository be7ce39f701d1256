#pragma once

#include "platform/Service.h"

#include <string>

namespace platform {

/// What a program asks of the desktop around it. No operation waits for another program.
class Workspace {
  public:
    Workspace() = default;
    virtual ~Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    /// Shows a file, selected, in the file browser. @p rootPath is the folder whose window is
    /// asked for; empty: whichever the browser takes. The answer is whether the request could be
    /// sent; a browser that then finds no such file tells the user itself. Main thread.
    virtual bool selectFile(const std::string& path, const std::string& rootPath) = 0;
    /// Opens a file or a folder with the program that the desktop has for it. The answer is
    /// whether a program could be started. Main thread.
    virtual bool openFile(const std::string& path) = 0;
    /// Hands a URL, as it is, to the program that the desktop has for its scheme: "mailto:" to the
    /// mail program. No shell reads it. The answer is whether a program could be started. Main
    /// thread.
    virtual bool openURL(const std::string& url) = 0;
    /// Moves a file, a folder or a symbolic link to the Trash, where the user finds it with the
    /// place that it came from. The answer is whether it lies there; if not it is where it was.
    /// Safe from any thread.
    virtual bool recycle(const std::string& path) = 0;
};

/// The process's workspace. Until a host installs another one: one that has a Trash, opens
/// URLs with xdg-open, and cannot show or open files.
Workspace& sharedWorkspace();
template <>
Workspace* exchangeService<Workspace>(Workspace* service);

} // namespace platform
