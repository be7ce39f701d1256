#pragma once

#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <iterator>
#include <string>
#include <sys/wait.h>

namespace test {

/// What a run of the program left.
struct Outcome {
    int status = -1; ///< -1 when it did not end by itself
    std::string output;
    std::string log; ///< standard error
};

/// The real program, in a folder of the test's own. "home" there is the user's home folder, "root"
/// lies before /Library; both have a "Library/Application Support" and nothing else in it.
class Ctl {
  public:
    /// Runs a shell's command line in which halvexctl is the program, $user and $local are the two
    /// folders "Application Support/Quorvane Software".
    Outcome run(const std::string& command) const {
        const std::string script = "cd '" + folder_.path().string() + R"(' && {
            export HOME="$PWD/home" LC_ALL=C.UTF-8
            support='Library/Application Support'
            mkdir -p "home/$support" "root/$support"
            user="home/$support/Quorvane Software"
            local="root/$support/Quorvane Software"
            halvexctl() { ')" HALVEX_CTL R"(' --root root "$@"; }
            )" + command + "\n} >output 2>log";
        const int status = std::system(script.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read("output"), read("log")};
    }
    void write(const std::string& name, const std::string& text) const {
        folder_.write(name, text);
    }
    std::string read(const std::string& name) const {
        std::ifstream stream(folder_.path() / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

  private:
    TemporaryFolder folder_;
};

} // namespace test
