#pragma once

#include "apps/shared/Output.h"

#include <CLI/CLI.hpp>

#include <functional>

namespace apps {

/// What the command line asks for, to be done once all of it has been understood.
using Action = std::function<ExitStatus()>;

// Each adds its verbs to the command line. Parsing a line with one of them sets @p chosen, which
// outlives @p commands' parsing.

void addCommandVerb(CLI::App& commands, Action& chosen);    ///< command
void addDateFormatVerb(CLI::App& commands, Action& chosen); ///< date-format
void addFeedbackVerb(CLI::App& commands, Action& chosen);   ///< feedback
void addPathVerbs(CLI::App& commands, Action& chosen);      ///< paths, themes, pictures, frames
/// extras, toggle, install, remove, upgrade, preflight, v2, pro
void addExtraVerbs(CLI::App& commands, Action& chosen);
void addLocationVerbs(CLI::App& commands, Action& chosen);   ///< locations
void addMenuBarVerbs(CLI::App& commands, Action& chosen);    ///< menubar
void addBarItemVerbs(CLI::App& menubar, Action& chosen);     ///< menubar add, remove, click
void addWarningVerbs(CLI::App& commands, Action& chosen);    ///< warnings
void addPaneVerbs(CLI::App& commands, Action& chosen);       ///< pane
void addBackgroundVerbs(CLI::App& commands, Action& chosen); ///< prefs, background
void addPlistVerb(CLI::App& commands, Action& chosen);       ///< plist
void addDrawingVerbs(CLI::App& commands, Action& chosen);    ///< hud, tint

/// Gives @p verb the flag --json.
void addJsonFlag(CLI::App& verb, bool& json);
/// Xml without --json.
inline Format formatFor(bool json) {
    return json ? Format::Json : Format::Xml;
}

} // namespace apps
