#pragma once

#include "apps/shared/Output.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace apps {

/// How the library's operations treat missing folders.
enum class MissingFolders {
    Create,
    CreateIfPossible, ///< in /Library, createDirectory() returns true even if it fails
    Ignore,           ///< createDirectory() returns true without creating them
};

/// The operation given on the command line. Run it once the whole line is parsed.
struct Task {
    std::function<ExitStatus()> run;
    MissingFolders missingFolders = MissingFolders::Create;
};

// Each function adds verbs to the command line. Parsing one of them sets @p task, which must
// outlive the parsing.

void addCommandVerb(CLI::App& commands, Task& task);    ///< command
void addDateFormatVerb(CLI::App& commands, Task& task); ///< date-format
void addFeedbackVerb(CLI::App& commands, Task& task);   ///< feedback
void addPathVerbs(CLI::App& commands, Task& task);      ///< paths, themes, pictures, frames
/// extras, toggle, install, remove, upgrade, preflight, v2, pro
void addExtraVerbs(CLI::App& commands, Task& task);
void addLocationVerbs(CLI::App& commands, Task& task);   ///< locations
void addMenuBarVerbs(CLI::App& commands, Task& task);    ///< menubar
void addBarItemVerbs(CLI::App& menubar, Task& task);     ///< menubar add, remove, move, …
void addNewVerb(CLI::App& commands, Task& task);         ///< new
void addWarningVerbs(CLI::App& commands, Task& task);    ///< warnings
void addPaneVerbs(CLI::App& commands, Task& task);       ///< pane
void addBackgroundVerbs(CLI::App& commands, Task& task); ///< prefs, background
void addPreferencesVerbs(CLI::App& prefs, Task& task);   ///< prefs read, write, delete
void addPlistVerb(CLI::App& commands, Task& task);       ///< plist
void addDrawingVerbs(CLI::App& commands, Task& task);    ///< hud, panel, tint

// Used by the functions above.

/// Adds a verb. Parsing it stores @p run and @p missingFolders in @p task.
CLI::App& addVerb(CLI::App& parent, Task& task, const std::string& name,
                  const std::string& description, std::function<ExitStatus()> run,
                  MissingFolders missingFolders = MissingFolders::Create);
/// Adds a group of verbs, such as "menubar".
CLI::App& addVerbGroup(CLI::App& parent, const std::string& name, const std::string& description);
/// Adds the flag --json to @p verb.
void addJsonFlag(CLI::App& verb, bool& json);
/// Returns Json if @p json is set, otherwise Xml.
inline Format formatFor(bool json) {
    return json ? Format::Json : Format::Xml;
}

} // namespace apps
