#pragma once

#include "apps/shared/ItemRecord.h"
#include "platform/base/NonCopyable.h"

#include <csignal>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace apps {

/// Where the bar notes which item's code it is about to run for a step that a bad item does not
/// survive. The note is in a file and outlives the process, however that dies (not the machine:
/// nothing is flushed to the disk). The next bar reads there what ended the one before. A note
/// costs two system calls. Code of an item that crashes between such steps, in a timer for one, is
/// noted by a signal handler. Main thread.
class StepJournal : platform::NonCopyable {
  public:
    struct Note {
        std::string step; ///< a word for people
        ItemRecord item;
    };

    ~StepJournal();

    /// Opens the file, which is made when it is missing. When that fails, or another bar has it,
    /// which is logged, nothing is noted from then on.
    void open(const std::string& path);
    /// What the bar before was doing when it died; nothing when it ended in order, or idle. The
    /// note is then gone.
    std::optional<Note> takeInterrupted();

    /// Whose code may run between the steps, and no longer does.
    void add(const ItemRecord& item);
    void remove(std::string_view identifier);

    /// Steps nest: the end of an inner one brings the outer one's note back.
    void begin(const Note& note);
    void end();

    /// A step that lasts as long as a scope.
    class Scope : platform::NonCopyable {
      public:
        Scope(StepJournal& journal, const Note& note) : journal_(journal) { journal_.begin(note); }
        ~Scope() { journal_.end(); }

      private:
        StepJournal& journal_;
    };

  private:
    struct Item {
        std::string identifier;
        std::string bytes; ///< the note, should its code crash
    };

    static void crashed(int signal, siginfo_t* info, void* context);
    void watchCrashes();
    void write(const std::string& bytes) const;

    int file_ = -1;
    std::vector<std::string> underWay_; // the innermost step last
    std::vector<Item> items_;
};

} // namespace apps
