#include "game/rules/Level.h"

#include "game/rules/LevelPack.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>

namespace torvane {

namespace {

struct DifficultyNames {
    const char* word;
    const char* label;
};
constexpr DifficultyNames kDifficultyNames[kDifficulties] = {
    {"easy", "Leicht"}, {"medium", "Mittel"}, {"hard", "Schwer"}, {"torvane", "Torvane"}};

// Classic mode: towers and width by level, the last row repeating.
struct ClassicRow {
    int towers;
    int width;
};
constexpr ClassicRow kTable[7] = {{1, 8}, {2, 8}, {2, 10}, {3, 8}, {3, 10}, {4, 8}, {5, 8}};

// Ring mode: the campaign's first seven levels; later levels grow from the last row.
struct RingRow {
    int directions;
    int shots;
    float flight;
    int line;
    int need;
    int pieces;
    int spares;
};
constexpr RingRow kRows[7] = {
    {1, 6, 4.0f, 5, 50, 16, 4},  {1, 8, 3.6f, 6, 55, 14, 4},  {2, 8, 3.6f, 6, 55, 18, 5},
    {2, 10, 3.2f, 7, 60, 16, 5}, {3, 10, 3.2f, 7, 60, 20, 6}, {3, 12, 2.9f, 8, 65, 18, 6},
    {4, 12, 2.9f, 8, 65, 22, 7}};

constexpr const char* kCompassOrder = "NSOW";

// The formulas are worked in 64 bits, so that no level overflows; a result beyond
// the range of int is held at its end.
int Saturate(int64_t v) { return static_cast<int>(std::clamp<int64_t>(v, INT_MIN, INT_MAX)); }

int Saturate(float v) {
    if (!(v > static_cast<float>(INT_MIN))) return INT_MIN;
    return v < static_cast<float>(INT_MAX) ? static_cast<int>(v) : INT_MAX;
}

// Shots rounded up to a whole number per sector (0 without sectors).
int64_t RoundUpToSectors(int64_t shots, int sectors) {
    if (sectors <= 0) return 0;
    return (shots + sectors - 1) / sectors * sectors;
}

// Spare ones and twos of n shots: a rounded third of four fifths of the next shot.
int64_t SparesFor(int64_t n) { return ((n + 1) * 4 / 5 + 2) / 3; }

LevelConfig ClassicConfig(int level) {
    const ClassicRow& row = kTable[std::min(level, 7) - 1];
    const int t = row.towers;
    const int64_t l = level;
    const float lf = static_cast<float>(level);
    const float tf = static_cast<float>(t);
    LevelConfig c;
    c.towers = t;
    c.width = row.width;
    c.height = row.width == 8 ? 14 : 16;
    c.line = row.width == 8 ? 6 : 7;
    c.buildTime = static_cast<float>(std::max<int64_t>(70 - 6 * (l - 1), 35) + 25 * (t - 1));
    c.shots = Saturate(std::floor(2.0f * (lf + 2.0f) * (1.0f + 0.5f * (tf - 1.0f)) + 0.5f));
    c.flightTime = std::max(4.0f * std::pow(0.86f, lf - 1.0f), 1.0f);
    c.interval = std::max((5.0f - 0.45f * (lf - 1.0f)) / (1.0f + 0.25f * (tf - 1.0f)), 1.1f);
    c.pieces = static_cast<int>(
        std::floor(static_cast<float>(t * c.width * c.height) * 0.62f * 0.25f + 0.5f));
    c.need = static_cast<int>(std::min<int64_t>(50 + 5 * (l - 1), 85));
    c.spareOnes = c.spareTwos = 2 * (t - 1) + std::max(5 - level, 1);
    return c;
}

void ApplyPackLevel(LevelConfig& c, const PackLevel& p, const Settings& settings) {
    c.fromPack = true;
    c.waves = p.waves;
    c.prep = p.prep;
    c.newTower = p.newTower;
    c.buildTime = static_cast<float>(p.build);
    c.pieces = p.pieces;
    c.need = p.need;
    c.shots = p.shots;
    c.line = std::min(p.line, c.height - 2);
    c.interval = static_cast<float>(p.interval) / 10.0f;
    c.sectors.clear();
    for (char letter : p.directions) c.sectors.push_back(CompassSector(letter, settings));
    const int64_t n = RoundUpToSectors(c.shots, static_cast<int>(c.sectors.size()));
    c.spareOnes = c.spareTwos = (n + 1) * 4 < 50 ? 3 : Saturate(SparesFor(n));
}

LevelConfig RingConfig(int level, const Settings& settings) {
    const int i = std::min(level, 7);
    const RingRow& row = kRows[i - 1];
    const int64_t e = std::max(level - 7, 0);
    const int s = row.directions;
    const float ef = static_cast<float>(e);
    LevelConfig c;
    c.towers = 1;
    c.width = settings.ringWidth;
    c.height = settings.ringHeight;
    c.ring = true;
    c.ruinRows = settings.ruinRows;
    for (int k = 0; k < s; ++k) c.sectors.push_back(CompassSector(kCompassOrder[k], settings));
    c.shots = Saturate(row.shots + 2 * e);
    c.flightTime = std::max(row.flight - 0.2f * ef, 1.2f);
    c.interval = std::max((5.0f - 0.3f * static_cast<float>(i - 1) - 0.1f * ef) /
                              (1.0f + 0.25f * static_cast<float>(s - 1)),
                          1.1f);
    c.line = static_cast<int>(std::min<int64_t>(row.line + e / 2, int64_t(c.height) - 2));
    c.need = static_cast<int>(std::min<int64_t>(row.need + 5 * (e / 2), 70));
    c.pieces = row.pieces;
    c.buildTime = static_cast<float>(std::max<int64_t>(70 - 4 * (int64_t(level) - 1), 40) + 20 * (s - 1));
    c.spareOnes = c.spareTwos = Saturate(std::max<int64_t>(SparesFor(RoundUpToSectors(c.shots, s)), row.spares));

    const LevelPack* pack = ActivePack();
    if (pack != nullptr && level <= static_cast<int>(pack->levels.size()))
        ApplyPackLevel(c, pack->levels[level - 1], settings);
    return c;
}

} // namespace

Settings& GetSettings() {
    static Settings settings;
    return settings;
}

const char* DifficultyWord(int difficulty) {
    return difficulty >= 0 && difficulty < kDifficulties ? kDifficultyNames[difficulty].word : "";
}

const char* DifficultyLabel(int difficulty) {
    return difficulty >= 0 && difficulty < kDifficulties ? kDifficultyNames[difficulty].label : "";
}

bool Sector::Contains(int x, int columns) const {
    if (columns <= 0) return false;
    const int span = 2 * columns;
    int d = (2 * x + 1 - 2 * centre) % span;
    // Into (-columns, columns].
    if (d > columns) d -= span;
    if (d <= -columns) d += span;
    return std::abs(d) < width;
}

int Sector::First(int columns) const {
    if (columns <= 0) return centre - width / 2;
    return ((centre - width / 2) % columns + columns) % columns;
}

Sector CompassSector(char letter, const Settings& settings) {
    const int q = settings.ringWidth / 4;
    Sector s;
    s.width = settings.sectorWidth;
    switch (letter) {
    case 'N': s = {0, s.width, 'N', "Norden"}; break;
    case 'W': s = {q, s.width, 'W', "Westen"}; break;
    case 'S': s = {2 * q, s.width, 'S', "Süden"}; break;
    default: s = {3 * q, s.width, 'O', "Osten"}; break;
    }
    return s;
}

LevelConfig ConfigFor(int level) {
    level = std::max(level, 1);
    const Settings& settings = GetSettings();
    return settings.classic != 0 ? ClassicConfig(level) : RingConfig(level, settings);
}

} // namespace torvane
