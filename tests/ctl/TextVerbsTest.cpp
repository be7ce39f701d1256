#include "tests/ctl/Shell.h"

using test::Shell;

namespace {

TEST(DateFormatVerb, ReplacesPlaceholders) {
    Shell().run({{"halvexctl date-format '%W %Z' --zone CET --week=-1", "-1 CET\n"},
                 {"halvexctl date-format --week= '%W|%Z' --zone=", "|\n"},
                 {"halvexctl date-format --week=7 -- --zone=%W", "--zone=7\n"},
                 {"halvexctl date-format '%W' --week '%W'", "", 1, "would replace %W"}});
}

TEST(NewVerb, RejectsNamesThatCannotBeCompiledAndKeepsWhatExists) {
    const Shell shell;
    for (const char* name : {"''", "uptime", "Up-time", "Up.Time", "9Up", "Ü"})
        shell.run(
            {{std::string("halvexctl new a --identifier a.b --name ") + name, "", 2, "--name:"}});
    for (const char* identifier : {"''", "a", "a.", ".a", "a.b/c", "'a.b c'"})
        shell.run({{std::string("halvexctl new a --name A --identifier ") + identifier, "", 2,
                    "--identifier:"}});
    shell.run({{"halvexctl new a/b --name A --identifier a.b", "", 1, "cannot create the folder"},
               {"touch f; halvexctl new f --name A --identifier a.b", "", 1, "f already exists"},
               {"mkdir a; halvexctl new a --name AUptime --identifier a.Uptime | wc -l; ls a; "
                "grep IDENT a/CMakeLists.txt",
                "3\nAUptime.cpp\nAUptimeTest.cpp\nCMakeLists.txt\n  IDENTIFIER a.Uptime\n"},
               {"halvexctl new a --name A --identifier a.b", "", 1, "a already exists"}});
}

TEST(CommandVerb, PrintsTheOutputUnchanged) {
    const Shell shell;
    shell.run(
        {{"halvexctl command 'printf \"a  b\"; sleep 0.1; echo x >&2; printf c; exit 5'", "a  bc"},
         {"halvexctl command \"printf 'a\\0\\177'\" | od -A n -t u1", "  97   0 127\n"},
         {"halvexctl command cat <<EOF\npiped\nEOF", "piped\n"},
         {"halvexctl command 'yes | head -n 1' 2>&1", "y\n"}, // a closed pipe ends yes
         {"halvexctl command 'kill -9 $$'", ""},
         {"halvexctl command \"head -c 1000 /dev/zero; printf '\\200'\"", "", 1, "not ASCII"}});
    for (const std::size_t size : {0U, 1U, 511U, 512U, 513U, 1024U, 100'000U})
        shell.run(
            {{"halvexctl command \"head -c " + std::to_string(size) + " /dev/zero | tr '\\0' x\"",
              std::string(size, 'x')}});
}

TEST(CommandVerb, RunsACommandWithoutReadingItsOutput) {
    Shell().run({
        {"halvexctl command --quiet 'sleep 0.2; : >done; echo x; exit 5' && ls done", "done\n"},
        {"halvexctl command --quiet 'yes 2>/dev/null'", ""}, // a closed pipe ends yes
    });
}

/// Writes the bundle "a" with @p version as its version, which is XML.
void writeBundle(const Shell& shell, const std::string& version) {
    shell.write("a/Contents/Info.plist",
                "<plist><dict><key>CFBundleShortVersionString</key>" + version + "</dict></plist>");
}

const std::string kAddress = "mailto:" HALVEX_SUPPORT_ADDRESS;

TEST(FeedbackVerb, ReportsTheVersionsAndTheTimeZone) {
    const Shell shell;
    writeBundle(shell, "<string>3.1</string>");
    shell.run(
        {{"halvexctl feedback 'Halvex Pro' --bundle a --print --system 0x1045 "
          "--media 07608000 --zone Europe/Paris,CET,3600",
          kAddress + "?Subject=Halvex%20Pro%203.1%20Feedback&body=I%20am%20using%20MacOS%20X%20"
                     "10.4.5%20(PPC)%20with%20Halvex%20Pro%203.1.%0d%0dMy%20Local%20Time%20"
                     "Zone%3A%20Europe/Paris%20[CET,%20GMT%3A%201.00]%0dQuickTime%20Version"
                     "%3A%207.6.0%0d%0dFeedback%20/%20Bug%20Report%3A%0d%0d\n"}});
    const std::pair<const char*, const char*> cases[] = {
        {"--system 0x1039 --media 0x07168000 --zone a,b,0", "10.3.9 7.1.6 0.00\n"},
        {"--system 0x1104 --media 0xFFA2FFFF --zone a,b,-18000", "11.0.4 ff.10.2 -5.00\n"},
        {"--system 0xABCD05FF --media 0 --zone a,b,19800", "5.15.15 0.0.0 5.50\n"},
    };
    for (const auto& [options, reported] : cases)
        shell.run({{std::string("halvexctl feedback P --print ") + options +
                        " | sed 's/.*X%20\\(.*\\)%20(PPC).*GMT%3A%20\\(.*\\)\\].*Version%3A%20"
                        "\\(.*\\)%0d%0dF.*/\\1 \\3 \\2/'",
                    reported}});
}

TEST(FeedbackVerb, ReportsAVersionThatIsANumber) {
    const Shell shell;
    for (const auto& [value, version] :
         {std::pair("<integer>3</integer>", "3"), {"<real>3.1</real>", "3.1"}}) {
        writeBundle(shell, value);
        shell.run({{std::string("halvexctl feedback Halvex --bundle a --print | grep -c "
                                "'=Halvex%20") +
                        version + "%20.*Halvex%20" + version + "\\.%0d'",
                    "1\n"}});
    }
}

TEST(FeedbackVerb, ReportsAnUnknownVersionAsNull) {
    const Shell shell;
    writeBundle(shell, "<array/>");
    const std::string unknown = " --print | grep -c '=Halvex%20(null)%20.*Halvex%20(null)\\.%0d'";
    shell.run({{"halvexctl feedback Halvex --bundle a" + unknown, "1\n"},
               {"halvexctl feedback Halvex" + unknown, "1\n"}});
}

TEST(FeedbackVerb, ReportsTheSystemTimeZone) {
    const std::pair<const char*, const char*> cases[] = {
        {"Asia/Kolkata", "Asia/Kolkata%20[IST,%20GMT%3A%205.50\n"},
        {":Asia/Tokyo", "Asia/Tokyo%20[JST,%20GMT%3A%209.00\n"},
        {"/usr/share/zoneinfo/Pacific/Honolulu", "Pacific/Honolulu%20[HST,%20GMT%3A%20-10.00\n"},
        {"EST5", "EST5%20[EST,%20GMT%3A%20-5.00\n"},
        {"''", "UTC%20[UTC,%20GMT%3A%200.00\n"},
    };
    for (const auto& [zone, reported] : cases)
        Shell().run({{std::string("TZ=") + zone +
                          " halvexctl feedback P --print | sed 's/.*Zone%3A%20\\(.*\\)\\].*/\\1/'",
                      reported}});
}

TEST(FeedbackVerb, RejectsProductNamesThatMakeTheURLInvalid) {
    const Shell shell;
    const std::string bad = "Bad feedback URL: " + kAddress + "?Subject=";
    for (const std::string product : {"Halvex\"", "<Halvex>", "Halvex\\", "Halv\xC3\xA9x", "100%",
                                      "%4", "%G0", "%0G", "Hal|vex", "Hal^vex", "Hal`vex"})
        shell.run({{"halvexctl feedback '" + product + "' --print", "", 1, bad + product + "%20"}});
    shell.run({{"halvexctl feedback 'Halvex\t' --print", "", 1, bad + "Halvex\\t%20"}});
    shell.run({{R"(marks="azAZ09-._~/?#[]@!\$&'()*+,;=%aF"
            halvexctl feedback "$marks" --print | grep -cF "=$marks%20(null)%20")",
                "1\n"},
               {"halvexctl feedback P --print --zone \"$(printf 'a b:c\\nd,e,0')\" | "
                "grep -c '%20a%20b%3Ac%0dd%20\\[e,'",
                "1\n"}});
}

TEST(FeedbackVerb, PassesTheURLToTheMailProgramWithoutAShell) {
    const Shell shell;
    // Writes its arguments to the file "opened".
    shell.write("bin/xdg-open", "#!/bin/sh\nprintf '%s\\n' \"$#\" \"$@\" >new; mv new opened\n");
    const std::string product = "'$(touch$IFS$HOME/x);touch$IFS$HOME/x&'";
    const std::string withProgram = "PATH=\"$PWD/bin:$PATH\" halvexctl feedback " + product;
    shell.run({{"chmod +x bin/xdg-open; " + withProgram + " --print >url && ls opened", "", 2},
               {withProgram, ""},
               {"for i in $(seq 100); do [ -e opened ] && break; sleep 0.05; done", ""},
               {"{ echo 1; cat url; } | diff - opened", ""},
               {"ls -A home", "Library\n"}});
}

TEST(FeedbackVerb, FailsWithoutAMailProgramOrBundle) {
    Shell().run({{"mkdir empty; PATH=\"$PWD/empty\" halvexctl feedback Halvex", "", 1, "no mail"},
                 {"halvexctl feedback Halvex --print --bundle nowhere", "", 1, "nowhere"},
                 {"halvexctl feedback Halvex --print --system 10.4", "", 2, "--system"},
                 {"halvexctl feedback Halvex --print --zone a,b,c", "", 2, "--zone"}});
}

} // namespace
