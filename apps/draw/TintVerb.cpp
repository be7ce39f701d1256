#include "apps/draw/Verbs.h"
#include "ui/TintedImage.h"

#include <memory>
#include <optional>
#include <string>

using namespace platform;

namespace apps {
namespace {

struct Options {
    std::string input;
    std::string output;
    std::string color;
    std::string gray;
    std::string device;
    std::optional<int> operation;
};

Color parseColor(const Options& options) {
    const auto alpha = [](const std::vector<double>& numbers, std::size_t count) {
        return numbers.size() > count ? numbers[count] : 1;
    };
    if (!options.gray.empty()) {
        const auto numbers = parseNumbers("--gray", options.gray, {',', 1, 2, 1});
        return calibratedWhite(numbers[0], alpha(numbers, 1));
    }
    const bool isDevice = !options.device.empty();
    const auto numbers = parseNumbers(isDevice ? "--device" : "--color",
                                      isDevice ? options.device : options.color, {',', 3, 4, 1});
    Color color{numbers[0], numbers[1], numbers[2], alpha(numbers, 3)};
    if (isDevice)
        color.space = ColorSpace::DeviceRGB;
    return color;
}

ExitStatus tint(const Options& options, const Color& color) {
    const auto image = graphics().imageWithContentsOfFile(options.input);
    if (!image)
        return ExitStatus::Failure; // already logged
    const auto tinted =
        options.operation
            ? HalvexTintedImage::tintedImageWithColor(
                  *image, color, static_cast<CompositingOperation>(*options.operation))
            : HalvexTintedImage::tintedImageWithColor(*image, color);
    return writePng(*tinted, options.output);
}

} // namespace

void addTintVerb(CLI::App& commands, DrawingTask& task) {
    const auto options = std::make_shared<Options>();
    CLI::App* verb = commands.add_subcommand("tint", "Tint an image");
    verb->add_option("IN.png", options->input, "The image to tint")->required();
    verb->add_option("OUT.png", options->output, "Write the tinted image to this file")->required();
    verb->add_option("--operation", options->operation,
                     "Fill the whole area with this compositing operation")
        ->check(CLI::Range(0, 13));
    CLI::App* color = verb->add_option_group("Colour", "Components from 0 to 1");
    color->add_option("--color", options->color, "R,G,B[,A]");
    color->add_option("--gray", options->gray, "W[,A]");
    color->add_option("--device", options->device, "R,G,B[,A] in the screen's colour space");
    color->require_option(1);
    verb->callback([options, &task] {
        const Color parsed = parseColor(*options);
        task = {DrawingTask::Needs::Drawing, [options, parsed] { return tint(*options, parsed); }};
    });
}

} // namespace apps
