#pragma once

#include "platform/Log.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What the fuzzers share. Inputs are files of the corpus.
namespace fuzz {

inline void require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

inline std::string_view text(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// The services of a program whose log lines are discarded: most inputs are refused with one.
class Program {
  public:
    Program() { platform::expat::install(); }

    /// A folder for the files that the code under test reads.
    const test::TemporaryFolder folder;

  private:
    class NoLog final : public platform::Log {
        void write(std::string_view /*line*/) override {}
        void beep() override {}
    };

    NoLog log_;
    platform::ScopedService<platform::Log> service_{log_};
};

} // namespace fuzz
