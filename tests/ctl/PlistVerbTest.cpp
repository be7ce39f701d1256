#include "tests/ctl/Ctl.h"

using test::Ctl;

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
        ctl.follow({{"halvexctl plist value.plist --json", std::string(json) + "\n"}});
    }
}

TEST(Plist, SaysInOneLineWhereAFileGoesWrong) {
    const Ctl ctl;
    ctl.write("tag", "<plist>\n  <array>\n  </dict>");
    ctl.write("two\nlines", "x");
    ctl.follow({{"halvexctl plist tag", "", 1, "halvexctl: tag:3:5: mismatched tag\n"},
                {"halvexctl plist 'two\nlines'", "", 1, ": two?lines:1:1: syntax error\n"}});
}

} // namespace
