#include "pge/FontSheet.h"

#include <cstdint>
#include <vector>

namespace pge {
namespace {

// 1,024 characters, four to a group: each character minus '0' is 6 bits, the first of
// a group the highest. The 24 bits of a group fill 24 pixels from the lowest bit up,
// walking the sheet column by column (y 0..47, then the next x).
const char* const kFontData =
    "00000000<Sh0o01oBE409049NDT09089@DD090@9?Sh060060000000000000000"
    "00000000OP00620n2D8095A12GmO95AA2D0095@QOP00o7QN0000000000000000"
    "00000000Od80O7moBF4724P9BE4014@IBDT714@Y=TH023Q60000000000000000"
    "00000000?R4DB3Q6@D5oE4A9@DDDE4A9@D]oE4A98S4D920a0000000000000000"
    "00000000OaPT13P1@A@Z?d@1@A9oA4Ao8WlZ@4P1710B87l10000000000000000"
    "00000000ObLS?3PoBDDC@5A0BDD8@5A0BDET85A0@CURO1Po0000000000000000"
    "00000000Oc`f70PO2DY987hP2DUE@0U02DTR804P0C1@708O0000000000000000"
    "00000000?P40?1Po@G44@:A0B@T3<:@hB@D0@:A0NP<0?7`o0000000000000000"
    "00000000OcH0A7mS24TL:0PD24TR40@824U1:0@DOcH0A7QS0000000000000000"
    "0000000000H07003@DU1X4@4OdTRX7eh@BTLX40401h0O0030000000000000000"
    "00000000800DA41Q@3H8I81A@CHnE8A9?`08C7e50@0DA0130000000000000000"
    "00000000O`0807l025H8211o53Hn=RQ18P08@DA1@@0800000000000000000000"
    "00000000O`P00002@1A@0444@28`Ogl8@440040@@000000P0000000000000000"
    "00000000Oa@807`00Q@8@@A131@8=WQ10Q@820AoOa@807P00000000000000000"
    "00000000O`0027`4145P10P2229P20@141@040@2O`P027P40000000000000000"
    "00000000?P8POcR0@@4@OdB0@E48OdB0@@T4OdB0?PH2OcR00000000000000000";

} // namespace

const std::vector<Pixel>& FontSheetPixels() {
    static const std::vector<Pixel> s_pixels = [] {
        Sprite sheet(kFontSheetWidth, kFontSheetHeight);
        int px = 0;
        int py = 0;
        for (int i = 0; i < 1024; i += 4) {
            uint32_t group = 0;
            for (int k = 0; k < 4; ++k) group = group << 6 | uint32_t(kFontData[i + k] - 48);
            for (int bit = 0; bit < 24; ++bit) {
                sheet.SetPixel(px, py, (group >> bit & 1) ? Pixel(255, 255, 255, 255) : Pixel(0, 0, 0, 0));
                if (++py == kFontSheetHeight) {
                    py = 0;
                    ++px;
                }
            }
        }
        return sheet.pColData;
    }();
    return s_pixels;
}

Sprite BuildFontSheet() {
    Sprite sheet(kFontSheetWidth, kFontSheetHeight);
    sheet.pColData = FontSheetPixels();
    return sheet;
}

} // namespace pge
