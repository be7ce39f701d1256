#pragma once

#include "apps/shared/Output.h"
#include "platform/Graphics.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace apps {

/// What a verb does once the command line has been understood, and what it needs for that.
struct Task {
    enum class Needs { Drawing, Desktop };

    Needs needs = Needs::Drawing;
    std::function<ExitStatus()> run;
};

// Each adds its verb to the command line. Parsing a line with it sets @p task, which outlives
// @p commands' parsing.

void addHudVerb(CLI::App& commands, Task& task);
void addTintVerb(CLI::App& commands, Task& task);

/// Writes an image as PNG, one pixel a point, in place of what is at @p path, or leaves that as it
/// is and says why.
ExitStatus writePng(const platform::Image& image, const std::string& path);

/// Numbers with @p separator between them, without anything else. @throws CLI::ValidationError
/// for other text, for another count than @p least to @p most, and for a number that is not from 0
/// to @p largest.
struct NumberFormat {
    char separator = ',';
    std::size_t least = 1;
    std::size_t most = 1;
    double largest = 1;
};
std::vector<double> parsedNumbers(const std::string& option, const std::string& text,
                                  const NumberFormat& format);

} // namespace apps
