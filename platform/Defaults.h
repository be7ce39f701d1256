#pragma once

namespace platform {
class Clock;
class DistributedNotificationCenter;
class DynamicLoader;
class FileManager;
class Log;
class NotificationCenter;
class PreferencesService;
class ProcessList;
class ScriptRunner;
class SystemInfo;
class TimeZones;
class Timers;
class Workspace;
} // namespace platform

/// The services that are available without a host, because libc is enough to implement them.
/// Included only by the source files of the services' slots and by the implementations in
/// platform/posix and platform/runtime.
namespace platform::defaults {

Clock& clock();
DistributedNotificationCenter& distributedNotificationCenter();
DynamicLoader& dynamicLoader();
FileManager& fileManager();
Log& log();
NotificationCenter& notificationCenter();
PreferencesService& preferences();
ProcessList& processList();
ScriptRunner& scriptRunner();
SystemInfo& systemInfo();
TimeZones& timeZones();
Timers& timers();
Workspace& workspace();

} // namespace platform::defaults
