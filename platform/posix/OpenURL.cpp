#include "platform/posix/OpenURL.h"

#include "platform/posix/StartProgram.h"

#include <cctype>

bool platform::posix::openURL(const std::string& url) {
    return !url.empty() && std::isalpha(static_cast<unsigned char>(url.front())) &&
           startProgram("xdg-open", {url}) == 0;
}
