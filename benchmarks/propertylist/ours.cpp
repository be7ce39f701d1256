// propertylist_ours floor|read|write FILE
// Times one operation on a property list and prints "<milliseconds> <peak memory in KiB>". "floor"
// is a lower bound: it reads the file and then each of its bytes once.

#include "benchmarks/PeakMemory.h"
#include "platform/FileManager.h"
#include "platform/PropertyListService.h"
#include "platform/expat/ExpatPropertyLists.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

namespace {

template <class Operation>
int report(Operation operation) {
    const auto start = std::chrono::steady_clock::now();
    const bool done = operation();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    std::printf("%.2f %ld\n", time.count(), peakMemory());
    std::fflush(stdout);
    std::_Exit(done ? EXIT_SUCCESS : EXIT_FAILURE);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3)
        return EXIT_FAILURE;
    const std::string_view operation = argv[1];
    const std::string path = argv[2];
    platform::expat::install();
    if (operation == "floor")
        return report([&] {
            const auto file =
                platform::fileManager().readFile(path, std::numeric_limits<std::uint64_t>::max());
            return file && std::ranges::count(*file.contents, '<') > 0;
        });
    platform::PropertyListResult list;
    const auto read = [&] { return bool(list = platform::propertyLists().read(path)); };
    if (operation == "read")
        return report(read);
    if (operation == "write" && read())
        return report([&] { return platform::propertyLists().serialize(*list.value).has_value(); });
    return EXIT_FAILURE;
}
