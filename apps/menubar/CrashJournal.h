#pragma once

#include "apps/menubar/ItemCodeMap.h"
#include "apps/shared/ItemRecord.h"
#include "apps/shared/JournalBlock.h"
#include "platform/base/NonCopyable.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace apps {

/// A file that tells the next bar how this one ended: which item ended it, or that it ended for an
/// unknown reason. The file is written when the bar starts and stops and when an item fails, with
/// one system call each or a few; nothing is written while the bar runs. It survives the process,
/// but not a system crash, because it is not flushed to disk. Main thread only, unless stated.
class CrashJournal : platform::NonCopyable {
  public:
    /// An item that ended the bar.
    struct Note {
        std::string step; ///< human-readable: "loading", "click", ...
        ItemRecord item;
        Failure failure = Failure::Crash;
    };

    ~CrashJournal();

    /// Returns the journal that was opened last, or null. Async-signal-safe. Any thread.
    static CrashJournal* current();

    /// Makes open() use @p file, the journal of the previous bar that the watcher has kept open.
    /// Takes ownership.
    void inherit(int file);
    /// Opens and locks the file, which is created if missing, and reads what the previous bar left
    /// in it. If the file cannot be used, for example because another bar has locked it, logs the
    /// failure and uses memory instead, which only the watcher can pass on.
    void open(const std::string& path);
    /// Returns the file descriptor, or -1 before open(). The journal keeps ownership.
    int file() const { return file_; }

    /// Returns and clears the note of the previous bar, or std::nullopt if no item ended it.
    std::optional<Note> takeLastNote();
    /// Returns whether the last three bars exited within ten seconds for an unknown reason.
    bool exitsRepeatedly() const;

    /// Registers an item before its code is loaded, and the addresses of its code afterwards.
    void add(const ItemRecord& item);
    void setCode(std::string_view identifier, platform::AddressRange addresses);

    /// What the main thread does with an item as long as the object exists. Scopes nest.
    class Scope : platform::NonCopyable {
      public:
        /// @p step and @p identifier must outlive the object.
        Scope(CrashJournal& journal, const char* step, std::string_view identifier)
            : step_(step), identifier_(identifier), journal_(journal), outer_(journal.innermost_) {
            journal.innermost_ = this;
        }
        ~Scope() { journal_.innermost_ = outer_; }

      private:
        friend class CrashJournal;
        const char* step_;
        std::string_view identifier_;
        CrashJournal& journal_;
        const Scope* outer_;
    };

    /// Records the item whose code is at @p address, or else the item whose code this thread is
    /// running (see platform::currentOwner). Returns false if no item is to blame, or if
    /// a failure has been recorded before. Async-signal-safe. Any thread.
    bool recordFailure(Failure failure, std::uintptr_t address);
    /// Records that the bar ends on purpose. Async-signal-safe. Any thread.
    void recordStop();

  private:
    bool isUsable();
    void useMemory();
    void readLastRun();
    const char* stepOf(std::string_view identifier) const;

    int file_ = -1;
    int inherited_ = -1;
    JournalBlock lastRun_;
    JournalBlock block_;
    ItemCodeMap items_;
    const Scope* innermost_ = nullptr;
    std::atomic_flag hasFailed_;
};

} // namespace apps
