#include "tests/ctl/Ctl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using test::Ctl;
using test::Outcome;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

TEST(DateFormatVerb, PrintsTheFilledFormat) {
    const Ctl ctl;
    const std::pair<const char*, const char*> cases[] = {
        {"'Week %W of %Y, %Z' --week 07", "Week 07 of %Y, %Z\n"},
        {"'%W %Z' --zone CET --week=-1", "-1 CET\n"},
        {"'[%W]' --week ''", "[]\n"},
        {"'' --zone CET", "\n"},
    };
    for (const auto& [arguments, output] : cases)
        EXPECT_EQ(ctl.run(std::string("halvexctl date-format ") + arguments).output, output);
    const Outcome refused = ctl.run("halvexctl date-format '%W' --week '%W'");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.output, "");
    EXPECT_THAT(refused.log, HasSubstr("value \"%W\" would replace %W without end\n"));
}

TEST(CommandVerb, PrintsTheOutputAsItIs) {
    const Ctl ctl;
    const std::pair<const char*, const char*> cases[] = {
        {"command 'printf \"a  b\"; exit 5'", "a  b"},
        {"command true", ""},
        {"command cat <<EOF\npiped\nEOF", "piped\n"},
        {"command --quiet 'echo lost; exit 5'", ""},
    };
    for (const auto& [arguments, output] : cases) {
        const Outcome outcome = ctl.run(std::string("halvexctl ") + arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.log;
        EXPECT_EQ(outcome.output, output);
    }
    EXPECT_EQ(ctl.run("halvexctl command 'yes | head -n 1'").log, "") << "a closed pipe ends it";
    EXPECT_EQ(ctl.run("halvexctl command \"printf '\\351'\"").status, 1);
}

/// A desktop whose only program writes down what it is given.
class FeedbackVerb : public testing::Test {
  protected:
    Outcome run(const std::string& arguments) const {
        return ctl.run("mkdir -p bin; printf '%s\\n' '#!/bin/sh' 'printf %s\\\\n \"$#\" \"$@\" "
                       ">opened.new; mv opened.new opened' >bin/xdg-open; chmod +x bin/xdg-open\n"
                       "export PATH=\"$PWD/bin:$PATH\" TZ=Asia/Kolkata\n" +
                       arguments);
    }
    const test::Ctl ctl;
};

TEST_F(FeedbackVerb, PrintsTheAddressOfWhatTheCommandLineSays) {
    ctl.write("a/Contents/Info.plist", "<plist><dict><key>CFBundleShortVersionString</key>"
                                       "<string>3.1</string></dict></plist>");
    const Outcome all = run("halvexctl feedback 'Halvex Pro' --bundle a --print --system 0x1045 "
                            "--media 07608000 --zone Europe/Paris,CET,3600; ls opened");
    EXPECT_THAT(all.output, StartsWith("mailto:"));
    EXPECT_THAT(
        all.output,
        HasSubstr("?Subject=Halvex%20Pro%203.1%20Feedback&body=I%20am%20using%20MacOS%20X%20"
                  "10.4.5%20(PPC)%20with%20Halvex%20Pro%203.1.%0d%0dMy%20Local%20Time%20"
                  "Zone%3A%20Europe/Paris%20[CET,%20GMT%3A%201.00]%0dQuickTime%20Version"
                  "%3A%207.6.0%0d%0dFeedback%20/%20Bug%20Report%3A%0d%0d\n"));
    EXPECT_THAT(all.log, HasSubstr("cannot access 'opened'")) << "and opens nothing";
    EXPECT_THAT(run("halvexctl feedback Halvex --print").output,
                testing::AllOf(HasSubstr("=Halvex%20(null)%20Feedback&"),
                               HasSubstr("Asia/Kolkata%20[IST,%20GMT%3A%205.50]%0d"),
                               HasSubstr("Version%3A%200.0.0%0d")));
}

TEST_F(FeedbackVerb, HandsTheAddressToTheDesktopWithoutAShell) {
    const Outcome opened =
        run("product='$(touch$IFS$HOME/x);touch$IFS$HOME/x&'; halvexctl feedback \"$product\"\n"
            "for i in $(seq 100); do [ -e opened ] && break; sleep 0.05; done\n"
            "{ echo 1; halvexctl feedback \"$product\" --print; } | diff - opened && ls -A home");
    EXPECT_EQ(opened.status, 0) << opened.log;
    EXPECT_EQ(opened.output, "Library\n");
    const Outcome none = run("mkdir empty; PATH=\"$PWD/empty\" halvexctl feedback Halvex");
    EXPECT_EQ(none.status, 1);
    EXPECT_THAT(none.log, HasSubstr("no mail program can be started"));
}

TEST_F(FeedbackVerb, RefusesWhatItCannotUse) {
    const std::pair<const char*, int> cases[] = {
        {"'Halvex\"' --print", 1},
        {"Halvex --print --bundle nowhere", 1},
        {"Halvex --print --system 10.4", 2},
        {"Halvex --print --media ''", 2},
        {"Halvex --print --zone CET", 2},
        {"Halvex --print --zone a,b,c", 2},
        {"", 2},
    };
    for (const auto& [arguments, status] : cases) {
        const Outcome outcome = run(std::string("halvexctl feedback ") + arguments);
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_EQ(outcome.output, "");
        EXPECT_NE(outcome.log, "");
    }
}

} // namespace
