// Compares drawing a panel's background with filling the same pixels, and tinting a large image
// with one source-over pass and with Cairo. Prints the fastest of several runs, in milliseconds.

#include "platform/qt/QtGraphics.h"
#include "platform/qt/QtImage.h"
#include "ui/HUDBackground.h"
#include "ui/TintedImage.h"

#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <cairo.h>
#include <chrono>
#include <cstdio>
#include <functional>
#include <limits>
#include <memory>

using namespace platform;

namespace {

constexpr int kSide = 4096;
constexpr auto kFormat = QImage::Format_ARGB32_Premultiplied;

double fastest(int runs, const std::function<void()>& code) {
    using Clock = std::chrono::steady_clock;
    double least = std::numeric_limits<double>::max();
    for (int run = 0; run < runs; ++run) {
        const auto start = Clock::now();
        code();
        least = std::min(least,
                         std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    return least;
}

void report(const char* name, double milliseconds) {
    std::printf("%-52s %10.3f ms\n", name, milliseconds);
}

/// Compares the background with a plain fill, each drawn into a new, transparent image.
void compareBackground(Size size, int runs) {
    std::printf("background of %.0f x %.0f\n", size.width, size.height);
    report("  the panel's", fastest(runs, [&] {
               graphics().imageByDrawing(size, [&](GraphicsContext& context) {
                   ui::drawHUDBackground(context, size, "World Clock");
               });
           }));
    report("  plain fill", fastest(runs, [&] {
               QImage pixels(int(size.width), int(size.height), kFormat);
               pixels.fill(Qt::transparent);
               QPainter painter(&pixels);
               painter.fillRect(pixels.rect(), QColor::fromRgbF(0.1F, 0.1F, 0.1F, 0.75F));
           }));
}

/// Returns an image with all values of alpha and many colours.
QImage testPicture() {
    QImage picture(kSide, kSide, kFormat);
    for (int y = 0; y < kSide; ++y) {
        auto* const row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < kSide; ++x)
            row[x] = qPremultiply(qRgba(x & 255, y & 255, (x ^ y) & 255, (x + y) & 255));
    }
    return picture;
}

/// Does the same as tintedImageWithColor.
void tintWithCairo(cairo_surface_t* image) {
    cairo_surface_t* const result = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSide, kSide);
    cairo_t* const context = cairo_create(result);
    cairo_set_source_surface(context, image, 0, 0);
    cairo_paint(context);
    cairo_set_operator(context, CAIRO_OPERATOR_ATOP);
    cairo_set_source_rgba(context, 1, 0, 0, 0.25);
    cairo_paint(context);
    cairo_destroy(context);
    cairo_surface_flush(result);
    cairo_surface_destroy(result);
}

void compareTint(int runs) {
    std::printf("tint of %d x %d\n", kSide, kSide);
    QImage picture = testPicture();
    const qt::QtImage image(picture);
    report("  tinted image", fastest(runs, [&] {
               HalvexTintedImage::tintedImageWithColor(image, {1, 0, 0, 1});
           }));
    report("  one source-over pass onto a new image", fastest(runs, [&] {
               QImage pixels(kSide, kSide, kFormat);
               pixels.fill(Qt::transparent);
               QPainter(&pixels).drawImage(0, 0, picture);
           }));
    QImage ground(kSide, kSide, kFormat);
    ground.fill(Qt::white);
    report("  one source-over pass onto an existing image",
           fastest(runs, [&] { QPainter(&ground).drawImage(0, 0, picture); }));
    cairo_surface_t* const surface = cairo_image_surface_create_for_data(
        picture.bits(), CAIRO_FORMAT_ARGB32, kSide, kSide, int(picture.bytesPerLine()));
    report("  Cairo", fastest(runs, [&] { tintWithCairo(surface); }));
    cairo_surface_destroy(surface);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    qt::QtGraphics painter;
    painter.setDrawingScale(1);
    const ScopedService<Graphics> service(painter);
    compareBackground({320, 200}, 200);
    compareBackground({3840, 2160}, 20);
    compareTint(10);
}
