#include "platform/qt/NetworkNames.h"

#include "platform/base/Utf8.h"

#include <algorithm>

namespace platform::qt {

std::string nameOfSsid(std::string_view ssid) {
    std::string name;
    while (!ssid.empty()) {
        const std::size_t length = utf8SequenceLength(ssid);
        const auto first = static_cast<unsigned char>(ssid.front());
        if (length == 0 || first < 0x20 || first == 0x7F)
            name += "\uFFFD";
        else
            name += ssid.substr(0, length);
        ssid.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return name;
}

} // namespace platform::qt
