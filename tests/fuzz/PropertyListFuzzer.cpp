#include "platform/FileManager.h"
#include "platform/PropertyListService.h"
#include "platform/expat/ExpatPropertyLists.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

void require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

} // namespace

// The lists come from memory, so the real one need not be linked.
platform::FileManager& platform::fileManager() {
    std::abort();
}

// Any bytes: a fault with a place and a reason, or a value that is written and read back as it was,
// however the bytes are cut.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool installed = (platform::expat::install(), true);
    const auto& lists = platform::propertyLists();
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto whole = lists.parse(bytes);

    const auto inPieces = lists.parse([&](char* buffer, std::size_t room) {
        const std::size_t count = bytes.copy(buffer, std::min<std::size_t>(room, 7));
        bytes.remove_prefix(count);
        return std::optional(count);
    });
    require(installed && bool(whole) == bool(inPieces), "the pieces decide");
    if (!whole) {
        require(whole.error.line > 0 && !whole.error.reason.empty(), "a fault without a place");
        return 0;
    }
    require(*whole.value == *inPieces.value, "the pieces change the value");
    const auto written = lists.serialize(*whole.value);
    require(written.has_value(), "what was read cannot be written");
    const auto again = lists.parse(*written);
    require(again && *again.value == *whole.value, "what was written reads differently");
    return 0;
}
