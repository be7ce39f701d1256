#pragma once

#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace test {

/// A shell command and its expected result.
struct Step {
    std::string command;
    std::string output;
    int status = 0;
    std::string error = {}; ///< a part of standard error
};

/// Runs commands in a temporary folder. "home" in it is the user's home folder, "root" is searched
/// for /Library; "Library/Application Support" in both is empty at first.
///
/// Commands can use halvexctl and these paths: $user and $local, the "Quorvane Software" folders in
/// home and root; $panes, the user's folder of panes, and $pane, the user's pane.
class Shell {
  public:
    /// Runs each command in a shell of its own.
    void run(const std::vector<Step>& steps) const {
        for (const auto& [command, output, status, error] : steps) {
            const int exited = execute(command);
            EXPECT_EQ(WIFEXITED(exited) ? WEXITSTATUS(exited) : -1, status)
                << command << read("error");
            EXPECT_EQ(read("output"), output) << command;
            EXPECT_THAT(read("error"), testing::HasSubstr(error)) << command;
        }
    }
    void write(const std::string& name, const std::string& text) const {
        folder_.write(name, text);
    }

  private:
    int execute(const std::string& command) const {
        const std::string script = "cd '" + folder_.path().string() + R"(' && {
            export HOME="$PWD/home" XDG_RUNTIME_DIR="$PWD" LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen
            support='Library/Application Support'
            mkdir -p "home/$support" "root/$support"
            user="home/$support/Quorvane Software"
            local="root/$support/Quorvane Software"
            panes=home/Library/PreferencePanes
            pane="$panes/Halvex Pro.prefPane"
            halvexctl() { ')" HALVEX_CTL R"(' --root root "$@"; }
            [ ! -e bus ] || . ./bus
            )" + command + "\n} >output 2>error";
        return std::system(script.c_str());
    }
    std::string read(const std::string& name) const { return contents(folder_.path() / name); }

    TemporaryFolder folder_;
};

} // namespace test
