#include "apps/shared/Output.h"

#include "apps/shared/Json.h"
#include "apps/shared/StandardDescriptors.h"
#include "platform/PropertyListService.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <iostream>
#include <system_error>
#include <utility>

namespace apps {

void prepareStandardStreams() {
    openStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN);
}

ExitStatus flushOutput() {
    std::cout.flush();
    if (std::cout)
        return ExitStatus::Success;
    return fail("standard output: " + std::generic_category().message(errno));
}

ExitStatus print(std::string_view text) {
    std::cout << text;
    return flushOutput();
}

ExitStatus print(const platform::PropertyList& value, Format format) {
    if (format == Format::Json)
        return print(jsonText(value));
    const auto text = platform::propertyLists().serialize(value);
    return text ? print(*text) : fail("XML cannot represent the result: use --json instead");
}

ExitStatus printYesOrNo(bool yes) {
    const ExitStatus printed = print(yes ? "yes\n" : "no\n");
    return yes ? printed : ExitStatus::Failure;
}

void printError(std::string message) {
    const auto isControl = [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; };
    std::ranges::replace_if(message, isControl, '?');
    std::cerr << "halvexctl: " + message + '\n';
}

ExitStatus fail(std::string message) {
    printError(std::move(message));
    return ExitStatus::Failure;
}

} // namespace apps
