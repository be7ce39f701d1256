#include "platform/qt/DesktopEntryFile.h"

#include "platform/base/PathStrings.h"
#include "platform/base/Utf8.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace platform::qt {
namespace {

constexpr std::string_view kGroup = "[Desktop Entry]";
constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Whether a key such as "Name[de]" has no locale or one of @p locales. Most lines of a file are
/// translations into other languages.
bool isOfInterest(std::string_view key, const std::vector<std::string>& locales) {
    const auto bracket = key.find('[');
    if (bracket == std::string_view::npos)
        return true;
    const auto locale = key.substr(bracket + 1, key.size() - bracket - 2);
    return std::ranges::count(locales, locale) > 0;
}

/// The values of the first group "Desktop Entry", still escaped. Keys include their locale.
using Values = std::map<std::string_view, std::string_view>;

Values valuesOf(std::string_view text, const std::vector<std::string>& locales) {
    Values values;
    bool isInGroup = false;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const std::string_view line = trimmed(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (line.starts_with('[')) {
            if (isInGroup)
                break;
            isInGroup = line == kGroup;
        }
        const auto equals = line.find('=');
        if (!isInGroup || line.starts_with('#') || equals == std::string_view::npos)
            continue;
        if (const auto key = trimmed(line.substr(0, equals)); isOfInterest(key, locales))
            values.emplace(key, trimmed(line.substr(equals + 1)));
    }
    return values;
}

/// Splits a value at unescaped semicolons.
std::vector<std::string> listOf(std::string_view value) {
    constexpr std::array<std::pair<char, char>, 4> kEscapes{
        {{'s', ' '}, {'n', '\n'}, {'t', '\t'}, {'r', '\r'}}};
    std::vector<std::string> list;
    std::string item;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == ';') {
            list.push_back(std::exchange(item, {}));
        } else if (value[i] == '\\' && i + 1 < value.size()) {
            ++i;
            const auto* escape =
                std::ranges::find(kEscapes, value[i], &std::pair<char, char>::first);
            item += escape == kEscapes.end() ? value[i] : escape->second;
        } else {
            item += value[i];
        }
    }
    if (!item.empty())
        list.push_back(std::move(item));
    return list;
}

/// Reads the keys of one file.
class Reader {
  public:
    Reader(std::string_view text, const std::vector<std::string>& locales)
        : values_(valuesOf(text, locales)), locales_(locales) {}

    std::string string(std::string_view key) const { return unescaped(raw(key)); }
    std::string localized(std::string_view key) const {
        for (const std::string& locale : locales_) {
            const auto value = raw(std::string(key) + '[' + locale + ']');
            if (!value.empty())
                return unescaped(value);
        }
        return string(key);
    }
    bool isTrue(std::string_view key) const { return raw(key) == "true"; }
    std::vector<std::string> list(std::string_view key) const { return listOf(raw(key)); }

  private:
    std::string_view raw(std::string_view key) const {
        const auto found = values_.find(key);
        return found == values_.end() ? std::string_view() : found->second;
    }
    static std::string unescaped(std::string_view value) {
        std::string result;
        for (const std::string& part : listOf(value))
            result += (result.empty() ? "" : ";") + part;
        return withValidUtf8(result);
    }

    Values values_;
    const std::vector<std::string>& locales_;
};

/// Splits a command into arguments. Returns std::nullopt if a quote is not closed.
std::optional<Command> argumentsOf(std::string_view command) {
    Command arguments;
    std::optional<std::string> argument;
    bool isQuoted = false;
    for (std::size_t i = 0; i < command.size(); ++i) {
        const char character = command[i];
        if (character == '"') {
            isQuoted = !isQuoted;
            argument = argument.value_or("");
        } else if (!isQuoted && kBlanks.find(character) != std::string_view::npos) {
            if (argument)
                arguments.push_back(*std::exchange(argument, {}));
        } else {
            if (character == '\\' && isQuoted && i + 1 < command.size())
                ++i;
            argument = argument.value_or("") + command[i];
        }
    }
    if (argument)
        arguments.push_back(*argument);
    return isQuoted ? std::nullopt : std::optional(arguments);
}

std::string pathOf(const std::string& url) {
    return pathOfFileURL(url).value_or(url);
}

std::string urlOf(const std::string& path) {
    return fileURLWithPath(path).value_or(path);
}

