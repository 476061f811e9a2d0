// Colours, and colours that follow the desktop's appearance.
//
// Components run from 0 to 1, sRGB, alpha not multiplied in.
#pragma once

namespace skylet::platform {

struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
    bool operator==(const Color&) const = default;
};

// One colour for each appearance of the desktop. Where the appearance cannot be told, it is light.
struct AppearanceColor {
    Color light;
    Color dark;
    bool operator==(const AppearanceColor&) const = default;
};

} // namespace skylet::platform
