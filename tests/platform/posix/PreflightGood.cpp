#include <cstdio>
#include <cstdlib>

// Creates the file that HALVEX_PREFLIGHT_TRACE names when it is initialised.
namespace {

[[maybe_unused]] const bool isInitialised = [] {
    const char* path = std::getenv("HALVEX_PREFLIGHT_TRACE");
    std::FILE* const file = std::fopen(path ? path : "/dev/null", "w");
    return file && std::fclose(file) == 0;
}();

} // namespace