/// Replaces the field codes within one argument. Returns std::nullopt for an unknown code.
std::optional<std::string> expanded(const std::string& argument, const DesktopEntry& entry,
                                    const std::string& url) {
    std::string result;
    for (std::size_t i = 0; i < argument.size(); ++i) {
        if (argument[i] != '%') {
            result += argument[i];
            continue;
        }
        switch (++i < argument.size() ? argument[i] : '\0') {
        case '%':
            result += '%';
            break;
        case 'f':
            result += pathOf(url);
            break;
        case 'u':
            result += urlOf(url);
            break;
        case 'c':
            result += entry.name;
            break;
        case 'k':
            result += entry.path;
            break;
        // No longer in use, or not valid within an argument.
        case 'F':
        case 'U':
        case 'i':
        case 'd':
        case 'D':
        case 'n':
        case 'N':
        case 'v':
        case 'm':
            break;
        default:
            return std::nullopt;
        }
    }
    return result;
}

/// Returns the arguments that replace one argument, or std::nullopt if it is malformed.
std::optional<Command> expandedList(const std::string& argument, const DesktopEntry& entry,
                                    const std::vector<std::string>& urls) {
    Command result;
    if (argument == "%F" || argument == "%U") {
        std::ranges::transform(urls, std::back_inserter(result), argument == "%F" ? pathOf : urlOf);
        return result;
    }
    if (argument == "%i")
        return entry.icon.empty() ? Command{} : Command{"--icon", entry.icon};
    const auto text = expanded(argument, entry, urls.empty() ? std::string() : urls.front());
    if (!text)
        return std::nullopt;
    // An empty argument remains only if it was written as one.
    if (!text->empty() || argument.empty())
        result.push_back(*text);
    return result;
}

Command commandFor(const Command& arguments, const DesktopEntry& entry,
                   const std::vector<std::string>& urls) {
    Command command;
    for (const std::string& argument : arguments) {
        const auto list = expandedList(argument, entry, urls);
        if (!list)
            return {};
        command.insert(command.end(), list->begin(), list->end());
    }
    return command;
}

} // namespace

std::string withValidUtf8(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = utf8SequenceLength(text);
        if (length > 0)
            result += text.substr(0, length);
        else
            result += "\xEF\xBF\xBD";
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::vector<std::string> localesOf(std::string_view locale) {
    const auto at = locale.find('@');
    const std::string modifier(at == std::string_view::npos ? "" : locale.substr(at));
    const std::string place(locale.substr(0, std::min(at, locale.find('.'))));
    const std::string language = place.substr(0, place.find('_'));
    if (language.empty() || language == "C" || language == "POSIX")
        return {};
    std::vector<std::string> locales;
    for (const std::string& name : {place + modifier, place, language + modifier, language})
        if (std::ranges::count(locales, name) == 0)
            locales.push_back(name);
    return locales;
}

std::optional<DesktopEntryFile> parseDesktopEntry(std::string_view text,
                                                  const std::vector<std::string>& locales) {
    const Reader reader(text, locales);
    DesktopEntryFile file{.entry = {.name = reader.localized("Name"),
                                    .genericName = reader.localized("GenericName"),
                                    .comment = reader.localized("Comment"),
                                    .icon = reader.localized("Icon"),
                                    .isShown = !reader.isTrue("NoDisplay")},
                          .windowClass = reader.string("StartupWMClass"),
                          .command = reader.string("Exec"),
                          .tryProgram = reader.string("TryExec"),
                          .workingFolder = reader.string("Path"),
                          .onlyShownIn = reader.list("OnlyShowIn"),
                          .notShownIn = reader.list("NotShowIn"),
                          .isDeleted = reader.isTrue("Hidden"),
                          .isActivatable = reader.isTrue("DBusActivatable"),
                          .needsTerminal = reader.isTrue("Terminal"),
                          .notifiesStartup = reader.isTrue("StartupNotify")};
    // A deleted entry need not contain anything else.
    const bool isUsable = reader.string("Type") == "Application" && !file.entry.name.empty();
    return isUsable || file.isDeleted ? std::optional(std::move(file)) : std::nullopt;
}

std::vector<Command> commandsOf(const DesktopEntryFile& file,
                                const std::vector<std::string>& urls) {
    const auto arguments = argumentsOf(file.command);
    if (!arguments || arguments->empty())
        return {};
    const bool takesOne = std::ranges::none_of(
        *arguments, [](const auto& argument) { return argument == "%F" || argument == "%U"; });
    std::vector<std::vector<std::string>> groups;
    if (takesOne)
        for (const std::string& url : urls)
            groups.push_back({url});
    if (groups.empty())
        groups.push_back(urls);
    std::vector<Command> commands;
    for (const auto& group : groups) {
        Command command = commandFor(*arguments, file.entry, group);
        if (command.empty())
            return {};
        if (std::ranges::count(commands, command) == 0) // without a field code, all are equal
            commands.push_back(std::move(command));
    }
    return commands;
}

} // namespace platform::qt
