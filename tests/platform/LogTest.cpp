#include "platform/Log.h"

#include "platform/base/Exception.h"
#include "platform/runtime/Guard.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>

#include <stdexcept>

using namespace platform;

namespace {

TEST(LogLine, FillsPlaceholdersInOrder) {
    struct Case {
        const char* format;
        std::initializer_list<LogArgument> arguments;
        const char* line;
    };
    const std::optional<std::string> none;
    const Case cases[] = {
        {"%@ and %@", {"one", std::string_view("two")}, "one and two"},
        {"%@ %@", {none, nullptr}, "(null) (null)"},
        {"%d %d", {-5, 18446744073709551615U}, "-5 18446744073709551615"},
        {"%x %08x %016x", {255, 0xA0000U, -1}, "ff 000a0000 00000000ffffffff"},
        {"%4d|%2d", {7, 1234}, "   7|1234"},
        {"100%% %@", {"%d"}, "100% %d"}, // arguments are not parsed for placeholders
        {"%@ %@", {"one"}, "one %@"},
        {"%q %0z %12", {"x"}, "%q %0z %12"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(formatLogLine(c.format, c.arguments), c.line) << c.format;
}

TEST(LogLine, HasNoControlCharactersOrLongTextsFromItsArguments) {
    test::RecordingLog log;
    const std::string longest(1022, 'x');
    const std::pair<std::string, std::string> cases[] = {
        {"a/b c\\d \"ä€😀\"", "a/b c\\d \"ä€😀\""},
        {"one\n2026-01-01 forged\r\tline", "one\\n2026-01-01 forged\\r\\tline"},
        {std::string("\x1b[2J\0\x7f\a", 7), "\\x1b[2J\\x00\\x7f\\x07"},
        {"\xc2\x9bm \xc2\xa0", "\\xc2\\x9bm \xc2\xa0"},
        {"\xff\xe2\x82", "\\xff\\xe2\\x82"},
        {longest + "yz", longest + "yz"},
        {longest + "ä", longest + "ä"},
        {longest + "xyz", longest + "xy..."},
        {longest + "xä", longest + "x..."},
    };
    for (const auto& [argument, shown] : cases) {
        logLine("\r\t%@|%4d\n", argument, 5);
        EXPECT_THAT(log.take(), testing::ElementsAre("\r\t" + shown + "|   5\n"));
    }
    EXPECT_EQ(formatLogLine("%@", {"\n"}), "\n") << "not only for the log";
}

TEST(Guard, LogsEveryExceptionWithTheOwnerOfTheCode) {
    test::RecordingLog log;
    EXPECT_TRUE(runGuarded("outer", [] {
        EXPECT_FALSE(runGuarded("a", [] { throw Exception("Name", "reason"); }));
        EXPECT_FALSE(runGuarded("b", [] {
            EXPECT_EQ(currentOwner(), "b");
            throw std::runtime_error("what");
        }));
        EXPECT_EQ(currentOwner(), "outer");
    }));
    EXPECT_EQ(currentOwner(), "");
    EXPECT_FALSE(runGuarded("", [] { throw 5; }));
    EXPECT_THAT(log.take(),
                testing::ElementsAre("a raised an exception: Name   reason: reason",
                                     "b raised an exception: std::exception   reason: what",
                                     "this program raised an exception: unknown   "
                                     "reason: (null)"));
}

} // namespace
