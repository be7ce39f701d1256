#include "apps/menubar/CrashJournal.h"
#include "platform/runtime/Guard.h"
#include "tests/fuzz/Support.h"

#include <fcntl.h>

using apps::CrashJournal;
using fuzz::require;

namespace {

/// Records a crash of @p item, and returns what the next bar reads.
std::optional<CrashJournal::Note> recorded(const apps::ItemRecord& item, const std::string& file) {
    {
        CrashJournal journal;
        journal.open(file);
        require(!journal.takeLastNote(), "a note is found twice");
        journal.add(item);
        platform::runGuarded(item.identifier,
                             [&] { journal.recordFailure(apps::Failure::Crash, 0); });
    }
    CrashJournal next;
    next.open(file);
    return next.takeLastNote();
}

} // namespace

// Any file is either ignored or names an item, which is the same after it has been recorded again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Program program;
    const std::string file = program.folder.write("journal", fuzz::text(data, size));
    std::optional<CrashJournal::Note> note;
    {
        CrashJournal journal;
        journal.open(file);
        journal.exitsRepeatedly();
        note = journal.takeLastNote();
    }
    if (!note || note->item.identifier.empty())
        return 0;
    require(!note->item.path.empty(), "the note has no path");
    const auto again = recorded(note->item, file);
    require(again && again->item.identifier == note->item.identifier &&
                again->item.path == note->item.path && again->item.version == note->item.version &&
                again->item.position == note->item.position &&
                again->item.origin == note->item.origin,
            "the note reads back differently");
    return 0;
}
