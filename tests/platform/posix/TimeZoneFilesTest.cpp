#include "platform/posix/TzFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

/// The files of the machine's tz database by name, without those with the same contents.
std::map<std::string, platform::ZoneRules> zones() {
    const std::filesystem::path folder = "/usr/share/zoneinfo";
    std::map<std::string, platform::ZoneRules> result;
    std::set<std::string> known;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string contents = entry.is_regular_file() ? test::contents(entry.path()) : "";
        if (!contents.starts_with("TZif") || !known.insert(contents).second)
            continue;
        const auto [rules, reason] = platform::posix::parseTzFile(contents);
        EXPECT_TRUE(rules) << entry.path() << ": " << reason;
        if (rules)
            result.emplace(entry.path().lexically_relative(folder).string(), *rules);
    }
    return result;
}

/// What zdump prints about an instant, such as
/// "Sun Mar 29 00:59:59 2026 UT = Sun Mar 29 01:59:59 2026 CET isdst=0 gmtoff=3600".
std::string zdumpLine(const platform::ZoneRules& rules, std::int64_t instant) {
    std::array<char, 100> utc{}, local{};
    const std::tm time = *rules.brokenDownTime(instant);
    platform::CivilTime civil = rules.localTime(instant);
    const int leap = civil.second == 60 ? 1 : 0;
    civil.second -= static_cast<int>(time.tm_gmtoff) + leap;
    std::tm universal = *platform::ZoneRules().brokenDownTime(*platform::secondsSince1970(civil));
    universal.tm_sec += leap;
    std::strftime(utc.data(), utc.size(), "%a %b %e %T %Y UT", &universal);
    std::strftime(local.data(), local.size(), "%a %b %e %T %Y %Z", &time);
    return std::string(utc.data()) + " = " + local.data() +
           " isdst=" + std::to_string(time.tm_isdst) + " gmtoff=" + std::to_string(time.tm_gmtoff);
}

constexpr std::int64_t kYear1800 = -5364662400, kYear2101 = 4133980800;

/// The second before each transition and the transition, found from the first to the last and,
/// which must be the same, from the last to the first.
std::vector<std::string> linesOfTransitions(const platform::ZoneRules& rules) {
    std::vector<std::int64_t> instants;
    for (auto next = rules.nextTransition(kYear1800); next && next->instant < kYear2101;
         next = rules.nextTransition(next->instant))
        instants.push_back(next->instant);
    std::vector<std::int64_t> backwards;
    for (auto previous = rules.previousTransition(kYear2101 - 1);
         previous && previous->instant > kYear1800;
         previous = rules.previousTransition(previous->instant - 1))
        backwards.insert(backwards.begin(), previous->instant);
    EXPECT_EQ(instants, backwards);

    std::vector<std::string> lines;
    for (const std::int64_t instant : instants)
        for (const std::int64_t each : {instant - 1, instant})
            lines.push_back(zdumpLine(rules, each));
    return lines;
}

/// The lines of zdump for each zone.
std::map<std::string, std::vector<std::string>> zdump(const std::string& names) {
    const test::TemporaryFolder folder;
    const std::string output = folder.file("output");
    EXPECT_EQ(std::system(("zdump -v -c 1800,2101 " + names + " >" + output).c_str()), 0);
    std::map<std::string, std::vector<std::string>> result;
    std::istringstream lines(test::contents(output));
    for (std::string line; std::getline(lines, line);)
        if (const auto end = line.find("  "); line.find("NULL") == std::string::npos)
            result[line.substr(0, end)].push_back(line.substr(line.find_first_not_of(' ', end)));
    return result;
}

/// Removes the pairs of lines about leap seconds from the output of zdump, and checks that @p rules
/// agree with them.
std::vector<std::string> withoutLeapSeconds(const std::vector<std::string>& lines,
                                            const platform::ZoneRules& rules) {
    std::vector<std::string> result;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].find(":60 ") == std::string::npos) {
            result.push_back(lines[i]);
            continue;
        }
        const std::string& next = lines.at(++i);
        std::tm after{};
        strptime(next.substr(next.find(" = ") + 3).c_str(), "%a %b %e %T %Y", &after);
        const auto found = rules.instantsOf({after.tm_year + 1900, after.tm_mon + 1, after.tm_mday,
                                             after.tm_hour, after.tm_min, after.tm_sec});
        EXPECT_EQ(zdumpLine(rules, found->first - 1), lines[i - 1]);
        EXPECT_EQ(zdumpLine(rules, found->first), next);
    }
    return result;
}

TEST(TimeZoneFiles, HaveTheTransitionsThatZdumpPrints) {
    const auto all = zones();
    ASSERT_GT(all.size(), 300U);
    // Every tenth zone, because zdump takes half a minute for all of them: see scripts/soak/zones.
    const char* const variable = std::getenv("HALVEX_ZONES_STEP");
    const int step = variable ? std::atoi(variable) : 10;
    std::map<std::string, platform::ZoneRules> some;
    std::string names;
    for (int number = 0; const auto& [name, rules] : all)
        if (number++ % step == 0) {
            some.emplace(name, rules);
            names += name + ' ';
        }
    auto expected = zdump(names);
    for (const auto& [name, rules] : some)
        EXPECT_TRUE(linesOfTransitions(rules) == withoutLeapSeconds(expected[name], rules)) << name;
}

TEST(TimeZoneFiles, FindTheInstantsOfLocalTimesAroundEachTransition) {
    using Kind = platform::LocalInstants::Kind;
    for (const auto& [name, rules] : zones()) {
        if (name.starts_with("right/"))
            continue; // the same, but for the number of the leap seconds
        for (auto next = rules.nextTransition(kYear1800); next && next->instant < kYear2101;
             next = rules.nextTransition(next->instant))
            for (const std::int64_t instant : {next->instant - 1, next->instant}) {
                const auto found = rules.instantsOf(rules.localTime(instant));
                ASSERT_TRUE(found) << name;
                EXPECT_NE(found->kind, Kind::Skipped) << name;
                EXPECT_TRUE(instant == found->first || instant == found->last) << name;
                const bool isBack = next->after.secondsFromUTC < next->before.secondsFromUTC;
                EXPECT_EQ(found->kind == Kind::Repeated, isBack) << name << ' ' << instant;
                if (next->after.secondsFromUTC <= next->before.secondsFromUTC)
                    continue;
                auto skipped = rules.localTime(next->instant - 1);
                ++skipped.second;
                EXPECT_EQ(rules.instantsOf(skipped)->kind, Kind::Skipped) << name;
                EXPECT_EQ(rules.instantsOf(skipped)->first, next->instant) << name;
            }
    }
}

} // namespace
