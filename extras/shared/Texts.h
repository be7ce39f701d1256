#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace platform {
class Bundle;
}

/// User-visible texts in the user's language, from the message catalogue in the item's bundle:
/// Contents/Resources/locale/LANGUAGE/LC_MESSAGES/EXECUTABLE.mo, where EXECUTABLE is the name in
/// the bundle's CFBundleExecutable. Texts without a translation are returned unchanged. Each item
/// has its own catalogue, even for the texts of code that items share. Main thread only.
namespace extras {

/// Selects the catalogue of @p bundle. Call it before any other function here.
void bindTexts(const platform::Bundle& bundle);

/// Returns the translation of @p text, which lives as long as the program.
const char* tr(const char* text);
/// Same for a text that needs different translations in different places, such as "May" as a full
/// and as an abbreviated name. @p context tells translators which one it is.
std::string tr(const char* context, const char* text);
/// Returns the translation of the form that the language uses for @p count, with "%1" replaced by
/// the count.
std::string tr(const char* singular, const char* plural, long count);

/// Returns @p text with "%1", "%2", … replaced by @p values. Other percent signs are unchanged.
std::string fill(std::string_view text, std::initializer_list<std::string_view> values);

/// Returns whether the language is written from right to left.
bool isRightToLeft();

} // namespace extras
