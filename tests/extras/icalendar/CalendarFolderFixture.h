#pragma once

#include "extras/icalendar/EventCalendars.h"
#include "testing/ManualTimeZones.h"
#include "testing/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace test {

/// Parses "20261123".
inline std::chrono::sys_days day(const std::string& text) {
    const int number = std::atoi(text.c_str());
    return std::chrono::year(number / 10000) /
           std::chrono::month(static_cast<unsigned>(number / 100 % 100)) /
           std::chrono::day(static_cast<unsigned>(number % 100));
}

/// Calendars in a temporary folder, seen from a zone with the rules of central Europe.
class CalendarFolderFixture : public testing::Test {
  protected:
    CalendarFolderFixture() {
        zones.add("Europe/Berlin", "CET-1CEST,M3.5.0,M10.5.0/3");
        zones.add("America/New_York", "EST5EDT,M3.2.0,M11.1.0");
        zones.add("Asia/Kolkata", "IST-5:30");
        zones.setLocal("Europe/Berlin");
    }

    static std::string calendar(const std::string& contents) {
        return "BEGIN:VCALENDAR\r\n" + contents + "END:VCALENDAR\r\n";
    }
    static std::string event(const std::string& properties) {
        return "BEGIN:VEVENT\r\n" + properties + "\r\nEND:VEVENT\r\n";
    }
    void write(const std::string& contents) { folder.write("Work.ics", contents); }
    void writeEvent(const std::string& properties) { write(calendar(event(properties))); }

    /// Returns the days and times of all events, such as "20261123 20261124@09:30", with the title
    /// of those that have one.
    std::string found(const std::string& first = "18900101", const std::string& last = "20301231") {
        std::string result;
        for (const auto& one : calendars.between(day(first), day(last))) {
            const std::chrono::year_month_day date(one.day);
            const int minute = one.minuteOfDay.value_or(0);
            char text[32];
            std::snprintf(text, sizeof text,
                          one.minuteOfDay ? "%04d%02u%02u@%02d:%02d" : "%04d%02u%02u",
                          static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                          static_cast<unsigned>(date.day()), minute / 60, minute % 60);
            result += (result.empty() ? "" : " ") + std::string(text) +
                      (one.title.empty() ? "" : "=" + one.title);
        }
        return result;
    }

    TemporaryFolder folder;
    halvextest::ManualTimeZones zones;
    halvextest::RecordingLog log;
    extras::EventCalendars calendars{folder.path().string()};
};

} // namespace test
