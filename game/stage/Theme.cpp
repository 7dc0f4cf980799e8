#include "game/stage/Theme.h"

#include "engine/Assets.h"
#include "engine/Json.h"
#include "game/content/PackStorage.h"
#include "game/rules/Level.h"
#include "pge/ImageLoader.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <map>
#include <tuple>

namespace torvane {

namespace {

std::vector<Theme> MakeThemes() {
    const pge::Pixel sun(255, 250, 236, 247), glow(255, 244, 210, 217), cloud(255, 255, 255, 153),
        haze(255, 250, 240, 46);
    const auto keys = [](const char* name) {
        return std::pair<std::string, std::string>(std::string("torvane/torvane-bg-") + name + "-cycle.png",
                                                   std::string("torvane/torvane-bg-") + name +
                                                       "-integrated-tower-cycle.png");
    };
    std::vector<Theme> themes;
    const auto add = [&](const char* name, const char* material, pge::Pixel skyTop, pge::Pixel skyBottom,
                         pge::Pixel hills, pge::Pixel ground, pge::Pixel stone, bool planks, const char* file) {
        Theme t;
        t.name = name;
        t.material = material;
        t.skyTop = skyTop;
        t.skyBottom = skyBottom;
        t.hills = hills;
        t.ground = ground;
        t.stone = stone;
        t.planks = planks;
        std::tie(t.background, t.integrated) = keys(file);
        t.sun = sun;
        t.glow = glow;
        t.cloud = cloud;
        t.haze = haze;
        themes.push_back(t);
    };
    add("Wüstenpass", "Sandstein", {234, 169, 98}, {251, 229, 189}, {195, 138, 82}, {168, 115, 63},
        {216, 178, 122}, false, "01-desert");
    add("Tal am Bergsee", "Eichenholz", {159, 191, 154}, {238, 226, 192}, {76, 104, 67}, {52, 72, 43},
        {146, 100, 60}, true, "02-highlands");
    add("Bergfeste im Schnee", "Granit", {147, 167, 194}, {238, 241, 245}, {180, 193, 210}, {230, 236, 242},
        {124, 130, 140}, false, "03-snowpass");
    add("Klippen im Sturm", "Feldstein", {143, 179, 209}, {233, 220, 192}, {111, 135, 156}, {86, 102, 63},
        {156, 146, 128}, false, "04-stormcoast");
    add("Vulkanhang", "Basalt", {77, 38, 38}, {212, 112, 58}, {58, 36, 32}, {38, 26, 23}, {84, 80, 86}, false,
        "05-volcanic");
    Theme& volcano = themes.back();
    volcano.sun = pge::Pixel(255, 150, 80, 242);
    volcano.glow = pge::Pixel(255, 120, 60, 179);
    volcano.cloud = pge::Pixel(50, 34, 34, 140);
    volcano.haze = pge::Pixel(255, 120, 60, 38);
    return themes;
}

std::string BaseName(const std::string& key) {
    const size_t slash = key.rfind('/');
    return slash == std::string::npos ? key : key.substr(slash + 1);
}

std::map<std::string, BackgroundInfo> ReadCycles(const adv::json::Value& root) {
    std::map<std::string, BackgroundInfo> infos;
    for (const adv::json::Value& item : root["backgrounds"].Items()) {
        BackgroundInfo& info = infos[item["file"].String()];
        adv::PaletteCycle cycle;
        cycle.start = item["palette_start"].Int(0);
        cycle.end = item["palette_end"].Int(0);
        cycle.fps = static_cast<float>(std::clamp(item["fps"].Number(0.0), -1e6, 1e6)); // NaN stays NaN: no steps
        cycle.direction = item["direction"].Int(1) < 0 ? -1 : 1;
        info.cycles.push_back(cycle);
        const adv::json::Value& frame = item["tower_frame"];
        if (frame.type == adv::json::Value::Type::Object) {
            const double numbers[4] = {frame["centre_x"].Number(0.0), frame["half_width"].Number(0.0),
                                       frame["rim_y"].Number(0.0), frame["base_y"].Number(0.0)};
            // A number beyond any image cannot be meant: the whole frame is not valid.
            const bool plausible = std::all_of(std::begin(numbers), std::end(numbers), [](double v) {
                return std::fabs(v) <= static_cast<double>(pge::kMaxImageSide);
            });
            info.frame = TowerFrame();
            if (plausible) {
                info.frame.valid = true;
                info.frame.centre_x = static_cast<float>(numbers[0]);
                info.frame.half_width = static_cast<float>(numbers[1]);
                info.frame.rim_y = static_cast<float>(numbers[2]);
                info.frame.base_y = static_cast<float>(numbers[3]);
            }
        }
    }
    return infos;
}

// The cycle data of the asset root in use, read once per root; a bad file is
// reported once and leaves the images standing still.
const BackgroundInfo& InfoFor(const std::string& key) {
    static std::string s_root;
    static bool s_loaded = false;
    static std::map<std::string, BackgroundInfo> s_infos;
    static const BackgroundInfo s_empty;
    if (!s_loaded || s_root != adv::Assets::Root()) {
        s_loaded = true;
        s_root = adv::Assets::Root();
        s_infos.clear();
        adv::json::Value root;
        std::string error;
        if (adv::json::ParseFile(s_root + "/torvane/color-cycles.json", root, &error))
            s_infos = ReadCycles(root);
        else
            std::fprintf(stderr, "[torvane] Farbzyklen nicht lesbar: %s\n", error.c_str());
    }
    const auto it = s_infos.find(BaseName(key));
    return it == s_infos.end() ? s_empty : it->second;
}

} // namespace

const Theme& ThemeAt(int index) {
    static const std::vector<Theme> s_themes = MakeThemes();
    return s_themes[static_cast<size_t>(std::clamp(index, 0, 4))];
}

const Theme& ThemeFor(int level) { return ThemeAt(BackgroundIndex(level)); }

const std::string& BackgroundFor(const Theme& theme) {
    if (GetSettings().classic != 0 || theme.integrated.empty()) return theme.background;
    return adv::Assets::Missing(theme.integrated) ? theme.background : theme.integrated;
}

const std::vector<adv::PaletteCycle>& ColorCyclesFor(const std::string& key) { return InfoFor(key).cycles; }

TowerFrame TowerFrameFor(const std::string& key) { return InfoFor(key).frame; }

TowerFrame TowerFrameFor(const std::string& key, int imageWidth, int imageHeight) {
    const TowerFrame frame = InfoFor(key).frame;
    const float w = static_cast<float>(imageWidth), h = static_cast<float>(imageHeight);
    // A tower beyond its image, without width or standing on its head would stretch the
    // wall over far more than the stage.
    const bool inside = frame.centre_x >= 0.0f && frame.centre_x <= w && frame.half_width > 0.0f &&
                        frame.half_width <= w && frame.rim_y >= 0.0f && frame.rim_y < frame.base_y &&
                        frame.base_y <= h;
    return inside ? frame : TowerFrame();
}

namespace rim {

namespace {
using Runs = std::vector<std::pair<int16_t, int>>;

std::array<int16_t, kColumns> Expand(const Runs& runs) {
    std::array<int16_t, kColumns> out{};
    size_t i = 0;
    for (const auto& [value, count] : runs)
        for (int n = 0; n < count && i < out.size(); ++n) out[i++] = value;
    return out;
}
} // namespace

const std::array<std::array<int16_t, kColumns>, 5> kTop = {
    Expand({{67, 4}, {68, 8}, {69, 11}, {70, 39}, {69, 10}, {68, 8}, {67, 7}, {66, 6}, {65, 2}}),
    Expand({{66, 1}, {67, 4}, {68, 4}, {69, 6}, {70, 6}, {71, 10}, {72, 28}, {71, 10}, {70, 6}, {69, 6}, {68, 4},
            {67, 4}, {66, 4}, {65, 2}}),
    Expand({{56, 2}, {57, 5}, {58, 5}, {59, 6}, {60, 8}, {61, 12}, {62, 23}, {61, 12}, {60, 7}, {59, 7}, {58, 5},
            {57, 3}}),
    Expand({{68, 3}, {69, 5}, {70, 5}, {71, 6}, {72, 9}, {73, 31}, {72, 8}, {71, 7}, {70, 5}, {69, 4}, {68, 4},
            {67, 4}, {66, 4}}),
    Expand({{66, 4}, {67, 6}, {68, 7}, {69, 11}, {70, 35}, {69, 10}, {68, 7}, {67, 6}, {66, 6}, {65, 3}}),
};

} // namespace rim

} // namespace torvane
