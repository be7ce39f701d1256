#include "tests/ctl/Ctl.h"

using test::Ctl;

namespace {

TEST(DateFormatVerb, PrintsTheFilledFormat) {
    Ctl().follow({
        {"halvexctl date-format 'Week %W of %Y, %Z' --week 07", "Week 07 of %Y, %Z\n"},
        {"halvexctl date-format '%W %Z' --zone CET --week=-1", "-1 CET\n"},
        {"halvexctl date-format '[%W]' --week ''", "[]\n"},
        {"halvexctl date-format '%W' --week '%W'", "", 1,
         "value \"%W\" would replace %W without end\n"},
    });
}

TEST(CommandVerb, PrintsTheOutputAsItIs) {
    Ctl().follow({
        {"halvexctl command 'printf \"a  b\"; exit 5'", "a  b"},
        {"halvexctl command cat <<EOF\npiped\nEOF", "piped\n"},
        {"halvexctl command --quiet 'echo lost; exit 5'", ""},
        {"halvexctl command 'yes | head -n 1' 2>&1", "y\n"}, // a closed pipe ends yes
        {"halvexctl command \"printf '\\351'\"", "", 1},
    });
}

TEST(FeedbackVerb, PrintsTheAddressOrHandsItToTheDesktopWithoutAShell) {
    const Ctl ctl;
    // A desktop whose only program writes down what it is given.
    ctl.write("bin/xdg-open", "#!/bin/sh\nprintf '%s\\n' \"$#\" \"$@\" >new; mv new opened\n");
    ctl.write("a/Contents/Info.plist", "<plist><dict><key>CFBundleShortVersionString</key>"
                                       "<string>3.1</string></dict></plist>");
    const std::string setUp =
        "chmod +x bin/xdg-open; export PATH=\"$PWD/bin:$PATH\" TZ=Asia/Kolkata\n";
    ctl.follow({
        {setUp + "halvexctl feedback 'Halvex Pro' --bundle a --print --system 0x1045 "
                 "--media 07608000 --zone Europe/Paris,CET,3600 | grep -c '=Halvex%20Pro%203.1%20.*"
                 "%2010.4.5%20.*Paris%20\\[CET,%20GMT%3A%201.00\\].*%207.6.0%0d'; [ ! -e opened ]",
         "1\n"},
        {setUp + "halvexctl feedback Halvex --print | grep -c "
                 "'=Halvex%20(null)%20.*Kolkata%20\\[IST,%20GMT%3A%205.50\\].*%3A%200.0.0%0d'",
         "1\n"},
        {setUp +
             "product='$(touch$IFS$HOME/x);touch$IFS$HOME/x&'; halvexctl feedback \"$product\"\n"
             "for i in $(seq 100); do [ -e opened ] && break; sleep 0.05; done\n"
             "{ echo 1; halvexctl feedback \"$product\" --print; } | diff - opened && ls -A home",
         "Library\n"},
        {"mkdir empty; PATH=\"$PWD/empty\" halvexctl feedback Halvex", "", 1,
         "no mail program can be started"},
        {"halvexctl feedback 'Halvex\"' --print", "", 1, "Bad feedback URL"},
        {"halvexctl feedback Halvex --print --bundle nowhere", "", 1, "nowhere"},
        {"halvexctl feedback Halvex --print --system 10.4", "", 2, "--system"},
        {"halvexctl feedback Halvex --print --zone a,b,c", "", 2, "--zone"},
    });
}

} // namespace
