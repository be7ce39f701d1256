#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Watch.h"
#include "platform/runtime/Guard.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace platform {

/// Handlers that a service calls when something changes. The watches that add() returns may outlive
/// the list. Main thread only.
template <class... Arguments>
class HandlerList : NonCopyable {
  public:
    using Handler = std::function<void(const Arguments&...)>;

    /// Adds a handler until the watch is destroyed. Exceptions from the handler are logged with the
    /// identifier of the current owner and swallowed.
    std::unique_ptr<Watch> add(Handler handler) {
        auto entry = std::make_shared<const Entry>(Entry{currentOwner(), std::move(handler)});
        entries_->push_back(entry);
        return std::make_unique<Registration>(entries_, std::move(entry));
    }

    /// Calls the handlers in the order they were added. A handler may add handlers, which are not
    /// called this time, and destroy watches and the list.
    void call(const Arguments&... arguments) const {
        const Entries entries = *entries_;
        for (const auto& weak : entries)
            if (const auto entry = weak.lock())
                runGuarded(entry->owner, [&] { entry->handler(arguments...); });
    }

    bool empty() const { return entries_->empty(); }

  private:
    struct Entry {
        std::string owner;
        Handler handler;
    };
    using Entries = std::vector<std::weak_ptr<const Entry>>;

    class Registration final : public Watch {
      public:
        Registration(std::weak_ptr<Entries> entries, std::shared_ptr<const Entry> entry)
            : entries_(std::move(entries)), entry_(std::move(entry)) {}
        ~Registration() override {
            if (const auto entries = entries_.lock())
                std::erase_if(*entries, [&](const auto& each) { return each.lock() == entry_; });
        }

      private:
        std::weak_ptr<Entries> entries_;
        std::shared_ptr<const Entry> entry_;
    };

    std::shared_ptr<Entries> entries_ = std::make_shared<Entries>();
};

} // namespace platform
