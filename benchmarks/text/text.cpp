// Prints how long it takes to fill date formats of more and more placeholders, and to collect the
// output of a command beside a bare reader of the same pipe. Each time is the least of several
// runs, taken in turns: what else the machine does can only add to it. Ends with 1 when a target is
// missed.

#include "menuextras/RunCommand.h"
#include "ui/NSMutableString-DateFormat.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <unistd.h>

namespace {

template <class Operation>
double milliseconds(Operation operation) {
    const auto start = std::chrono::steady_clock::now();
    operation();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

void require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(EXIT_FAILURE);
}

/// Nanoseconds for each of so many placeholders.
double costOfPlaceholder(std::size_t placeholders) {
    constexpr int kRuns = 21;
    double least = std::numeric_limits<double>::max();
    for (int i = 0; i < kRuns; ++i) {
        std::string format;
        for (std::size_t k = 0; k < placeholders; ++k)
            format += "week %W ";
        least = std::min(least, milliseconds([&] { HalvexDateFormat::fixWeekNum(format, "07"); }));
        require(format.size() == placeholders * 8 && format.ends_with("week 07 "), "not filled");
    }
    return least * 1e6 / static_cast<double>(placeholders);
}

bool measurePlaceholders() {
    std::printf("%12s %16s\n", "placeholders", "ns each");
    double first = 0;
    double last = 0;
    for (const std::size_t count : {1'000U, 10'000U, 100'000U, 1'000'000U}) {
        last = costOfPlaceholder(count);
        first = first == 0 ? last : first;
        std::printf("%12zu %16.1f\n", count, last);
    }
    const bool linear = last < 2 * first;
    if (!linear)
        std::puts("a placeholder of the longest format costs more than twice one of the shortest");
    return linear;
}

constexpr std::size_t kOutput = 100'000'000;

std::string outputFile() {
    std::string name = "/tmp/halvex-output-XXXXXX";
    const int file = mkstemp(name.data());
    const std::string block(1'000'000, 'x');
    for (std::size_t written = 0; written < kOutput; written += block.size())
        require(::write(file, block.data(), block.size()) == static_cast<ssize_t>(block.size()),
                "the output cannot be written");
    ::close(file);
    return name;
}

/// Reads what a command writes in blocks of 512 bytes, and keeps nothing of it.
void readBare(const std::string& command) {
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    require(pipe != nullptr, "no pipe");
    std::array<char, 512> block{};
    std::size_t sum = 0;
    for (ssize_t count = 1; count > 0; sum += static_cast<std::size_t>(count))
        count = ::read(fileno(pipe), block.data(), block.size());
    ::pclose(pipe);
    require(sum == kOutput, "the bare reader has not read everything");
}

void collect(const std::string& command) {
    const auto output = HalvexRunCommand::HalvexUtilGetPipeData(command);
    require(output && output->size() == kOutput, "not everything was collected");
}

void measureCommand() {
    constexpr int kRuns = 7;
    const std::string file = outputFile();
    const std::string command = "cat " + file;
    double ours = std::numeric_limits<double>::max();
    double bare = ours;
    for (int i = 0; i < kRuns; ++i) {
        ours = std::min(ours, milliseconds([&] { collect(command); }));
        bare = std::min(bare, milliseconds([&] { readBare(command); }));
    }
    ::unlink(file.c_str());
    std::printf(
        "\n100 MB of a command's output: collected %.1f ms, bare reader %.1f ms, ratio %.2f\n",
        ours, bare, ours / bare);
}

} // namespace

int main() {
    const bool linear = measurePlaceholders();
    measureCommand();
    return linear ? EXIT_SUCCESS : EXIT_FAILURE;
}
