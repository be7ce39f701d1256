#include "apps/ctl/ProjectTemplate.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "platform/FileManager.h"
#include "platform/base/PathStrings.h"

#include <algorithm>
#include <cctype>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

using platform::fileManager;

namespace apps {
namespace {

bool isLetter(char character) {
    return std::isalpha(static_cast<unsigned char>(character)) != 0;
}
bool isLetterOrDigit(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0;
}

/// Returns an explanation if @p name cannot be the name of a class and of a bundle.
std::string checkName(const std::string& name) {
    const bool isValid = !name.empty() && std::isupper(static_cast<unsigned char>(name.front())) &&
                         std::all_of(name.begin(), name.end(), isLetterOrDigit);
    return isValid ? "" : "begin with a capital letter and use only letters and digits";
}

std::string checkIdentifier(const std::string& identifier) {
    const bool hasDot = identifier.find('.') != std::string::npos && identifier.back() != '.';
    const bool isValid =
        hasDot && isLetter(identifier.front()) &&
        std::all_of(identifier.begin(), identifier.end(), [](char character) {
            return isLetterOrDigit(character) || character == '.' || character == '-';
        });
    return isValid ? "" : "use letters, digits, dots and hyphens, such as org.example.Name";
}

std::string replaced(std::string text, std::string_view part, const std::string& by) {
    for (auto found = text.find(part); found != std::string::npos;
         found = text.find(part, found + by.size()))
        text.replace(found, part.size(), by);
    return text;
}

/// Replaces the template's name and identifier, of which the second contains the first.
std::string instantiated(std::string text, const std::string& name, const std::string& identifier) {
    constexpr std::string_view kMark = "\1";
    text = replaced(std::move(text), kTemplateIdentifier, std::string(kMark));
    text = replaced(std::move(text), kTemplateName, name);
    return replaced(std::move(text), kMark, identifier);
}

ExitStatus createProject(const std::string& path, const std::string& name,
                         const std::string& identifier) {
    const std::string folder = absolutePath(path);
    if (const auto contents = fileManager().contentsOfDirectory(folder);
        contents ? !contents->empty() : fileManager().fileExists(folder))
        return fail(folder + " already exists");
    if (!fileManager().isDirectory(folder) && !fileManager().createDirectory(folder))
        return fail("cannot create the folder " + folder);
    for (const auto& [file, text] : kProjectTemplate) {
        const std::string target = platform::appendingPathComponent(
            folder, replaced(std::string(file), kTemplateName, name));
        if (!fileManager().writeFileAtomically(target,
                                               instantiated(std::string(text), name, identifier)))
            return fail("cannot write " + target);
    }
    return print("Created " + name + " in " + folder +
                 ". In that folder, build and test it, then try it in a bar of its own:\n"
                 "  cmake -B build -G Ninja && cmake --build build && ctest --test-dir build\n"
                 "  halvexctl menubar stop; halvex-menubar build/extras/" +
                 name + ".menu\n");
}

} // namespace

void addNewVerb(CLI::App& commands, Task& task) {
    struct Options {
        std::string folder, name, identifier;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& verb =
        addVerb(commands, task, "new", "Create a menu extra's sources in a new folder", [options] {
            return createProject(options->folder, options->name, options->identifier);
        });
    verb.add_option("FOLDER", options->folder, "The folder to create")->required();
    verb.add_option("--name", options->name, "The name of its class and its bundle")
        ->required()
        ->check(CLI::Validator(checkName, "NAME"));
    verb.add_option("--identifier", options->identifier, "Its CFBundleIdentifier")
        ->required()
        ->check(CLI::Validator(checkIdentifier, "IDENTIFIER"));
}

} // namespace apps
