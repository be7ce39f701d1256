#include <cstdio>
#include <cstdlib>

// Leaves a file where the environment says as soon as it is initialised.
namespace {

[[maybe_unused]] const bool isInitialised = [] {
    const char* path = std::getenv("HALVEX_PREFLIGHT_TRACE");
    std::FILE* const file = std::fopen(path ? path : "/dev/null", "w");
    return file && std::fclose(file) == 0;
}();

} // namespace

#ifdef HALVEX_DEFINES_IT
extern "C" int nobodyDefinesThis();
int nobodyDefinesThis() {
    return isInitialised ? 1 : 0;
}
#endif
