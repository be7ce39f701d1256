#include "tests/ctl/Ctl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using test::Ctl;
using test::Outcome;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// Commands one after the other in one folder, what they print and their exit status.
struct Step {
    std::string command;
    std::string output;
    int status = 0;
};

void follow(const Ctl& ctl, const std::vector<Step>& steps) {
    for (const auto& [command, output, status] : steps) {
        const Outcome outcome = ctl.run(command);
        EXPECT_EQ(outcome.status, status) << command << "\n" << outcome.log;
        EXPECT_EQ(outcome.output, output) << command;
    }
}

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
    const Ctl ctl;
    EXPECT_EQ(ctl.run("halvexctl paths").log, "");
    follow(ctl, {{"halvexctl paths | wc -l", "26\n"},
                 {"ls \"$user\" \"$local\" 2>&1 | grep -c cannot", "2\n"},
                 {"halvexctl paths --json | grep /old | sed \"s|$PWD||\"",
                  "  \"HalvexLoadLocationFile/old\": "
                  "\"/home/Library/Application Support/Halvex Locations\",\n"}});
}

TEST(PathVerbs, ListWhatIsThereAndRefuseWithoutTheFolder) {
    const Ctl ctl;
    for (const std::string verb : {"themes", "pictures", "frames"}) {
        follow(ctl, {{"halvexctl " + verb + " --json", "", 1}});
        EXPECT_THAT(ctl.read("log"), HasSubstr("no folder of " + verb));
    }
    ctl.write("root/Library/Application Support/Quorvane Software/Themes/a\n\"\\\xC3\xA9\xE9", "");
    ctl.write("root/Library/Application Support/Quorvane Software/Pictures/sea/wave", "");
    follow(ctl, {{"halvexctl themes", "a\n\"\\\xC3\xA9\xE9\n"},
                 {"halvexctl themes --json", "[\n  \"a\\n\\\"\\\\\xC3\xA9\xEF\xBF\xBD\"\n]\n"},
                 {"halvexctl pictures | sort", "sea\nsea/wave\n"},
                 {"mkdir \"home/$support/Glimmerbox Frames\"; halvexctl frames --json", "[]\n"},
                 {"cd \"home/$support/Glimmerbox Frames\"; touch a b c d.txt\n" HALVEX_CTL
                  " frames --exclude a --exclude \"$PWD/b\" | sed \"s|$PWD||\"",
                  "/c\n"}});
}

TEST(LocationVerbs, SaveShowAndForgetTheCache) {
    const Ctl ctl;
    ctl.write("list", list(kNet + kOwn));
    follow(ctl, {{"halvexctl locations cache exists", "no\n", 1},
                 {"halvexctl locations show --json; halvexctl locations save list", "[]\n"},
                 {"halvexctl locations show", list(kOwn + kNet)},
                 {"halvexctl locations cache exists; halvexctl locations cache remove", "yes\n"},
                 {"halvexctl locations show", list(kOwn)},
                 {"rm -r home/Library; halvexctl locations save list", ""},
                 {"rm -r home/Library; touch home/Library; halvexctl locations save list", "", 1}});
    EXPECT_THAT(ctl.read("log"), HasSubstr("Unable to write: "));
}

TEST(LocationVerbs, MergeAndSplitWithoutTouchingTheUsersFiles) {
    const Ctl ctl;
    ctl.write("list", list(kOwn));
    ctl.write("cache", list(kOwn + kCached));
    follow(ctl, {{"halvexctl locations merge list cache", list(kOwn + kNet)},
                 {"halvexctl locations merge list cache >all; ls \"home/$support\"", ""},
                 {"mkdir -p \"$user/Halvex Pro\"; cp cache \"$user/Halvex Pro/Halvex Net "
                  "Locations.plist\"; halvexctl locations merge list",
                  list(kOwn + kNet)},
                 {"halvexctl locations split all all net; cat all net", list(kOwn) + list(kNet)},
                 {"halvexctl locations split net own nowhere/net", "", 1}});
    EXPECT_EQ(ctl.read("log"), "halvexctl: nowhere/net: cannot be written\n");
}

TEST(LocationVerbs, RefuseWhatIsNoList) {
    const Ctl ctl;
    ctl.write("good", list(kOwn));
    ctl.write("dict", "<plist><dict/></plist>");
    const std::pair<std::string, std::string> cases[] = {
        {"merge good missing", "missing: No such file or directory"},
        {"split dict own net; [ ! -e own ] && false", "dict: no list: "},
        {"save home", "home: It is a folder."},
    };
    for (const auto& [verb, line] : cases) {
        follow(ctl, {{"halvexctl locations " + verb, "", 1}});
        EXPECT_THAT(ctl.read("log"), StartsWith("halvexctl: " + line));
    }
}

TEST(WarningVerbs, FindTheFirstListThereIs) {
    const std::string title = "halvexctl warnings WarningTitles --json --default ";
    const std::string custom = "halvexctl warnings has-custom WarningTitles";
    const Ctl ctl;
    ctl.write("default", list("\t<string>a</string>\n"));
    ctl.write("own", list("\t<string>b</string>\n"));
    follow(ctl, {{title + "default", "[\n  \"a\"\n]\n"},
                 {custom, "no\n", 1},
                 {"cp own \"$local/Halvex/WarningTitles.plist\"; " + custom, "yes\n"},
                 {title + "default", "[\n  \"b\"\n]\n"},
                 {"halvexctl warnings WarnMeTimes", list("")}});
    EXPECT_THAT(ctl.read("log"), HasSubstr("no default data loaded for WarnMeTimes\n"));
}

} // namespace
