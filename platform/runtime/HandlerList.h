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

/// The handlers that plug-ins have registered for one kind of event. Main thread only.
template <class... Arguments>
class HandlerList : NonCopyable {
  public:
    using Handler = std::function<void(Arguments...)>;

    /// @p onEmpty is called after the last handler has been removed.
    explicit HandlerList(std::function<void()> onEmpty = [] {})
        : state_(std::make_shared<State>(State{{}, std::move(onEmpty)})) {}

    /// Adds a handler of the current owner. Destroying the result removes and destroys the handler.
    std::unique_ptr<Watch> add(Handler handler) {
        auto entry = std::make_shared<Entry>(Entry{currentOwner(), std::move(handler)});
        auto watch = std::make_unique<Registration>(state_, entry.get());
        state_->entries.push_back(std::move(entry));
        return watch;
    }

    /// Calls the handlers in the order they were added, each guarded with its owner. Handlers may
    /// add and remove handlers, including themselves.
    void call(const Arguments&... arguments) const {
        for (const std::weak_ptr<Entry>& weak : weakEntries())
            if (const auto entry = weak.lock())
                runGuarded(entry->owner, [&] { entry->handler(arguments...); });
    }

    bool isEmpty() const { return state_->entries.empty(); }

  private:
    struct Entry {
        std::string owner;
        Handler handler;
    };
    struct State {
        std::vector<std::shared_ptr<Entry>> entries;
        std::function<void()> onEmpty;
    };
    /// May outlive the list.
    class Registration final : public Watch {
      public:
        Registration(std::weak_ptr<State> state, const Entry* entry)
            : state_(std::move(state)), entry_(entry) {}
        ~Registration() override {
            const auto state = state_.lock();
            if (!state)
                return;
            const auto found =
                std::ranges::find(state->entries, entry_, &std::shared_ptr<Entry>::get);
            // Moved out first: destroying the handler may destroy other registrations.
            const std::shared_ptr<Entry> entry = std::move(*found);
            state->entries.erase(found);
            if (state->entries.empty())
                state->onEmpty();
        }

      private:
        std::weak_ptr<State> state_;
        const Entry* entry_;
    };

    std::vector<std::weak_ptr<Entry>> weakEntries() const {
        return {state_->entries.begin(), state_->entries.end()};
    }

    std::shared_ptr<State> state_;
};

} // namespace platform
