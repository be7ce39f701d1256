#pragma once

#include "apps/menubar/CrashHandler.h"
#include "apps/shared/ItemRecord.h"
#include "platform/base/NonCopyable.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace apps {

/// A file that names the item whose code the bar is running, so that the next process can tell
/// which item crashed this one. Before each step in which a faulty item could crash the bar, the
/// bar writes a note to the file; after the step it clears the note. The note survives the process,
/// however it ends, but not a system crash, because it is not flushed to disk. Writing a note takes
/// two system calls. If an item's code crashes between such steps, for example in a timer, a signal
/// handler writes the note. Main thread only, except for that handler.
class CrashJournal : platform::NonCopyable {
  public:
    struct Note {
        std::string step; ///< human-readable: "loading", "click", ...
        ItemRecord item;
    };

    ~CrashJournal();

    /// Opens and locks the file, which is created if missing. If that fails, for example because
    /// another bar has locked it, logs the failure and records nothing from then on.
    void open(const std::string& path);
    /// Returns and clears the note that the previous bar left, or std::nullopt if that bar was not
    /// running an item's code when it exited.
    std::optional<Note> takeLastNote();

    /// Registers and unregisters an item whose code may run between steps. A crash in that code is
    /// recorded with the step "its own code".
    void add(const ItemRecord& item);
    void remove(std::string_view identifier);

    /// Steps nest: ending the inner one restores the note of the outer one.
    void begin(const Note& note);
    void end();

    /// A step that lasts as long as the object.
    class Scope : platform::NonCopyable {
      public:
        Scope(CrashJournal& journal, const Note& note) : journal_(journal) { journal_.begin(note); }
        ~Scope() { journal_.end(); }

      private:
        CrashJournal& journal_;
    };

  private:
    struct Item {
        std::string identifier;
        std::string note; ///< encoded in advance: a signal handler cannot allocate
    };

    void recordCrash() const;
    void write(const std::string& note) const;

    int file_ = -1;
    std::vector<std::string> steps_; // encoded notes, innermost last
    std::vector<Item> items_;
    std::optional<CrashHandler> crashHandler_;
};

} // namespace apps
