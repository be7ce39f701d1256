#pragma once

namespace platform {
class Clock;
class DynamicLoader;
class FileManager;
class Log;
class ProcessList;
class ScriptRunner;
class SystemInfo;
class Workspace;
} // namespace platform

/// The services that libc alone can give. Each answers until a host installs another one; only the
/// source files of the services' slots include this header.
namespace platform::posix {

Clock& defaultClock();
DynamicLoader& defaultDynamicLoader();
FileManager& defaultFileManager();
Log& defaultLog();
ProcessList& defaultProcessList();
ScriptRunner& defaultScriptRunner();
SystemInfo& defaultSystemInfo();
Workspace& defaultWorkspace();

} // namespace platform::posix
