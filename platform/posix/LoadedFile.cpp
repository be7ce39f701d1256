#include "platform/posix/LoadedFile.h"

#include <dlfcn.h>

std::string platform::posix::loadedFileAt(const void* address) {
    Dl_info info{};
    return address && ::dladdr(address, &info) != 0 && info.dli_fname ? info.dli_fname : "";
}
