#pragma once

#include "apps/shared/ExitStatus.h"
#include "platform/values/PropertyList.h"

#include <string>
#include <string_view>

namespace apps {

/// How a value is printed.
enum class Format { Xml, Json };

/// Calls openStandardDescriptors(). Ignores SIGPIPE, so that writing to a closed pipe returns an
/// error. Call this first in main.
void prepareStandardStreams();

// Results go to standard output. If they cannot be written completely, these functions print the
// reason to standard error and return Failure.

ExitStatus print(std::string_view text);
/// With Format::Xml, also fails for values that XML cannot represent.
ExitStatus print(const platform::PropertyList& value, Format format);
/// Prints "yes" or "no". Returns Success only for "yes".
ExitStatus printYesOrNo(bool yes);
/// Flushes what other code has written to std::cout.
ExitStatus flushOutput();

/// Prints "halvexctl: " and @p message to standard error as one line. Control characters in the
/// message become "?".
void printError(std::string message);
/// Calls printError() and returns Failure.
ExitStatus fail(std::string message);

} // namespace apps
