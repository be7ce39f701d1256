#pragma once

#include "apps/shared/Output.h"
#include "platform/Graphics.h"

#include <CLI/CLI.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace apps {

/// The operation given on the command line, and what it needs. Run it once the whole
/// line is parsed.
struct DrawingTask {
    enum class Needs {
        Drawing, ///< no display
        Desktop,
    };

    Needs needs = Needs::Drawing;
    std::function<ExitStatus()> run;
    double scale = 1; ///< pixels per point of the images that it draws
};

// Each function adds its verb to the command line. Parsing that verb sets @p task, which must
// outlive the parsing.

void addHudVerb(CLI::App& commands, DrawingTask& task);
void addSheetVerb(CLI::App& commands, DrawingTask& task);
void addPanelVerb(CLI::App& commands, DrawingTask& task);
void addTintVerb(CLI::App& commands, DrawingTask& task);

/// Writes the pixels of @p image as PNG, and replaces the file at @p path. On failure,
/// prints the reason and leaves an existing file unchanged.
ExitStatus writePng(const platform::Image& image, const std::string& path);

/// A list of numbers between 0 and @p largest.
struct NumberFormat {
    char separator = ',';
    std::size_t minimumCount = 1;
    std::size_t maximumCount = 1;
    double largest = 1;
};

/// Parses the argument of @p option. Throws CLI::ValidationError if @p text is not in @p format.
std::vector<double> parseNumbers(const std::string& option, const std::string& text,
                                 const NumberFormat& format);

} // namespace apps
