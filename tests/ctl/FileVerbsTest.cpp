#include "tests/ctl/Shell.h"

using test::Shell;

namespace {

/// A property list whose root is an array of @p records.
std::string list(const std::string& records) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<array>\n" +
           records + "</array>\n</plist>\n";
}

std::string strings(int count, const std::string& text) {
    const std::string first = "\t\t<string>" + text + "</string>\n";
    return count == 1 ? first : first + strings(count - 1, text);
}
std::string record(const std::string& values) {
    return "\t<array>\n" + values + "\t</array>\n";
}

const std::string kOwn = record(strings(5, "Amsterdam"));
const std::string kCached = record(strings(5, "Lima"));
const std::string kNet = record(strings(5, "Lima") + strings(8, "") + "\t\t<true/>\n");

TEST(PathVerbs, PrintPathsWithoutCreatingThem) {
    Shell().run({{"halvexctl paths 2>&1 | wc -l", "26\n"},
                 {"ls -d \"$user\" \"$local\"", "", 2},
                 {"halvexctl paths --json | grep /old | sed \"s|$PWD||\"",
                  "  \"HalvexLoadLocationFile/old\": "
                  "\"/home/Library/Application Support/Halvex Locations\",\n"}});
}

TEST(PathVerbs, FailIfTheFolderDoesNotExist) {
    const Shell shell;
    for (const std::string verb : {"themes", "pictures", "frames"})
        shell.run({{"halvexctl " + verb + " --json", "", 1, "the folder of " + verb}});
}

TEST(PathVerbs, ListFileNames) {
    const Shell shell;
    const std::string local = "root/Library/Application Support/Quorvane Software/";
    shell.write(local + "Themes/a\n\"\\\xC3\xA9\xE9", "");
    shell.write(local + "Pictures/sea/wave", "");
    shell.run(
        {{"halvexctl themes", "a\n\"\\\xC3\xA9\xE9\n"},
         {"halvexctl themes --json", "[\n  \"a\\n\\\"\\\\\xC3\xA9\xEF\xBF\xBD\"\n]\n"},
         {"cd \"$local\"; touch Themes/z Themes/.a Pictures/.b Pictures/sea/a; ln -s . Pictures/l",
          ""},
         {"ls -UA \"$local/Themes\" >names; halvexctl themes | diff names -", ""},
         {"find \"$local/Pictures\" -mindepth 1 -printf '%P\\n' >names; wc -l <names", "5\n"},
         {"halvexctl pictures | diff names -", ""},
         {"mkdir \"home/$support/Glimmerbox Frames\"; halvexctl frames --json", "[]\n"},
         {"mv \"$local/Themes\" elsewhere; ln -s \"$PWD/elsewhere\" \"$local/Themes\"", ""},
         {"ls -UA elsewhere >names; halvexctl themes | diff names -", ""}});
}

TEST(PathVerbs, ListFramesByNameAndExclusion) {
    const std::string list = "cd \"home/$support/Glimmerbox Frames\"; " HALVEX_CTL " frames ";
    const std::string sorted = "| sed \"s|$PWD||\" | sort";
    Shell().run(
        {{"touch \"home/$support/Glimmerbox Frames\"; halvexctl frames", "", 1},
         {R"(cd "home/$support"; rm Glimmer*; mkdir 'Glimmerbox Frames'; cd Glimmer*; mkdir x x.zip
            touch a.zip a.sit Transit a.gz a.ivc notes.txt a.plist .DS_Store x/.DS_Store B.ZIP
            touch txt.png x.zip/d.png .DS_Store2; ln -s nothing dangling; ln -s txt.png link)",
          ""},
         {list + sorted, "/.DS_Store2\n/B.ZIP\n/link\n/txt.png\n/x.zip/d.png\n"},
         {list + "--exclude \"$PWD/link\" --exclude txt.png " + sorted,
          "/.DS_Store2\n/B.ZIP\n/x.zip/d.png\n"}});
}

TEST(LocationVerbs, SaveAndShowOwnAndSubscribedLocations) {
    const Shell shell;
    shell.write("list", list(kNet + kOwn));
    shell.run(
        {{"halvexctl locations cache exists", "no\n", 1},
         {"halvexctl locations show --json", "[]\n"},
         {"halvexctl locations save list && halvexctl locations show", list(kOwn + kNet)},
         {"cat \"$user/Halvex Pro/Halvex Locations\"", list(kOwn)},
         {"cat \"$user/Halvex Pro/Halvex Net Locations.plist\"", list(kNet)},
         {"halvexctl locations cache exists", "yes\n"},
         {"halvexctl locations cache remove && halvexctl locations show", list(kOwn)},
         {"rm -r home/Library; halvexctl locations save list", ""},
         {"rm \"$user/Halvex Pro/\"*Net*; mkdir \"$user/Halvex Pro/Halvex Net Locations.plist\"",
          ""},
         {"halvexctl locations save list", "", 1, "the subscribed locations were not saved"},
         {"rm -r home/Library; touch home/Library; halvexctl locations save list", "", 1,
          "Unable to write: "}});
}

TEST(LocationVerbs, LogNoErrorsInAnEmptyHome) {
    const Shell shell;
    for (const std::string verb :
         {"locations show", "locations cache exists", "locations cache remove",
          "warnings WarningTitles", "warnings has-custom WarningTitles", "remove X", "upgrade"})
        shell.run({{"rm -r home/* root/*; halvexctl " + verb + " >out; grep -i error error", "", 1},
                   {"ls home/Library", "Application Support\nPreferences\n"}});
}

