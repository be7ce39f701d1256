#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace platform {

class TrustedFile;

/// The addresses from begin up to, but not including, end.
struct AddressRange {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    bool contains(std::uintptr_t address) const { return begin <= address && address < end; }
};

/// A shared object loaded into this process. Destroying the object unloads the code unless other
/// code has loaded it too; its functions and data must not be used afterwards.
class LoadedCode : NonCopyable {
  public:
    virtual ~LoadedCode();

    /// Returns the address of an exported symbol, or null if it is not found.
    virtual void* symbol(const char* name) const = 0;
    /// Returns the addresses that the code and its data occupy.
    virtual AddressRange addresses() const = 0;
};

/// Inspects and loads executable files. Operations never throw. Thread-safe.
class DynamicLoader : NonCopyable {
  public:
    virtual ~DynamicLoader();

    /// Returns the processors that a file's code is built for. The numbers are the platform's own:
    /// 7 for 32-bit Intel, 18 for PowerPC, 16777223 for 64-bit Intel, 16777228 for 64-bit Arm, and
    /// so on. Empty if the file does not exist or contains no code. Does not run the code.
    virtual std::vector<int> executableArchitectures(const std::string& path) const = 0;
    /// Returns the number of the processor that this program is built for, or 0 if it is unknown.
    virtual int hostArchitecture() const = 0;

    /// Returns the path of the file that the code or data at @p address was loaded from, as it was
    /// when the file was loaded. Empty if it was not loaded from a file.
    virtual std::string fileOfAddress(const void* address) const = 0;

    /// Returns whether the system's loader would load the file at @p path. If not, writes its
    /// message to @p reason. Loads nothing into this process and runs neither the file's code nor
    /// that of its libraries. Detects a missing or truncated file, a file for another processor, a
    /// file that is not a shared object, missing libraries and versions, and undefined symbols.
    /// Does not detect errors that occur only when the code runs. Reports symbols that are defined
    /// only by this program as undefined. Starts a child process; takes a few milliseconds, at most
    /// 5 s.
    virtual bool preflight(const std::string& path, std::string& reason) const = 0;
    /// Returns why load refuses the file without trying, or an empty string: it is not a complete
    /// shared object for this processor, or names folders or paths of libraries. Libraries are not
    /// validated, and those named relative to the file ("$ORIGIN") would not be found.
    virtual std::string refusalReason(const TrustedFile& file) const = 0;
    /// Loads the open file with RTLD_LOCAL and runs its initializers, which must not throw: an
    /// exception terminates the process. Keeps the file open while the code is loaded. Returns null
    /// and writes the cause to @p reason if refusalReason returns one or the file cannot be loaded.
    /// A null @p file is reported as a failed allocation.
    virtual std::unique_ptr<LoadedCode> load(std::shared_ptr<const TrustedFile> file,
                                             std::string& reason) = 0;
};

/// Returns the process's loader. The default is the system's.
DynamicLoader& dynamicLoader();
template <>
DynamicLoader* exchangeService<DynamicLoader>(DynamicLoader* service);

} // namespace platform
