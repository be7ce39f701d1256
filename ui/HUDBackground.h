#pragma once

#include "platform/Graphics.h"

#include <string>

namespace ui {

/// The part of a HUD panel's background to draw. The title belongs to the title bar.
enum class HUDPart { All, Body, TitleBar };

/// Draws the background of a HUD panel at the origin: a dark body with rounded lower corners, and
/// above it a lighter title bar with rounded upper corners and a centred white title. @p size is
/// the size of the panel's frame in points, title bar included; the edges of the body and of the
/// bar are truncated to whole points. Main thread only.
void drawHUDBackground(platform::GraphicsContext& context, platform::Size size,
                       const std::string& title, HUDPart part = HUDPart::All);

} // namespace ui
