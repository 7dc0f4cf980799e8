// Paints the game's pictures: the five landscapes with and without their tower, their colour
// cycles and tower frames (color-cycles.json), the runner's five sheets, the title picture and
// the icon; and the icon of the adventure. Usage: paint-world OUTDIR   (writes OUTDIR/torvane/...
// and OUTDIR/vorabend/icon/...)
// Nothing is random and nothing is read, so each run gives the same bytes.
#include "tools/paint/World.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#include <sys/stat.h>

namespace {

std::string Number(float v) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%g", static_cast<double>(v));
    return buf;
}

void CycleObjects(std::ostringstream& json, const std::string& file, const std::vector<paint::Cycle>& cycles,
                  const paint::Frame* frame, bool& first) {
    for (size_t i = 0; i < cycles.size(); ++i) {
        const paint::Cycle& c = cycles[i];
        json << (first ? "\n" : ",\n") << "    {\"file\": \"" << file << "\", \"palette_start\": " << c.start
             << ", \"palette_end\": " << c.end << ", \"fps\": " << Number(c.fps) << ", \"direction\": " << c.direction;
        if (frame && i == 0)
            json << ",\n     \"tower_frame\": {\"centre_x\": " << Number(frame->centreX) << ", \"half_width\": "
                 << Number(frame->halfWidth) << ", \"rim_y\": " << Number(frame->rimY) << ", \"base_y\": "
                 << Number(frame->baseY) << "}";
        json << "}";
        first = false;
    }
}

bool Write(const std::string& path, const paint::Picture& p, const paint::Palette& pal, int transparent = -1) {
    if (paint::WritePng(path, p, pal, transparent)) return true;
    std::fprintf(stderr, "paint-world: cannot write %s\n", path.c_str());
    return false;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: paint-world OUTDIR\n");
        return 2;
    }
    const std::string out = argv[1];
    mkdir(out.c_str(), 0755);
    mkdir((out + "/torvane").c_str(), 0755);
    mkdir((out + "/torvane/icon").c_str(), 0755);
    mkdir((out + "/vorabend").c_str(), 0755);
    mkdir((out + "/vorabend/icon").c_str(), 0755);
    bool ok = true;

    std::ostringstream json;
    json << "{\"backgrounds\": [";
    bool first = true;
    for (int i = 0; i < 5; ++i) {
        const paint::Landscape L = paint::PaintLandscape(i);
        const std::string plain = L.name + "-cycle.png", tower = L.name + "-integrated-tower-cycle.png";
        ok &= Write(out + "/torvane/" + plain, L.plain, L.palette);
        ok &= Write(out + "/torvane/" + tower, L.tower, L.palette);
        CycleObjects(json, plain, paint::CyclesOf(L, false), nullptr, first);
        CycleObjects(json, tower, paint::CyclesOf(L, true), &L.frame, first);
    }
    json << "\n]}\n";
    std::ofstream(out + "/torvane/color-cycles.json") << json.str();

    const paint::Palette hero = paint::RunnerPalette();
    for (const paint::Sheet& s : paint::PaintRunnerSheets())
        ok &= Write(out + "/torvane/" + s.name + ".png", s.picture, hero, 0);

    paint::Picture title(640, 400);
    paint::Palette titlePalette;
    paint::PaintTitle(title, titlePalette);
    ok &= Write(out + "/torvane/title.png", title, titlePalette);

    for (int size : {256, 128, 64, 48, 32}) {
        paint::Picture icon(size, size);
        paint::Palette pal;
        paint::PaintIcon(icon, pal);
        ok &= Write(out + "/torvane/icon/torvane-" + std::to_string(size) + ".png", icon, pal, 0);
        paint::Picture beacon(size, size);
        paint::PaintBeaconIcon(beacon, pal);
        ok &= Write(out + "/vorabend/icon/vorabend-" + std::to_string(size) + ".png", beacon, pal, 0);
    }
    return ok ? 0 : 1;
}
