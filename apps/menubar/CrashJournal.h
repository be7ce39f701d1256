#pragma once

#include "apps/menubar/CrashHandler.h"
#include "apps/shared/ItemRecord.h"
#include "platform/base/NonCopyable.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace apps {

/// A file that names the item whose code the bar is running, so that the next bar can tell which
/// item ended this one. Before each step that a faulty item may not survive, the bar writes a note
/// to the file, and clears it afterwards. The note outlives the process however that ends, but not
/// the machine: it is not flushed to disk. Writing a note takes two system calls. If an item's code
/// crashes between such steps, for example in a timer, a signal handler writes the note. Main
/// thread only, except that handler.
class CrashJournal : platform::NonCopyable {
  public:
    struct Note {
        std::string step; ///< human-readable: "loading", "click", ...
        ItemRecord item;
    };

    ~CrashJournal();

    /// Opens the file, which is created if missing. If that fails or another bar has locked the
    /// file, a line is logged and nothing is recorded.
    void open(const std::string& path);
    /// Returns and clears the note that the previous bar left, or std::nullopt if it was not
    /// running an item's code when it ended.
    std::optional<Note> takeLastNote();

    /// Adds and removes the items whose code may run between steps.
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
