#include "platform/Workspace.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/posix/PosixProcessList.h"
#include "platform/posix/PosixScriptRunner.h"
#include "platform/posix/PosixWorkspace.h"
#include "platform/posix/StartProgram.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <sys/wait.h>
#include <thread>

namespace fs = std::filesystem;
using namespace platform;
using testing::HasSubstr;

namespace {

class Programs : public testing::Test {
  protected:
    void SetUp() override { expat::install(); }
    void TearDown() override {
        for (const pid_t process : started)
            kill(process, SIGKILL);
    }
    std::string script(const std::string& name, const std::string& commands) const {
        const std::string path = folder.write(name, "#!/bin/sh\n" + commands);
        fs::permissions(path, fs::perms::owner_all);
        return path;
    }
    /// Waits until a program has renamed its finished output to @p name, and returns it.
    std::string output(const std::string& name) const {
        const std::string path = folder.file(name);
        for (int i = 0; i < 500 && !fs::exists(path); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return test::contents(path);
    }
    /// Creates an application bundle whose program is a copy of "sleep".
    std::string application(const std::string& name, const std::string& info) const {
        const std::string bundle = folder.file(name);
        folder.write(name + "/Contents/Info.plist", "<plist><dict>" + info + "</dict></plist>");
        fs::create_directories(bundle + "/Contents/Linux");
        fs::copy("/bin/sleep", bundle + "/Contents/Linux/Program");
        return bundle;
    }
    std::vector<RunningProcess> running(const std::string& name) {
        std::vector<RunningProcess> found;
        for (const RunningProcess& process : posix::PosixProcessList().processes())
            if (process.name == name) {
                found.push_back(process);
                started.push_back(*posix::processIdentifier(process.serialNumber));
            }
        return found;
    }

    test::TemporaryFolder folder;
    test::RecordingLog log;
    std::vector<pid_t> started;
};

TEST_F(Programs, ReceiveTheirArgumentsUnchangedAndNoFileButStandardError) {
    constexpr int kOpenFile = 9; // without FD_CLOEXEC
    dup2(STDERR_FILENO, kOpenFile);
    std::signal(SIGPIPE, SIG_IGN);
    const std::string program = script(
        "program", "cd '" + folder.path().string() +
                       "'\nprintf '%s|' \"$#\" \"$@\" $(readlink /proc/$$/fd/0 /proc/$$/fd/1 "
                       "/proc/$$/fd/9) >out\ngrep SigIgn /proc/$$/status >>out\n"
                       "mv out done\n");
    EXPECT_EQ(posix::startProgram(program, {"a b", "", "$HOME;'\""}), 0);
    const std::string text = output("done");
    EXPECT_THAT(text, HasSubstr("3|a b||$HOME;'\"|/dev/null|/dev/null|SigIgn"));
    EXPECT_THAT(text, HasSubstr("SigIgn:\t0000000000000000"));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "the program is not a child of this process";
    EXPECT_EQ(errno, ECHILD);
    std::signal(SIGPIPE, SIG_DFL);
    close(kOpenFile);
}

TEST_F(Programs, AreListedUnderTheNamesOfTheirBundles) {
    const std::string named =
        application("Some.app", "<key>CFBundleName</key><string>Halvex 2</string>");
    const std::string unnamed = application("Other Thing.app", "");
    fs::copy("/bin/sleep", folder.file("no-bundle"));
    for (const std::string& program :
         {named + "/Contents/Linux/Program", unnamed + "/Contents/Linux/Program",
          folder.file("no-bundle")})
        EXPECT_EQ(posix::startProgram(program, {"60"}), 0);
    for (const char* name : {"Halvex 2", "Other Thing", "no-bundle"})
        EXPECT_EQ(running(name).size(), 1U) << name;
    EXPECT_TRUE(running("Program").empty());

    fs::remove_all(unnamed); // a running program keeps its name
    const auto process = running("Other Thing");
    ASSERT_EQ(process.size(), 1U);
    const ProcessSerialNumber number = process[0].serialNumber;
    const auto identifier = posix::processIdentifier(number);
    ASSERT_TRUE(identifier);
    EXPECT_EQ(posix::processIdentifier(number + (ProcessSerialNumber{1} << 22)), std::nullopt)
        << "a later process with the same identifier";
    kill(*identifier, SIGKILL);
    for (int i = 0; i < 500 && posix::processIdentifier(number); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(posix::processIdentifier(number), std::nullopt);
    EXPECT_TRUE(running("Other Thing").empty());
}

TEST_F(Programs, OfApplicationsAreStartedOrTheLogStatesWhyNot) {
    posix::PosixWorkspace workspace;
    const std::string executable = "<key>CFBundleExecutable</key><string>Program</string>";
    const std::string bundle = application("Good.app", executable);
    script("Good.app/Contents/Linux/Program", "touch '" + folder.file("opened") + "'\n");
    EXPECT_TRUE(workspace.openFile(bundle));
    EXPECT_EQ(output("opened"), "");
    EXPECT_TRUE(fs::exists(folder.file("opened")));
    const std::pair<std::string, std::string> cases[] = {
        {folder.file("None.app"), "there is no such folder"},
        {application("Nameless.app", ""), "CFBundleExecutable is missing or invalid"},
        {application("Lost.app", "<key>CFBundleExecutable</key><string>Lost</string>"),
         "Lost: No such file or directory"},
    };
    for (const auto& [path, reason] : cases) {
        EXPECT_FALSE(workspace.openFile(path)) << path;
        EXPECT_TRUE(log.contains("cannot start " + path + ": ")) << path;
        EXPECT_TRUE(log.contains(reason)) << reason;
        log.take();
    }
    EXPECT_FALSE(workspace.openFile("/a", "Finder"));
    EXPECT_TRUE(log.contains("cannot open /a with Finder: unknown application"));
}

TEST_F(Programs, AreNotStartedByScriptsThatDoNotSelectAPane) {
    const test::ScopedEnvironment path("PATH", "/nowhere");
    posix::PosixScriptRunner runner;
    const std::string end = "\"\nend tell\n";
    const std::string start =
        "tell application \"System Preferences\"\nactivate\nset the current pane to pane id \"";
    for (const std::string& bad : {std::string(), start, start + end, start + "a" + end + "more",
                                   "beep\n" + start + "a" + end, start + "a\"\nquit\n\"" + end,
                                   start + "a\\" + end, start + "a\nb" + end})
        EXPECT_THAT(runner.run(bad).value_or("accepted"), HasSubstr("unsupported script")) << bad;
}

} // namespace
