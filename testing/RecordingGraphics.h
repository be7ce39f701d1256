#pragma once

#include "platform/Graphics.h"
#include "platform/base/Exception.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace halvextest {

/// An image without pixels.
struct BlankImage final : platform::Image {
    BlankImage(double width, double height) : points{width, height} {}
    platform::Size size() const override { return points; }

    bool isTemplate() const override { return onlyAlpha; }

    platform::Size points;
    bool onlyAlpha = false;
};

/// Records drawing as lines of text. Each byte of a drawn text is 7 points wide and 15 high, except
/// that the test can make the digit 1 narrower.
class RecordingGraphics final : public platform::Graphics, public platform::GraphicsContext {
  public:
    std::vector<std::string> drawn;
    double widthOfOne = 7;

    platform::Size sizeOfText(const platform::AttributedString& text) override {
        const auto ones = static_cast<double>(std::ranges::count(text.string(), '1'));
        return {7.0 * static_cast<double>(text.length()) - (7 - widthOfOne) * ones, 15.0};
    }
    /// Returns an image of 13 x 13 points for every path that ends in ".png".
    std::shared_ptr<platform::Image> imageWithContentsOfFile(const std::string& path) override {
        return path.ends_with(".png") ? std::make_shared<BlankImage>(13, 13) : nullptr;
    }
    std::shared_ptr<platform::Image> imageNamed(std::string_view name) override {
        return name == namedImage ? std::make_shared<BlankImage>(9, 9) : nullptr;
    }
    std::shared_ptr<platform::Image> imageByDrawing(platform::Size size,
                                                    const Draw& draw) override {
        drawn.push_back("canvas " + number(size.width) + ' ' + number(size.height));
        draw(*this);
        return std::make_shared<BlankImage>(size.width, size.height);
    }
    /// Returns a template of the same size.
    std::shared_ptr<platform::Image>
    templateImage(const std::shared_ptr<platform::Image>& image) override {
        if (!image)
            return nullptr;
        auto result = std::make_shared<BlankImage>(image->size().width, image->size().height);
        result->onlyAlpha = true;
        return result;
    }
    std::string namedImage; ///< the only name for which imageNamed returns an image
    bool isDrawing = true;  ///< if false, currentContext throws
    platform::GraphicsContext& currentContext() override {
        if (!isDrawing)
            throw platform::Exception("Name", "nothing is being drawn");
        return *this;
    }

    void saveGraphicsState() override { drawn.emplace_back("save"); }
    void restoreGraphicsState() override { drawn.emplace_back("restore"); }
    void setShouldSmoothFonts(bool smooth) override {
        drawn.emplace_back(smooth ? "smooth" : "no smoothing");
    }
    void setTextDrawingMode(platform::TextDrawingMode mode) override {
        drawn.push_back("text mode " + std::to_string(static_cast<int>(mode)));
    }
    void setCompositingOperation(platform::CompositingOperation operation) override {
        drawn.push_back(words(operation));
    }
    void setShadow(platform::Size offset, double blur) override {
        drawn.push_back("shadow " + number(offset.width) + ' ' + number(offset.height) + " blur " +
                        number(blur));
    }
    void drawText(const platform::AttributedString& text, platform::Point point) override {
        drawn.push_back("text " + text.string() + " at " + number(point.x) + ' ' + number(point.y));
    }
    void drawTextInRect(const platform::AttributedString& text,
                        const platform::Rect& rect) override {
        drawn.push_back("text " + text.string() + " in " + words(rect));
        texts.push_back(text);
    }
    std::vector<platform::AttributedString> texts; ///< drawn with drawTextInRect
    void drawImage(const platform::Image&, const platform::Rect& destination,
                   const platform::Rect& source, platform::CompositingOperation operation,
                   double fraction) override {
        drawn.push_back("image " + words(source) + " into " + words(destination) + ' ' +
                        words(operation) + " fraction " + number(fraction));
    }
    void fillRect(const platform::Rect& rect, const platform::Color& color,
                  platform::CompositingOperation operation) override {
        drawn.push_back("fill " + words(rect) + " with " + words(color) + ' ' + words(operation));
    }
    void translateBy(double deltaX, double deltaY) override {
        drawn.push_back("translate " + words(platform::Point{deltaX, deltaY}));
    }
    void rotateByDegrees(double angle) override { drawn.push_back("rotate " + number(angle)); }
    void scaleBy(double factorX, double factorY) override {
        drawn.push_back("scale " + words(platform::Point{factorX, factorY}));
    }
    void clipToPath(const platform::BezierPath& path) override {
        drawn.emplace_back("clip");
        recordElements(path);
    }
    void fillPath(const platform::BezierPath& path, const platform::Color& color,
                  platform::CompositingOperation operation) override {
        drawn.push_back("path with " + words(color) + ' ' + words(operation));
        recordElements(path);
    }
    void fillPathWithGradient(const platform::BezierPath& path, const platform::Gradient& gradient,
                              platform::CompositingOperation operation) override {
        drawn.push_back("path with " +
                        std::visit([](const auto& any) { return words(any); }, gradient) + ' ' +
                        words(operation));
        recordElements(path);
    }
    void strokePath(const platform::BezierPath& path, const platform::StrokeStyle& style,
                    const platform::Color& color,
                    platform::CompositingOperation operation) override {
        drawn.push_back("stroke width " + number(style.width) + " cap " +
                        number(static_cast<int>(style.cap)) + " join " +
                        number(static_cast<int>(style.join)) + " with " + words(color) + ' ' +
                        words(operation));
        if (!style.dashes.empty()) {
            drawn.emplace_back("dashes");
            for (const double dash : style.dashes)
                drawn.back() += ' ' + number(dash);
            drawn.back() += " phase " + number(style.dashPhase);
        }
        recordElements(path);
    }

