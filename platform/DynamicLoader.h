#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <memory>
#include <string>
#include <vector>

namespace platform {

/// Code that has been loaded into this process. Destroying it unloads the code when nothing else
/// holds it; nothing of it may be used then.
class LoadedCode : NonCopyable {
  public:
    virtual ~LoadedCode();

    /// The address of an exported function; null when there is none of that name.
    virtual void* symbol(const char* name) const = 0;
};

/// Looks at executable files and loads them. No operation throws. Safe from any thread.
class DynamicLoader : NonCopyable {
  public:
    virtual ~DynamicLoader();

    /// The processors that a file's code is for, as the platform numbers them: 7 for 32-bit Intel,
    /// 18 PowerPC, 16777223 64-bit Intel, 16777228 64-bit Arm and so on. Empty when the file is
    /// not there or holds no code. Runs nothing of it.
    virtual std::vector<int> executableArchitectures(const std::string& path) const = 0;
    /// The number of the processor that this process runs on.
    virtual int hostArchitecture() const = 0;

    /// The file that the code or data at @p address was loaded from; empty when it is none's.
    virtual std::string fileOfAddress(const void* address) const = 0;

    /// Whether load would succeed, asked without loading anything into this process and without
    /// running anything of the file or of what it needs; if not @p reason is the system's own text.
    /// Finds a file that is missing, cut off, for another processor or no shared object, needed
    /// libraries and versions that are missing, and symbols that nobody defines. Does not find what
    /// only running shows, and takes symbols that this program alone defines for missing. Takes a
    /// process of the system's and some milliseconds, at most 5 s.
    virtual bool preflight(const std::string& path, std::string& reason) const = 0;
    /// Loads a shared object with its symbols to itself. Gives null, and why, when it is for
    /// another processor, cut off, or refused by the loader. Runs the code's initialisers.
    virtual std::unique_ptr<LoadedCode> load(const std::string& path, std::string& reason) = 0;
};

DynamicLoader& dynamicLoader();
template <>
DynamicLoader* exchangeService<DynamicLoader>(DynamicLoader* service);

} // namespace platform
