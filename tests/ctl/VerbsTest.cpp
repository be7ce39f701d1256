#include "tests/ctl/Ctl.h"

using test::Ctl;

namespace {

std::string list(const std::string& records) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<array>\n" +
           records + "</array>\n</plist>\n";
}

/// A record of five elements, all @p text, and @p rest.
std::string record(const std::string& text, const std::string& rest = "") {
    std::string lines = "\t<array>\n";
    for (int i = 0; i < 5; ++i)
        lines += "\t\t<string>" + text + "</string>\n";
    return lines + rest + "\t</array>\n";
}

const std::string kNoText = "\t\t<string></string>\n";
const std::string kOwn = record("Amsterdam");
const std::string kCached = record("Lima");
const std::string kFour = kNoText + kNoText + kNoText + kNoText;
const std::string kNet = record("Lima", kFour + kFour + "\t\t<true/>\n");

TEST(PathVerbs, TellWithoutCreating) {
    Ctl().follow({{"halvexctl paths 2>&1 | wc -l", "26\n"},
                  {"ls \"$user\" \"$local\" 2>&1 | grep -c cannot", "2\n"},
                  {"halvexctl paths --json | grep /old | sed \"s|$PWD||\"",
                   "  \"HalvexLoadLocationFile/old\": "
                   "\"/home/Library/Application Support/Halvex Locations\",\n"}});
}

TEST(PathVerbs, ListWhatIsThereAndRefuseWithoutTheFolder) {
    const Ctl ctl;
    for (const std::string verb : {"themes", "pictures", "frames"})
        ctl.follow({{"halvexctl " + verb + " --json", "", 1, "no folder of " + verb}});
    const std::string local = "root/Library/Application Support/Quorvane Software/";
    ctl.write(local + "Themes/a\n\"\\\xC3\xA9\xE9", "");
    ctl.write(local + "Pictures/sea/wave", "");
    ctl.follow(
        {{"halvexctl themes", "a\n\"\\\xC3\xA9\xE9\n"},
         {"halvexctl themes --json", "[\n  \"a\\n\\\"\\\\\xC3\xA9\xEF\xBF\xBD\"\n]\n"},
         {"cd \"$local\"; touch Themes/z Themes/.a Pictures/.b Pictures/sea/a; ln -s . Pictures/l\n"
          "cd \"$OLDPWD\"; ls -UA \"$local/Themes\" >themes; halvexctl themes | diff themes -\n"
          "find \"$local/Pictures\" -mindepth 1 -printf '%P\\n' >pictures\n"
          "halvexctl pictures | diff pictures - && wc -l <pictures",
          "5\n"},
         {"mkdir \"home/$support/Glimmerbox Frames\"; halvexctl frames --json", "[]\n"},
         {"mv \"$local/Themes\" elsewhere; ln -s \"$PWD/elsewhere\" \"$local/Themes\"\n"
          "halvexctl themes | diff themes -",
          ""}});
}

TEST(PathVerbs, ListTheFramesThatNameAndExclusionLeave) {
    const std::string list = "cd \"home/$support/Glimmerbox Frames\"; " HALVEX_CTL " frames ";
    Ctl().follow({
        {"cd \"home/$support\"; touch 'Glimmerbox Frames'; " HALVEX_CTL " frames", "", 1},
        {R"(cd "home/$support"; rm Glimmer*; mkdir 'Glimmerbox Frames'; cd Glimmer*; mkdir x x.zip
            touch a.zip a.sit Transit a.gz a.ivc notes.txt a.plist .DS_Store x/.DS_Store B.ZIP
            touch txt.png x.zip/d.png .DS_Store2; ln -s nothing dangling; ln -s txt.png link)",
         ""},
        {list + "| sed \"s|$PWD||\" | sort",
         "/.DS_Store2\n/B.ZIP\n/link\n/txt.png\n/x.zip/d.png\n"},
        {list + "--exclude \"$PWD/link\" --exclude txt.png | sed \"s|$PWD||\" | sort",
         "/.DS_Store2\n/B.ZIP\n/x.zip/d.png\n"},
    });
}

TEST(LocationVerbs, SaveShowAndForgetTheCache) {
    const Ctl ctl;
    ctl.write("list", list(kNet + kOwn));
    ctl.write("own", list(kOwn));
    ctl.follow({{"halvexctl locations cache exists", "no\n", 1},
                {"halvexctl locations show --json; halvexctl locations save list", "[]\n"},
                {"halvexctl locations show", list(kOwn + kNet)},
                {"cat \"$user/Halvex Pro/Halvex Locations\"", list(kOwn)},
                {"cat \"$user/Halvex Pro/Halvex Net Locations.plist\"", list(kNet)},
                {"halvexctl locations cache exists; halvexctl locations cache remove", "yes\n"},
                {"halvexctl locations show", list(kOwn)},
                {"rm -r home/Library; halvexctl locations save list", ""},
                {"rm -r home/Library; touch home/Library; halvexctl locations save list", "", 1,
                 "Unable to write: "}});
}

TEST(LocationVerbs, MergeAndSplitWithoutTouchingTheUsersFiles) {
    const Ctl ctl;
    ctl.write("list", list(kOwn));
    ctl.write("cache", list(kOwn + kCached));
    ctl.write("dict", "<plist><dict/></plist>");
    ctl.follow({{"halvexctl locations merge list cache", list(kOwn + kNet)},
                {"halvexctl locations merge list cache >all; ls \"home/$support\"", ""},
                {"mkdir -p \"$user/Halvex Pro\"; cp cache \"$user/Halvex Pro/Halvex Net "
                 "Locations.plist\"; halvexctl locations merge list",
                 list(kOwn + kNet)},
                {"halvexctl locations split all all net; cat all net", list(kOwn) + list(kNet)},
                {"halvexctl locations merge list missing", "", 1, "missing: No such file"},
                {"halvexctl locations split dict new net", "", 1, "halvexctl: dict: no list: "},
                {"ls new", "", 2},
                {"halvexctl locations save home", "", 1, "halvexctl: home: is a folder, not a regular file"}});
}

TEST(WarningVerbs, FindTheFirstListThereIs) {
    const Ctl ctl;
    ctl.write("default", list("\t<string>a</string>\n"));
    ctl.follow(
        {{"halvexctl warnings WarningTitles --json --default default", "[\n  \"a\"\n]\n"},
         {"halvexctl warnings has-custom WarningTitles", "no\n", 1},
         {"cp default \"$local/Halvex/WarningTitles.plist\"\n"
          "halvexctl warnings has-custom WarningTitles",
          "yes\n"},
         {"halvexctl warnings WarnMeTimes", list(""), 0, "no default data loaded for Warn"}});
}

TEST(PlistVerb, PrintsEveryKindOfValueAsJson) {
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

TEST(PlistVerb, SaysInOneLineWhereAFileGoesWrong) {
    const Ctl ctl;
    ctl.write("tag", "<plist>\n  <array>\n  </dict>");
    ctl.write("two\nlines", "x");
    ctl.follow({{"halvexctl plist tag", "", 1, "halvexctl: tag: line 3, column 5: mismatched tag\n"},
                {"halvexctl plist 'two\nlines'", "", 1, ": two?lines: line 1, column 1: syntax error\n"}});
}

} // namespace
