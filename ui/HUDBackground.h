#pragma once

#include "platform/Graphics.h"

#include <string>

/// What of a panel's ground is drawn. The title belongs to the title bar.
enum class HUDPart { All, Body, TitleBar };

/// Draws the ground of a HUD panel whose frame has @p size, title bar included, from the origin on:
/// a dark body whose lower corners are round, below a lighter title bar whose upper corners are,
/// with the title in white at its middle. Edges lie on whole points. Main thread.
void drawHUDBackground(platform::GraphicsContext& context, platform::Size size,
                       const std::string& title, HUDPart part = HUDPart::All);
