#pragma once
// The five landscapes behind the tower: names, colours, wall material, the two
// paletted images of each, their colour cycles and where a painted tower stands.
#include "engine/IndexedImage.h"
#include "pge/Pixel.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace torvane {

struct Theme {
    std::string name;
    std::string material;
    pge::Pixel skyTop, skyBottom, hills, ground, stone;
    bool planks = false; // wooden blocks: plank seams instead of speckles
    std::string background; // asset key of the plain image
    std::string integrated; // asset key of the image with a painted tower
    pge::Pixel sun, glow, cloud, haze;
};

// Where the tower painted into an image stands, in pixels of that image.
struct TowerFrame {
    bool valid = false;
    float centre_x = 0.0f;
    float half_width = 0.0f;
    float rim_y = 0.0f;
    float base_y = 0.0f;
};

struct BackgroundInfo {
    std::vector<adv::PaletteCycle> cycles;
    TowerFrame frame;
};

const Theme& ThemeFor(int level);
// The landscape of a background index 0 to 4; others are held to that range.
const Theme& ThemeAt(int index);
// The image key to use for a theme: the one with a painted tower on ring levels
// when it exists, else the plain one.
const std::string& BackgroundFor(const Theme& theme);
const std::vector<adv::PaletteCycle>& ColorCyclesFor(const std::string& key);
TowerFrame TowerFrameFor(const std::string& key);
// The same, valid only when the tower stands inside an image of this size.
TowerFrame TowerFrameFor(const std::string& key, int imageWidth, int imageHeight);

namespace rim {
// Height of the painted rim in image pixels, by background and image column 96 to 190.
inline constexpr int kFirstColumn = 96;
inline constexpr int kColumns = 95;
extern const std::array<std::array<int16_t, kColumns>, 5> kTop;
} // namespace rim

} // namespace torvane
