// Measures two operations: filling date formats with a growing number of placeholders, and
// collecting the output of a command, compared with a plain loop that reads the same pipe. Each
// figure is the minimum of several interleaved runs, because other load can only add to it. Exits
// with 1 if the time per placeholder grows with the length of the format.

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

/// Returns the nanoseconds per placeholder of a format with @p placeholders of them.
double costPerPlaceholder(std::size_t placeholders) {
    constexpr int kRuns = 21;
    double least = std::numeric_limits<double>::max();
    for (int i = 0; i < kRuns; ++i) {
        std::string format;
        for (std::size_t k = 0; k < placeholders; ++k)
            format += "week %W ";
        least = std::min(least, milliseconds([&] { HalvexDateFormat::fixWeekNum(format, "07"); }));
        require(format.size() == placeholders * 8 && format.ends_with("week 07 "),
                "the format was not filled");
    }
    return least * 1e6 / static_cast<double>(placeholders);
}

bool measurePlaceholders() {
    std::printf("%12s %16s\n", "placeholders", "ns each");
    double first = 0;
    double last = 0;
    for (const std::size_t count : {1'000U, 10'000U, 100'000U, 1'000'000U}) {
        last = costPerPlaceholder(count);
        first = first == 0 ? last : first;
        std::printf("%12zu %16.1f\n", count, last);
    }
    const bool linear = last < 2 * first;
    if (!linear)
        std::puts("target missed: the cost per placeholder more than doubles with the length");
    return linear;
}

constexpr std::size_t kOutputBytes = 100'000'000;

std::string createOutputFile() {
    std::string name = "/tmp/halvex-output-XXXXXX";
    const int file = mkstemp(name.data());
    const std::string block(1'000'000, 'x');
    for (std::size_t written = 0; written < kOutputBytes; written += block.size())
        require(::write(file, block.data(), block.size()) == static_cast<ssize_t>(block.size()),
                "cannot write the file to read");
    ::close(file);
    return name;
}

/// Reads the output of @p command in blocks of 512 bytes and discards it.
void readAndDiscard(const std::string& command) {
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    require(pipe != nullptr, "popen failed");
    std::array<char, 512> block{};
    std::size_t sum = 0;
    for (ssize_t count = 1; count > 0; sum += static_cast<std::size_t>(count))
        count = ::read(fileno(pipe), block.data(), block.size());
    ::pclose(pipe);
    require(sum == kOutputBytes, "the plain loop did not read everything");
}

void collect(const std::string& command) {
    const auto output = HalvexRunCommand::HalvexUtilGetPipeData(command);
    require(output && output->size() == kOutputBytes, "not all of the output was collected");
}

void measureCommand() {
    constexpr int kRuns = 7;
    const std::string file = createOutputFile();
    const std::string command = "cat " + file;
    double ours = std::numeric_limits<double>::max();
    double plain = ours;
    for (int i = 0; i < kRuns; ++i) {
        ours = std::min(ours, milliseconds([&] { collect(command); }));
        plain = std::min(plain, milliseconds([&] { readAndDiscard(command); }));
    }
    ::unlink(file.c_str());
    std::printf(
        "\n100 MB of a command's output: collected %.1f ms, plain loop %.1f ms, ratio %.2f\n", ours,
        plain, ours / plain);
}

} // namespace

int main() {
    const bool linear = measurePlaceholders();
    measureCommand();
    return linear ? EXIT_SUCCESS : EXIT_FAILURE;
}
