#pragma once

#include <cstdint>
#include <string>

namespace apps {

/// Who wanted an item to be there.
enum class Origin {
    Request,     ///< somebody who asked the running bar: the bar comes back with it
    CommandLine, ///< for this run of the bar only
};

/// What is known of an item without its code.
struct ItemRecord {
    std::string identifier;
    std::string path; ///< of its bundle
    std::int32_t position = 0;
    std::string version; ///< CFBundleVersion
    Origin origin = Origin::Request;
};

} // namespace apps
