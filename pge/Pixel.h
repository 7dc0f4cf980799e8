#pragma once
// Colours and small vectors of the pixel framework.
#include <cstdint>

namespace pge {

// One RGBA pixel; the bytes lie in memory as r, g, b, a so that a row of
// pixels is exactly what the graphics card takes.
struct Pixel {
    union {
        uint32_t n = 0xFF000000;
        struct {
            uint8_t r;
            uint8_t g;
            uint8_t b;
            uint8_t a;
        };
    };

    constexpr Pixel() : n(0xFF000000) {}
    constexpr Pixel(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha = 255)
        : n(uint32_t(red) | uint32_t(green) << 8 | uint32_t(blue) << 16 | uint32_t(alpha) << 24) {}
    constexpr explicit Pixel(uint32_t packed) : n(packed) {}

    constexpr bool operator==(const Pixel& o) const { return n == o.n; }
    constexpr bool operator!=(const Pixel& o) const { return n != o.n; }
};
static_assert(sizeof(Pixel) == 4, "a pixel is four bytes");

template <typename T>
struct v_2d {
    T x = 0;
    T y = 0;
    constexpr v_2d() = default;
    constexpr v_2d(T x_, T y_) : x(x_), y(y_) {}
};
using vi2d = v_2d<int32_t>;
using vf2d = v_2d<float>;

inline constexpr Pixel GREY(192, 192, 192), DARK_GREY(128, 128, 128), VERY_DARK_GREY(64, 64, 64),
    RED(255, 0, 0), DARK_RED(128, 0, 0), VERY_DARK_RED(64, 0, 0),
    YELLOW(255, 255, 0), DARK_YELLOW(128, 128, 0), VERY_DARK_YELLOW(64, 64, 0),
    GREEN(0, 255, 0), DARK_GREEN(0, 128, 0), VERY_DARK_GREEN(0, 64, 0),
    CYAN(0, 255, 255), DARK_CYAN(0, 128, 128), VERY_DARK_CYAN(0, 64, 64),
    BLUE(0, 0, 255), DARK_BLUE(0, 0, 128), VERY_DARK_BLUE(0, 0, 64),
    MAGENTA(255, 0, 255), DARK_MAGENTA(128, 0, 128), VERY_DARK_MAGENTA(64, 0, 64),
    WHITE(255, 255, 255), BLACK(0, 0, 0), BLANK(0, 0, 0, 0), TANGERINE(255, 165, 0);

} // namespace pge
