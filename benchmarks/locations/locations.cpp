// Measures operations on the location list in the home folder $HOME. "locations steps" reads,
// merges and splits it in memory; "locations operations" loads and saves it. Prints a line
// "<step> <milliseconds>" for each step, then "peak <KiB>".

#include "benchmarks/PeakMemory.h"
#include "paths/LocationRecords.h"
#include "paths/ovxPaths.h"
#include "platform/Log.h"
#include "platform/PropertyListService.h"
#include "platform/expat/ExpatPropertyLists.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

namespace {

class SilentLog final : public platform::Log {
  public:
    void write(std::string_view) override {}
    void beep() override {}
};

template <class Operation>
auto timed(const char* what, Operation operation) {
    const auto start = std::chrono::steady_clock::now();
    auto result = operation();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    std::printf("%s %.3f\n", what, time.count());
    return result;
}

bool measureSteps() {
    const std::string folder = HalvexFilePaths::ovxGetUsersHalvexProSupportDir();
    const auto read = [&](const char* name) {
        return platform::propertyLists().readArray(folder + '/' + name);
    };
    auto lists = timed("read", [&] {
        return std::pair(read("Halvex Locations"), read("Halvex Net Locations.plist"));
    });
    if (!lists.first || !lists.second)
        return false;
    auto merged = timed("merge", [&] {
        return paths::mergeRecords(std::move(*lists.first), std::move(*lists.second));
    });
    const auto split =
        timed("split", [&] { return paths::splitRecords(std::move(merged.records)); });
    std::printf("peak %ld\n", peakMemory());
    return merged.duplicates == split.net.size();
}

bool measureOperations() {
    auto list = timed("load", HalvexFilePaths::HalvexLoadLocationFile);
    if (!list ||
        !timed("save", [&] { return HalvexFilePaths::HalvexSaveLocationTable(std::move(*list)); }))
        return false;
    std::printf("peak %ld\n", peakMemory());
    return true;
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view what = argc == 2 ? argv[1] : "";
    SilentLog log;
    const platform::ScopedService<platform::Log> logging(log);
    platform::expat::install();
    bool done = false;
    if (what == "steps")
        done = measureSteps();
    if (what == "operations")
        done = measureOperations();
    std::fflush(stdout);
    std::_Exit(done ? EXIT_SUCCESS : EXIT_FAILURE);
}
