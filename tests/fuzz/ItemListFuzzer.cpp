#include "apps/shared/ItemList.h"
#include "tests/fuzz/Support.h"

#include <algorithm>
#include <set>

namespace fs = std::filesystem;
using apps::ItemList;
using apps::ItemRecord;
using fuzz::require;

namespace {

constexpr const char* kOwnItems = "/own";

bool areEqual(const ItemRecord& one, const ItemRecord& other) {
    return one.identifier == other.identifier && one.path == other.path &&
           one.position == other.position;
}

void checkItems(const ItemList& list) {
    std::set<std::string> identifiers;
    std::int64_t position = INT64_MIN;
    for (const ItemRecord& item : list.items()) {
        require(!item.identifier.empty() && !item.path.empty(), "an item has no name or no path");
        require(identifiers.insert(item.identifier).second, "two items have the same identifier");
        require(item.position >= position, "the items are not ordered by position");
        position = item.position;
    }
    for (const auto& [path, bundle] : list.disabledBundles())
        require(!path.empty() && path == bundle.path, "a disabled bundle has another path");
}

} // namespace

// Any file is either kept under another name or read into a valid list, which is the same after it
// has been written and read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Program program;
    const std::string file = program.folder.write("list", fuzz::text(data, size));
    ItemList list(file, kOwnItems);
    if (!list.read()) {
        require(!fs::exists(file) && fs::file_size(file + ".unreadable") == size,
                "an unreadable file is not kept");
        return 0;
    }
    checkItems(list);
    require(list.write(), "the list cannot be written");
    ItemList again(file, kOwnItems);
    require(again.read() && std::ranges::equal(list.items(), again.items(), areEqual) &&
                std::ranges::equal(
                    list.disabledBundles(), again.disabledBundles(), {},
                    [](const auto& entry) { return entry.first; },
                    [](const auto& entry) { return entry.first; }),
            "the written list reads back differently");
    return 0;
}
