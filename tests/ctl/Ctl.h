#pragma once

#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace test {

/// A shell's command line, and what it is to leave.
struct Step {
    std::string command;
    std::string output;
    int status = 0;
    std::string log = {}; ///< a part of standard error
};

/// The real program, in a folder of the test's own. "home" there is the user's home folder, "root"
/// lies before /Library; both have a "Library/Application Support" and nothing else in it.
class Ctl {
  public:
    /// Runs commands one after the other. halvexctl in them is the program, $user and $local are
    /// the two folders "Application Support/Quorvane Software", $panes and $place are the user's
    /// folder of panes and pane.
    void follow(const std::vector<Step>& steps) const {
        for (const auto& [command, output, status, log] : steps) {
            const int ended = run(command);
            EXPECT_EQ(WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, status) << command << read("log");
            EXPECT_EQ(read("output"), output) << command;
            EXPECT_THAT(read("log"), testing::HasSubstr(log)) << command;
        }
    }
    void write(const std::string& name, const std::string& text) const {
        folder_.write(name, text);
    }

  private:
    int run(const std::string& command) const {
        const std::string script = "cd '" + folder_.path().string() + R"(' && {
            export HOME="$PWD/home" LC_ALL=C.UTF-8
            support='Library/Application Support'
            mkdir -p "home/$support" "root/$support"
            user="home/$support/Quorvane Software"
            local="root/$support/Quorvane Software"
            panes=home/Library/PreferencePanes
            place="$panes/Halvex Pro.prefPane"
            halvexctl() { ')" HALVEX_CTL R"(' --root root "$@"; }
            )" + command + "\n} >output 2>log";
        return std::system(script.c_str());
    }
    std::string read(const std::string& name) const { return contents(folder_.path() / name); }

    TemporaryFolder folder_;
};

} // namespace test
