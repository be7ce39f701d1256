#include "apps/shared/Output.h"

#include "apps/shared/Json.h"
#include "platform/PropertyListService.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <iostream>
#include <system_error>
#include <unistd.h>

namespace apps {

void prepareStandardStreams() {
    // The wrong way round, so that reading and writing fail as they would on a closed one. The
    // lowest free descriptor is the one that is taken.
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(descriptor, F_GETFD) < 0) [[maybe_unused]]
            const int taken = ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    std::signal(SIGPIPE, SIG_IGN);
}

ExitStatus finishOutput() {
    std::cout.flush();
    if (std::cout)
        return ExitStatus::Done;
    return refuse("standard output: " + std::generic_category().message(errno));
}

ExitStatus print(std::string_view text) {
    std::cout << text;
    return finishOutput();
}

ExitStatus print(const platform::PropertyList& value, Format format) {
    if (format == Format::Json)
        return print(jsonText(value));
    const auto text = platform::propertyLists().serialize(value);
    return text ? print(*text) : refuse("the result cannot be written as XML; --json can show it");
}

ExitStatus answer(bool yes) {
    const ExitStatus printed = print(yes ? "yes\n" : "no\n");
    return yes ? printed : ExitStatus::Refused;
}

ExitStatus refuse(std::string message) {
    const auto isControl = [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; };
    std::ranges::replace_if(message, isControl, '?');
    std::cerr << "halvexctl: " + message + '\n';
    return ExitStatus::Refused;
}

} // namespace apps
