#include "tests/ctl/Ctl.h"

using test::Ctl;

namespace {

TEST(DateFormatVerb, PrintsTheFilledFormat) {
    Ctl().follow({
        {"halvexctl date-format '%W %Z' --zone CET --week=-1", "-1 CET\n"},
        {"halvexctl date-format '%W' --week '%W'", "", 1,
         "value \"%W\" would replace %W without end\n"},
    });
}

TEST(CommandVerb, PrintsTheOutputAsItIs) {
    Ctl().follow({
        {"halvexctl command 'printf \"a  b\"; sleep 0.1; echo lost >&2; printf c; exit 5'",
         "a  bc"},
        {"for n in 0 1 511 512 513 1024 100000; do\n"
         "halvexctl command \"head -c $n /dev/zero | tr '\\0' x\" | grep -o x | wc -l; done",
         "0\n1\n511\n512\n513\n1024\n100000\n"},
        {"halvexctl command \"printf 'a\\0\\177'\" | od -A n -t u1", "  97   0 127\n"},
        {"halvexctl command cat <<EOF\npiped\nEOF", "piped\n"},
        {"halvexctl command 'yes | head -n 1' 2>&1", "y\n"}, // a closed pipe ends yes
        {"halvexctl command 'kill -9 $$'", ""},
        {"halvexctl command \"head -c 1000 /dev/zero; printf '\\200'\"", "", 1},
        {"halvexctl command --quiet 'sleep 0.2; : >done; echo lost; exit 5'; ls done", "done\n"},
        {"halvexctl command --quiet 'yes 2>/dev/null'", ""}, // ends, for nobody reads it
    });
}

/// A bundle's folder named "a" with this value for its version, as XML.
void writeBundle(const Ctl& ctl, const std::string& version) {
    ctl.write("a/Contents/Info.plist",
              "<plist><dict><key>CFBundleShortVersionString</key>" + version + "</dict></plist>");
}

const std::string kAddress = "mailto:" HALVEX_SUPPORT_ADDRESS;

TEST(FeedbackVerb, TellsWhatSupportNeeds) {
    const Ctl ctl;
    writeBundle(ctl, "<string>3.1</string>");
    ctl.follow(
        {{"halvexctl feedback 'Halvex Pro' --bundle a --print --system 0x1045 "
          "--media 07608000 --zone Europe/Paris,CET,3600",
          kAddress + "?Subject=Halvex%20Pro%203.1%20Feedback&body=I%20am%20using%20MacOS%20X%20"
                     "10.4.5%20(PPC)%20with%20Halvex%20Pro%203.1.%0d%0dMy%20Local%20Time%20"
                     "Zone%3A%20Europe/Paris%20[CET,%20GMT%3A%201.00]%0dQuickTime%20Version"
                     "%3A%207.6.0%0d%0dFeedback%20/%20Bug%20Report%3A%0d%0d\n"}});
    writeBundle(ctl, "<integer>3</integer>");
    const std::string unknown = " --print | grep -c '=Halvex%20(null)%20.*Halvex%20(null)\\.%0d'";
    ctl.follow({{"halvexctl feedback Halvex --bundle a" + unknown, "1\n"},
                {"halvexctl feedback Halvex" + unknown, "1\n"}});
    const std::pair<const char*, const char*> cases[] = {
        {"--system 0x1039 --media 0x07168000 --zone a,b,0", "10.3.9 7.1.6 0.00\n"},
        {"--system 0x1104 --media 0xFFA2FFFF --zone a,b,-18000", "11.0.4 ff.10.2 -5.00\n"},
        {"--system 0xABCD05FF --media 0 --zone a,b,19800", "5.15.15 0.0.0 5.50\n"},
    };
    for (const auto& [options, written] : cases)
        ctl.follow({{std::string("halvexctl feedback P --print ") + options +
                         " | sed 's/.*X%20\\(.*\\)%20(PPC).*GMT%3A%20\\(.*\\)\\].*Version%3A%20"
                         "\\(.*\\)%0d%0dF.*/\\1 \\3 \\2/'",
                     written}});
    ctl.follow(
        {{"for zone in Asia/Kolkata :Asia/Tokyo /usr/share/zoneinfo/Pacific/Honolulu EST5 ''\n"
          "do TZ=$zone halvexctl feedback P --print | sed 's/.*Zone%3A%20\\(.*\\)\\].*/\\1/'\n"
          "done",
          "Asia/Kolkata%20[IST,%20GMT%3A%205.50\n"
          "Asia/Tokyo%20[JST,%20GMT%3A%209.00\n"
          "Pacific/Honolulu%20[HST,%20GMT%3A%20-10.00\n"
          "EST5%20[EST,%20GMT%3A%20-5.00\n"
          "UTC%20[UTC,%20GMT%3A%200.00\n"}});
}

TEST(FeedbackVerb, OpensNothingThatIsNoURL) {
    const Ctl ctl;
    const std::string bad = "Bad feedback URL: " + kAddress + "?Subject=";
    for (const std::string product :
         {"Halvex\"", "<Halvex>", "Halvex\\", "Halvex\t", "Halv\xC3\xA9x", "100%", "%4", "%G0",
          "%0G", "Hal|vex", "Hal^vex", "Hal`vex"})
        ctl.follow({{"halvexctl feedback '" + product + "' --print", "", 1,
                     bad + product + "%20(null)%20Feed"}});
    ctl.follow({{R"(marks="azAZ09-._~/?#[]@!\$&'()*+,;=%aF"
                    halvexctl feedback "$marks" --print | grep -cF "=$marks%20(null)%20")",
                 "1\n"},
                {"halvexctl feedback P --print --zone \"$(printf 'a b:c\\nd,e,0')\" | "
                 "grep -c '%20a%20b%3Ac%0dd%20\\[e,'",
                 "1\n"}});
}

TEST(FeedbackVerb, HandsTheAddressToTheDesktopWithoutAShell) {
    const Ctl ctl;
    // A desktop whose only program writes down what it is given.
    ctl.write("bin/xdg-open", "#!/bin/sh\nprintf '%s\\n' \"$#\" \"$@\" >new; mv new opened\n");
    ctl.follow({
        {"chmod +x bin/xdg-open; export PATH=\"$PWD/bin:$PATH\"\n"
         "product='$(touch$IFS$HOME/x);touch$IFS$HOME/x&'\n"
         "halvexctl feedback \"$product\" --print >address; [ ! -e opened ] || echo opened\n"
         "halvexctl feedback \"$product\"\n"
         "for i in $(seq 100); do [ -e opened ] && break; sleep 0.05; done\n"
         "{ echo 1; cat address; } | diff - opened && ls -A home",
         "Library\n"},
        {"mkdir empty; PATH=\"$PWD/empty\" halvexctl feedback Halvex", "", 1,
         "no mail program can be started"},
        {"halvexctl feedback Halvex --print --bundle nowhere", "", 1, "nowhere"},
        {"halvexctl feedback Halvex --print --system 10.4", "", 2, "--system"},
        {"halvexctl feedback Halvex --print --zone a,b,c", "", 2, "--zone"},
    });
}

} // namespace
