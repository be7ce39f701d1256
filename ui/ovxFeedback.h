#pragma once

#include "platform/Bundle.h"

#include <memory>
#include <string>

/// Feedback by mail.
namespace ovxFeedback {

/// Opens the user's mail program with a new message to the support address, which is the build
/// option HALVEX_SUPPORT_ADDRESS. The subject holds @p product and its version, read from
/// "CFBundleShortVersionString" of @p bundle; "(null)" if it has none or @p bundle is null.
/// The body begins with the versions of the operating system and of its media software (0.0.0
/// if unknown) and the time zone with its offset in hours, and ends with an empty section for
/// the user's report.
///
/// Only spaces, line feeds and colons are escaped. If the result is not a valid URL, for example
/// because @p product contains a quote, a non-ASCII letter or a "%" that is not followed by two
/// hexadecimal digits, opens nothing and logs "Bad feedback URL: %@". A failure to start the mail
/// program is not reported. If memory runs out, logs this and opens nothing. Main thread only.
void ovxSendFeedBackViaMail(const std::shared_ptr<platform::Bundle>& bundle,
                            const std::string& product);

} // namespace ovxFeedback
