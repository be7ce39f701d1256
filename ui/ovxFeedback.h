#pragma once

#include "platform/Bundle.h"

#include <memory>
#include <string>

/// The mail by which users tell what they think.
namespace ovxFeedback {

/// Opens the user's mail program with a new message to the product's support (the build option
/// HALVEX_SUPPORT_ADDRESS). The subject names @p product and its version, which is the string under
/// "CFBundleShortVersionString" of @p bundle's information dictionary, or "(null)" without one or
/// without a bundle. The body begins with the versions of the system and of its media software
/// (0.0.0 when the system does not know) and the time zone, with its offset in hours; what the user
/// writes comes after.
///
/// Of the text only spaces, line feeds and colons are escaped. An address that then has a character
/// which no URL may have, as a quote, a letter outside ASCII, or "%" without two hexadecimal
/// digits, is not opened: "Bad feedback URL: %@" is logged. That no mail program could be started
/// is not reported. Main thread.
void ovxSendFeedBackViaMail(const std::shared_ptr<platform::Bundle>& bundle,
                            const std::string& product);

} // namespace ovxFeedback
