// Measures what the calendar costs with a file of events: reading it for the first month, showing
// another month and a year, and the memory that is kept. "calendars [EVENTS [FOLDER]]" writes a
// file of so many events, 5000 by default, to FOLDER, or else to a temporary folder that it
// removes. Of ten events, eight take place once, one is weekly with a COUNT and an exception, and
// one is yearly. Prints the least CPU time of several runs, because other load can only add to it.

#include "benchmarks/PeakMemory.h"
#include "extras/icalendar/EventCalendars.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <limits>
#include <malloc.h>
#include <random>
#include <string>

namespace {

using extras::EventCalendars;
using std::chrono::sys_days;
namespace fs = std::filesystem;

constexpr int kRuns = 21;

constexpr sys_days kNovember = std::chrono::year(2026) / 11 / 1;
constexpr sys_days kDecember = std::chrono::year(2026) / 12 / 1;
constexpr auto kGrid = std::chrono::days(41); // a month with the weeks it begins and ends in

double cpuMilliseconds() {
    std::timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

std::size_t heapBytes() {
    const auto heap = ::mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

class EventWriter {
  public:
    std::string next() {
        const int year = 2016 + number(13);
        char day[16];
        std::snprintf(day, sizeof day, "%04d%02d%02d", year, 1 + number(12), 1 + number(28));
        char time[16];
        std::snprintf(time, sizeof time, "T%02d%02d00", 7 + number(14), 15 * number(4));
        const std::string zone = ";TZID=Europe/Berlin:";
        const std::string start = "DTSTART" + zone + day + time + "\r\n";
        const std::string date = "DTSTART;VALUE=DATE:" + std::string(day) + "\r\n";
        const int kind = count_++ % 10;
        const std::string when =
            kind < 6   ? start + "DURATION:PT1H\r\n"
            : kind < 8 ? date + "TRANSP:TRANSPARENT\r\n"
            : kind == 8
                ? start + "DURATION:PT45M\r\nRRULE:FREQ=WEEKLY;BYDAY=TU,TH;COUNT=" +
                      std::to_string(5 + number(56)) + "\r\nEXDATE" + zone + day + time + "\r\n"
                : date + "RRULE:FREQ=YEARLY\r\n";
        return "BEGIN:VEVENT\r\nDTSTAMP:20260101T120000Z\r\nUID:" + std::to_string(count_) +
               "-9f1d0b7c5a3e@example.org\r\nSUMMARY:Review of the design\\, part " +
               std::to_string(number(100)) + "\r\n" + when + kRest;
    }

  private:
    int number(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    static constexpr const char* kRest =
        "CREATED:20250101T120000Z\r\nLAST-MODIFIED:20260101T120000Z\r\n"
        "DESCRIPTION:Agenda\\n\\n1. Numbers of last week\\, in detail\\n2. What comes\r\n"
        "  next\\, with a link https://example.org/meet/abcdef-ghij\r\n"
        "LOCATION:Room 3.14\\, second floor\r\nSTATUS:CONFIRMED\r\nSEQUENCE:1\r\n"
        "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:Reminder\r\nTRIGGER:-PT15M\r\n"
        "END:VALARM\r\nEND:VEVENT\r\n";

    std::mt19937 random_{5};
    int count_ = 0;
};

void writeCalendar(const fs::path& file, int events) {
    std::ofstream stream(file, std::ios::binary);
    EventWriter writer;
    stream << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
    for (int i = 0; i < events; ++i)
        stream << writer.next();
    stream << "END:VCALENDAR\r\n";
}

struct Figures {
    double first = std::numeric_limits<double>::max();
    double month = first;
    double year = first;
    std::size_t shown = 0;
    std::size_t keptBytes = 0;
};

Figures measure(const std::string& folder) {
    Figures least;
    const auto timed = [](double& figure, auto operation) {
        const double start = cpuMilliseconds();
        const auto events = operation();
        figure = std::min(figure, cpuMilliseconds() - start);
        return events.size();
    };
    for (int run = 0; run < kRuns; ++run) {
        const std::size_t before = heapBytes();
        EventCalendars calendars(folder);
        least.shown =
            timed(least.first, [&] { return calendars.between(kNovember, kNovember + kGrid); });
        least.keptBytes = heapBytes() - before;
        timed(least.month, [&] { return calendars.between(kDecember, kDecember + kGrid); });
        timed(least.year,
              [&] { return calendars.between(kNovember, kNovember + std::chrono::days(364)); });
    }
    return least;
}

} // namespace

int main(int count, char** arguments) {
    const int events = count > 1 ? std::atoi(arguments[1]) : 5000;
    std::string name = "/tmp/halvex-calendars-XXXXXX";
    if (count < 3 && !::mkdtemp(name.data()))
        return EXIT_FAILURE;
    const fs::path folder = count < 3 ? name : arguments[2];
    writeCalendar(folder / "Work.ics", events);
    const auto size = fs::file_size(folder / "Work.ics");
    const Figures figures = measure(folder.string());
    if (count < 3)
        fs::remove_all(folder);
    std::printf("%d events, %.1f MB, %zu shown in the first month\n", events,
                static_cast<double>(size) / 1e6, figures.shown);
    std::printf("first month %10.2f ms\nnext month  %10.2f ms\none year    %10.2f ms\n",
                figures.first, figures.month, figures.year);
    std::printf("kept        %10zu KiB\npeak        %10ld KiB\n", figures.keptBytes / 1024,
                peakMemory());
    return figures.shown > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
