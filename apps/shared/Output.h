#pragma once

#include "apps/shared/ExitStatus.h"
#include "platform/values/PropertyList.h"

#include <string>
#include <string_view>

namespace apps {

/// How a value is printed.
enum class Format { Xml, Json };

/// Makes sure that the standard streams' descriptors are taken, so that no data file gets one of
/// them and then the output or a log line, and that a closed pipe is an error instead of the end.
/// Before anything else.
void prepareStandardStreams();

// Results go to standard output. Each gives Refused, with a line on standard error, when they do
// not arrive there whole.

ExitStatus print(std::string_view text);
/// Values that XML cannot hold are refused as well.
ExitStatus print(const platform::PropertyList& value, Format format);
/// Prints "yes" or "no"; Done or Refused.
ExitStatus answer(bool yes);
/// For what others have written to std::cout.
ExitStatus finishOutput();

/// Prints "halvexctl: " and @p message as one line on standard error, whatever bytes are in it, and
/// gives Refused.
ExitStatus refuse(std::string message);

} // namespace apps
