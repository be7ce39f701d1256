#include "tests/ctl/Ctl.h"

#include <gtest/gtest.h>

using test::Ctl;
using test::Outcome;

namespace {

TEST(Plist, PrintsEveryKindOfValueAsJson) {
    const Ctl ctl;
    const std::pair<const char*, const char*> cases[] = {
        {"<string>\"a\\b/\t\n&#13;\x7F</string>", "\"\\\"a\\\\b/\\t\\n\\r\x7F\""},
        {"<string>\xC2\x80 \xE6\x9D\xB1 \xED\x9F\xBF \xF0\x9F\x95\x90 \xF4\x8F\xBF\xBD</string>",
         "\"\xC2\x80 \xE6\x9D\xB1 \xED\x9F\xBF \xF0\x9F\x95\x90 \xF4\x8F\xBF\xBD\""},
        {"<integer>-9223372036854775808</integer>", "-9223372036854775808"},
        {"<integer>18446744073709551615</integer>", "18446744073709551615"},
        {"<real>-0</real>", "-0.0"},
        {"<real>5e-324</real>", "5e-324"},
        {"<real>nan</real>", "null"},
        {"<date>-0044-03-15T09:00:00Z</date>", "\"-0044-03-15T09:00:00Z\""},
        {"<data>+/8=</data>", "\"+/8=\""},
        {"<data>AAEC AwQF</data>", "\"AAECAwQF\""},
        {"<dict><key>z\"</key><array><dict/><true/><array/></array><key>a</key><string/></dict>",
         "{\n  \"z\\\"\": [\n    {},\n    true,\n    []\n  ],\n  \"a\": \"\"\n}"},
    };
    for (const auto& [xml, json] : cases) {
        ctl.write("value.plist", std::string("<plist>") + xml + "</plist>");
        const Outcome outcome = ctl.run("halvexctl plist value.plist --json");
        EXPECT_EQ(outcome.output, std::string(json) + "\n") << xml << outcome.log;
    }
}

TEST(Plist, SaysInOneLineWhereAFileGoesWrong) {
    const Ctl ctl;
    const char* const cases[][3] = {
        {"tag", "<plist>\n  <array>\n  </dict>", "tag:3:5: mismatched tag"},
        {"two\nlines", "x", "two?lines:1:1: syntax error"},
    };
    for (const auto& [name, text, line] : cases) {
        ctl.write(name, text);
        const Outcome outcome = ctl.run(std::string("halvexctl plist '") + name + "'");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.log, std::string("halvexctl: ") + line + "\n");
    }
}

} // namespace