TEST(LocationVerbs, MergeAndSplitWithoutChangingTheUsersFiles) {
    const Shell shell;
    shell.write("list", list(kOwn));
    shell.write("cache", list(kOwn + kCached));
    shell.write("dict", "<plist><dict/></plist>");
    shell.run(
        {{"halvexctl locations merge list cache", list(kOwn + kNet)},
         {"halvexctl locations merge list cache >all && ls \"home/$support\"", ""},
         {"mkdir -p \"$user/Halvex Pro\"; cp cache \"$user/Halvex Pro/Halvex Net Locations.plist\"",
          ""},
         {"halvexctl locations merge list", list(kOwn + kNet)},
         {"halvexctl locations split all all net && cat all", list(kOwn)},
         {"cat net", list(kNet)},
         {"halvexctl locations merge list missing", "", 1, "missing: No such file"},
         {"halvexctl locations split dict new net", "", 1,
          "halvexctl: dict: the root of the property list is not an array\n"},
         {"ls new", "", 2},
         {"halvexctl locations save home", "", 1, "home: is a folder"}});
}

TEST(WarningVerbs, PrintTheCustomListOrTheDefault) {
    const Shell shell;
    shell.write("default", list("\t<string>a</string>\n"));
    shell.run({{"halvexctl warnings WarningTitles --json --default default", "[\n  \"a\"\n]\n"},
               {"halvexctl warnings has-custom WarningTitles", "no\n", 1},
               {"cp default \"$local/Halvex/WarningTitles.plist\"", ""},
               {"halvexctl warnings has-custom WarningTitles", "yes\n"},
               {"halvexctl warnings WarnMeTimes", list(""), 0, "no default data loaded for Warn"}});
}

TEST(PlistVerb, PrintsEveryTypeAsJson) {
    const Shell shell;
    const std::pair<const char*, const char*> cases[] = {
        {"<string>\"a\\b/\t\n&#13;\x7F</string>", "\"\\\"a\\\\b/\\t\\n\\r\x7F\""},
        {"<string>\xC2\x80 \xE6\x9D\xB1 \xED\x9F\xBF \xF0\x9F\x95\x90 \xF4\x8F\xBF\xBD</string>",
         "\"\xC2\x80 \xE6\x9D\xB1 \xED\x9F\xBF \xF0\x9F\x95\x90 \xF4\x8F\xBF\xBD\""},
        {"<integer>-9223372036854775808</integer>", "-9223372036854775808"},
        {"<integer>18446744073709551615</integer>", "18446744073709551615"},
        {"<real>-0</real>", "-0.0"},
        {"<real>5e-324</real>", "5e-324"},
        {"<real>1e300</real>", "1e+300"},
        {"<real>nan</real>", "null"},
        {"<real>-inf</real>", "null"},
        {"<date>-0044-03-15T09:00:00Z</date>", "\"-0044-03-15T09:00:00Z\""},
        {"<data></data>", "\"\""},
        {"<data>/w==</data>", "\"/w==\""},
        {"<data>+/8=</data>", "\"+/8=\""},
        {"<data>AAEC AwQF</data>", "\"AAECAwQF\""},
        {"<dict><key>z\"</key><array><dict/><true/><array/></array><key>a</key><string/></dict>",
         "{\n  \"z\\\"\": [\n    {},\n    true,\n    []\n  ],\n  \"a\": \"\"\n}"},
    };
    for (const auto& [xml, json] : cases) {
        shell.write("value.plist", std::string("<plist>") + xml + "</plist>");
        shell.run({{"halvexctl plist value.plist --json", std::string(json) + "\n"}});
    }
}

TEST(PlistVerb, ReportsTheLineAndColumnOfAnError) {
    const Shell shell;
    shell.write("tag", "<plist>\n  <array>\n  </dict>");
    shell.write("two\nlines", "x");
    shell.run(
        {{"halvexctl plist tag", "", 1, "halvexctl: tag: line 3, column 5: mismatched tag\n"},
         {"halvexctl plist 'two\nlines'", "", 1, ": two?lines: line 1, column 1: syntax error\n"}});
}

TEST(PreferencesVerbs, ReadWriteAndDelete) {
    Shell().run(
        {{"halvexctl prefs write org.example.A Text a-b; grep -c a-b "
          "home/Library/Preferences/*.plist",
          "1\n"},
         {"halvexctl prefs read org.example.A Text", "a-b\n"},
         {"halvexctl prefs write org.example.A Number --type integer -- -5", ""},
         {"halvexctl prefs write org.example.A Real --type real 2.5", ""},
         {"halvexctl prefs write org.example.A On --type boolean true", ""},
         {"halvexctl prefs delete org.example.A Text", ""},
         {"halvexctl prefs read org.example.A Text", "", 1, "there is no preference Text"},
         {"halvexctl prefs read org.example.A --json",
          "{\n  \"Number\": -5,\n  \"Real\": 2.5,\n  \"On\": true\n}\n"},
         {"halvexctl prefs write org.example.A Number --type integer 5x", "", 1, "5x is not of"},
         {"halvexctl prefs write org.example.A On --type boolean yes", "", 1, "yes is not of"},
         {"halvexctl prefs write org.example.A On --type word 1", "", 2, "word"},
         {"halvexctl prefs read ../A", "", 1, "cannot open preferences"},
         {"halvexctl prefs write a/b Key 1", "", 1, "cannot open preferences"}});
}

} // namespace
