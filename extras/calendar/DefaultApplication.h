#pragma once

#include <string>
#include <string_view>

namespace extras {

/// Returns the identifier of the desktop entry that opens files of a MIME type, such as
/// "text/calendar": the one that the user or the system has chosen in a "mimeapps.list", or else
/// the first one that is installed for the type. Returns an empty string if there is no such entry.
/// Reads the lists each time. Main thread only.
std::string defaultApplication(std::string_view mimeType);

} // namespace extras
