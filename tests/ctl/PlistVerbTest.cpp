#include "tests/ctl/Ctl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using test::Ctl;
using test::Outcome;

namespace {

TEST(Plist, PrintsEveryKindOfValueAsJson) {
    const Ctl ctl;
    const std::pair<const char*, const char*> cases[] = {
        {"<string/>", "\"\""},
        {"<string>\"a\\b/\t\n&#13;\x7F</string>", "\"\\\"a\\\\b/\\t\\n\\r\x7F\""},
        {"<string>\xC2\x80 \xE6\x9D\xB1 \xED\x9F\xBF \xF0\x9F\x95\x90 \xF4\x8F\xBF\xBD</string>",
         "\"\xC2\x80 \xE6\x9D\xB1 \xED\x9F\xBF \xF0\x9F\x95\x90 \xF4\x8F\xBF\xBD\""},
        {"<integer>-9223372036854775808</integer>", "-9223372036854775808"},
        {"<integer>18446744073709551615</integer>", "18446744073709551615"},
        {"<real>57.8</real>", "57.8"},
        {"<real>-0</real>", "-0.0"},
        {"<real>5</real>", "5.0"},
        {"<real>1.7976931348623157e308</real>", "1.7976931348623157e+308"},
        {"<real>5e-324</real>", "5e-324"},
        {"<real>-inf</real>", "null"},
        {"<real>nan</real>", "null"},
        {"<date>1969-12-31T23:59:59Z</date>", "\"1969-12-31T23:59:59Z\""},
        {"<date>-0044-03-15T09:00:00Z</date>", "\"-0044-03-15T09:00:00Z\""},
        {"<date>999999999-12-31T23:59:59Z</date>", "\"999999999-12-31T23:59:59Z\""},
        {"<data>/w==</data>", "\"/w==\""},
        {"<data>+/8=</data>", "\"+/8=\""},
        {"<data>AAEC AwQF</data>", "\"AAECAwQF\""},
        {"<array/>", "[]"},
        {"<dict/>", "{}"},
        {"<dict><key>z\"</key><array><dict/><true/><false/></array><key>a</key><string>b</string></"
         "dict>",
         "{\n  \"z\\\"\": [\n    {},\n    true,\n    false\n  ],\n  \"a\": \"b\"\n}"},
    };
    for (const auto& [xml, json] : cases) {
        ctl.write("value.plist", std::string("<plist>") + xml + "</plist>");
        const Outcome outcome = ctl.run("halvexctl plist value.plist --json");
        EXPECT_EQ(outcome.status, 0) << xml << outcome.log;
        EXPECT_EQ(outcome.output, std::string(json) + "\n");
    }
}

TEST(Plist, PrintsXmlThatIsTheSameWhenReadAgain) {
    const Ctl ctl;
    const std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n"
                            "<real>inf</real>\n</plist>\n";
    ctl.write("value.plist", xml);
    EXPECT_EQ(ctl.run("halvexctl plist value.plist").output, xml);
}

TEST(Plist, SaysInOneLineWhereAFileGoesWrong) {
    const Ctl ctl;
    const struct {
        const char* name;
        const char* text;
        const char* line;
    } cases[] = {
        {"empty", "", "empty:1:1: no element found"},
        {"tag", "<plist>\n  <array>\n  </dict>", "tag:3:5: mismatched tag"},
        {"two\nlines", "x", "two?lines:1:1: syntax error"},
    };
    for (const auto& [name, text, line] : cases) {
        ctl.write(name, text);
        for (const std::string flag : {"", "--json"}) {
            const Outcome outcome = ctl.run("halvexctl plist " + flag + " '" + name + "'");
            EXPECT_EQ(outcome.status, 1);
            EXPECT_EQ(outcome.output, "");
            EXPECT_EQ(outcome.log, std::string("halvexctl: ") + line + "\n");
        }
    }
}

} // namespace
