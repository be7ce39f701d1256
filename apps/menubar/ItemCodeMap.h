#pragma once

#include "platform/DynamicLoader.h"
#include "platform/base/NonCopyable.h"

#include <atomic>
#include <string>
#include <string_view>

namespace apps {

/// Finds the item that code belongs to, by its address or by the owner that runs it. Entries stay
/// after their item is unloaded, because its threads may still be running; they are reused when the
/// item is loaded again. find is async-signal-safe and may be called on any thread; all else on the
/// main thread only.
class ItemCodeMap : platform::NonCopyable {
  public:
    struct Entry {
        std::string identifier;
        std::string data; ///< of the caller

      private:
        friend class ItemCodeMap;
        std::atomic<std::uintptr_t> begin_ = 0;
        std::atomic<std::uintptr_t> end_ = 0;
        Entry* next_ = nullptr;
    };

    ~ItemCodeMap();

    void add(const std::string& identifier, const std::string& data);
    /// Sets the addresses of the code of an item that has been added.
    void setCode(std::string_view identifier, platform::AddressRange addresses);

    /// Returns the entry of the item whose code is at @p address, or else the latest entry of the
    /// item @p owner. Returns null if neither is known.
    const Entry* find(std::uintptr_t address, std::string_view owner) const;

  private:
    Entry* latest(std::string_view identifier) const;

    std::atomic<Entry*> first_ = nullptr; // latest first
};

} // namespace apps