  private:
    /// Elements are "move x y", "line x y", "curve x y by x y and x y", "arc x y to x y radius",
    /// "close". The even-odd rule comes first.
    void recordElements(const platform::BezierPath& path) {
        using Step = platform::BezierPath::Step;
        if (path.windingRule() == platform::WindingRule::EvenOdd)
            drawn.emplace_back("even-odd");
        for (const auto& element : path.elements()) {
            if (element.step == Step::Close)
                drawn.emplace_back("close");
            else if (element.step == Step::ArcFromPoint)
                drawn.push_back("arc " + words(element.point) + " to " + words(element.toPoint) +
                                " radius " + number(element.radius));
            else if (element.step == Step::CurveTo)
                drawn.push_back("curve " + words(element.point) + " by " +
                                words(element.firstControl) + " and " +
                                words(element.secondControl));
            else
                drawn.push_back((element.step == Step::MoveTo ? "move " : "line ") +
                                words(element.point));
        }
    }
    static std::string words(const platform::GradientStops& stops) {
        std::string text;
        for (const auto& [location, color] : stops)
            text += " stop " + number(location) + ' ' + words(color);
        return text;
    }
    static std::string words(const platform::LinearGradient& gradient) {
        return "gradient " + words(gradient.start) + " to " + words(gradient.end) +
               words(gradient.stops);
    }
    static std::string words(const platform::RadialGradient& gradient) {
        return "gradient " + words(gradient.startCenter) + " radius " +
               number(gradient.startRadius) + " to " + words(gradient.endCenter) + " radius " +
               number(gradient.endRadius) + words(gradient.stops);
    }
    static std::string number(double value) {
        std::string text = std::to_string(value + 0.0); // no -0
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.')
            text.pop_back();
        return text;
    }
    static std::string words(platform::CompositingOperation operation) {
        return "operation " + std::to_string(static_cast<int>(operation));
    }
    static std::string words(platform::Point point) {
        return number(point.x) + ' ' + number(point.y);
    }
    static std::string words(const platform::Color& color) {
        return number(color.red) + ' ' + number(color.green) + ' ' + number(color.blue) + ' ' +
               number(color.alpha) + " space " + std::to_string(static_cast<int>(color.space));
    }
    static std::string words(const platform::Rect& rect) {
        return number(rect.origin.x) + ' ' + number(rect.origin.y) + ' ' + number(rect.size.width) +
               ' ' + number(rect.size.height);
    }

    platform::ScopedService<platform::Graphics> service_{*this};
};

} // namespace halvextest
