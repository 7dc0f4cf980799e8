#pragma once
// Global settings, the level configuration and the attacked sectors.
#include <cstdint>
#include <string>
#include <vector>

namespace torvane {

struct Settings {
    int32_t classic = 0;
    int32_t ringWidth = 32;
    int32_t ringHeight = 14;
    float cellAspect = 1.35f;
    float fieldOfView = 80.0f;
    float cameraSlack = 3.0f;
    float cameraMaxSpeed = 12.0f;
    float cameraEase = 10.0f;
    int32_t sectorWidth = 8;
    float viewTolerance = 4.0f;
    bool auto_rotate = true;
    bool piece_choice = false;
    bool music = true;
    int32_t sprites = 0;
    int32_t difficulty = 0;
    float waveBanner = 3.0f;
    int32_t repair_mode = 1;
    float undoWindow = 5.0f;
    float autoEndDelay = 1.0f;
    float keyRepeat = 0.085f;
    int32_t ruinRows = 4;
    std::string level_pack;
};

// The one process-wide settings object, built with its defaults on first use.
Settings& GetSettings();

// Number of difficulties, and the word in the settings file and the German
// label of each ("easy"/"Leicht" ...). Out-of-range values give empty strings.
constexpr int kDifficulties = 4;
// The highest level a game starts at. The levels beyond would still be played, but the
// attack's spare pieces alone grow with the level: at the largest int, gigabytes.
constexpr int kMaxLevel = 1000000;
const char* DifficultyWord(int difficulty);
const char* DifficultyLabel(int difficulty);

struct Sector {
    int32_t centre = 0;
    int32_t width = 0;
    char letter = 'N';
    std::string label;

    // Whether column x of a ring of `columns` columns lies in the sector.
    bool Contains(int x, int columns) const;
    // The first column of the sector, wrapped into the ring.
    int First(int columns) const;
};

struct LevelConfig {
    int32_t towers = 1;
    int32_t width = 8;
    int32_t height = 14;
    int32_t line = 6;
    bool ring = false;
    float buildTime = 70.0f;
    int32_t shots = 6;
    float flightTime = 4.0f;
    float interval = 5.0f;
    int32_t pieces = 17;
    int32_t need = 50;
    int32_t spareOnes = 4;
    int32_t spareTwos = 4;
    int32_t ruinRows = 2;
    std::vector<Sector> sectors;
    bool fromPack = false;
    bool waves = true;
    bool prep = true;
    bool newTower = false;
};

// The sector of a compass letter 'N', 'W', 'S'; any other letter is east ('O').
Sector CompassSector(char letter, const Settings& settings);

// The configuration of a level (below 1 counts as 1), by the current settings
// and the active pack.
LevelConfig ConfigFor(int level);

} // namespace torvane
