#pragma once

#include <cstdint>
#include <string>

namespace apps {

/// Who requested an item.
enum class Origin {
    Request,     ///< a program, while the bar was running; the item is stored and restored at start
    CommandLine, ///< the bar's command line; the item is loaded for this run only
};

/// The description of an item, without its code.
struct ItemRecord {
    std::string identifier;
    std::string path; ///< of its bundle
    std::int32_t position = 0;
    std::string version; ///< CFBundleVersion
    Origin origin = Origin::Request;
};

} // namespace apps
