#include "platform/PropertyListService.h"
#include "tests/fuzz/Support.h"

#include <algorithm>

using fuzz::require;

// Parsing any bytes, in pieces of any size, results either in an error with a line and a reason or
// in a value that can be written and read back unchanged.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Program program;
    const auto& lists = platform::propertyLists();
    std::string_view bytes = fuzz::text(data, size);
    const auto whole = lists.parse(bytes);

    const auto inPieces = lists.parse([&](char* buffer, std::size_t room) {
        const std::size_t count = bytes.copy(buffer, std::min<std::size_t>(room, 7));
        bytes.remove_prefix(count);
        return std::optional(count);
    });
    require(bool(whole) == bool(inPieces), "the result depends on the size of the pieces");
    if (!whole) {
        require(whole.error.line > 0 && !whole.error.reason.empty(),
                "an error has no line or no reason");
        return 0;
    }
    require(*whole.value == *inPieces.value, "the value depends on the size of the pieces");
    const auto written = lists.serialize(*whole.value);
    require(written.has_value(), "the value cannot be written");
    const auto again = lists.parse(*written);
    require(again && *again.value == *whole.value, "the written value reads back differently");
    return 0;
}
