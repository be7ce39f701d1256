#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

/// User-visible texts of the bar in the user's language, from the message catalogue
/// share/locale/LANGUAGE/LC_MESSAGES/halvex-menubar.mo beside the program's folder, in the build
/// tree and in an installation. The catalogue is looked for when a text is first needed. Texts
/// without a translation are returned unchanged. Main thread only. Needs a QCoreApplication.
namespace apps {

/// Returns the translation of @p text, in UTF-8, which lives as long as the program. Not named
/// "tr", which would be QObject::tr in most classes here.
const char* localized(const char* text);

/// Returns @p text with "%1", "%2", … replaced by @p values. Other percent signs are unchanged.
std::string fill(std::string_view text, std::initializer_list<std::string_view> values);

} // namespace apps
