// Composes the game's five music tracks and the adventure's evening tune as WAV files and draws
// the studio logo as a JPEG. Usage: compose-music OUTDIR   (writes OUTDIR/<track>.wav and OUTDIR/logo.jpg)
// Everything is computed from the scores below with a fixed noise seed, so each run gives the
// same files. Loops are rendered with a tail that is folded back into their start, so the end
// runs on into the beginning without a seam.
#include <stb/stb_image_write.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int kRate = 44100;
constexpr double kTau = 6.283185307179586;
constexpr double kTailSeconds = 3.0; // longest ring-out of any note
constexpr double kPeak = 0.85;       // level of the loudest sample after mastering

using Mode = std::vector<int>;
const Mode kDorian = {0, 2, 3, 5, 7, 9, 10};
const Mode kAeolian = {0, 2, 3, 5, 7, 8, 10};
const Mode kIonian = {0, 2, 4, 5, 7, 9, 11};

// The parts of one piece. Melodies are "degree:beats" words ('r' rests), degrees of the mode
// counted from the key's root one octave up. Pluck patterns have one character per eighth
// (chord tone 0-3, '.' silent); bass patterns one per eighth ('R' root, 'F' fifth, 'O' octave,
// '-' holds, '.' silent); drum patterns one per sixteenth ('x' hit, 'o' soft hit).
struct Piece {
    std::string name;
    int root;      // MIDI note of the key's root in the bass octave
    Mode mode;
    double bpm;
    int bars;      // of four beats
    bool loop;
    std::vector<int> chords; // degree of each bar's chord
    std::string melody;
    std::string pluck, bass, kick, tabor, shaker;
    double leadLevel, pluckLevel, bassLevel, droneLevel, drumLevel;
};

struct Rng {
    uint32_t state;
    double Next() { // -1..1
        state = state * 1664525u + 1013904223u;
        return double(state >> 8) / double(1u << 23) - 1.0;
    }
};

double Hz(double midi) { return 440.0 * std::pow(2.0, (midi - 69.0) / 12.0); }

int MidiOf(const Piece& p, int degree, int octave) {
    const int d = ((degree % 7) + 7) % 7;
    const int oct = (degree - d) / 7;
    return p.root + 12 * (octave + oct) + p.mode[size_t(d)];
}

// Attack/release gate: a linear rise over `attack`, flat, a linear fall over the last `release`.
double Gate(double t, double length, double attack, double release) {
    if (t < 0 || t >= length) return 0;
    double g = 1;
    if (t < attack) g = t / attack;
    if (t > length - release) g = std::min(g, (length - t) / release);
    return g;
}

class Track {
public:
    explicit Track(double seconds) : samples(size_t((seconds + kTailSeconds) * kRate), 0.0) {}
    std::vector<double> samples;

    void Add(double at, size_t i, double v) {
        const size_t k = size_t(at * kRate) + i;
        if (k < samples.size()) samples[k] += v;
    }

    // A plucked string: a noise burst circulating in a damped delay line.
    void Pluck(double at, double hz, double seconds, double level, Rng& rng) {
        const size_t period = std::max<size_t>(2, size_t(std::lround(kRate / hz)));
        std::vector<double> line(period);
        for (auto& v : line) v = rng.Next();
        double prev = 0;
        const size_t n = size_t(seconds * kRate);
        for (size_t i = 0; i < n; ++i) {
            const size_t j = i % period;
            const double out = line[j];
            line[j] = 0.996 * 0.5 * (out + line[(j + 1) % period]);
            const double smooth = 0.6 * out + 0.4 * prev; // softens the attack's fizz
            prev = out;
            Add(at, i, level * smooth * Gate(double(i) / kRate, seconds, 0.002, 0.05));
        }
    }

    // A recorder-like lead: almost a sine, a little breath, vibrato that arrives late.
    void Recorder(double at, double hz, double seconds, double level, Rng& rng) {
        double phase = 0, breath = 0;
        const size_t n = size_t(seconds * kRate);
        for (size_t i = 0; i < n; ++i) {
            const double t = double(i) / kRate;
            const double vib = 1.0 + 0.004 * std::min(1.0, t / 0.4) * std::sin(kTau * 5.2 * t);
            phase += kTau * hz * vib / kRate;
            breath = 0.9 * breath + 0.1 * rng.Next();
            const double v = std::sin(phase) + 0.12 * std::sin(2 * phase) + 0.08 * std::sin(3 * phase) +
                             0.35 * breath;
            Add(at, i, level * v * Gate(t, seconds, 0.035, 0.06));
        }
    }

    // A round bass string: triangle with a falling envelope.
    void Bass(double at, double hz, double seconds, double level) {
        const size_t n = size_t(seconds * kRate);
        for (size_t i = 0; i < n; ++i) {
            const double t = double(i) / kRate;
            const double x = std::fmod(hz * t, 1.0);
            const double tri = 4.0 * std::abs(x - 0.5) - 1.0;
            Add(at, i, level * tri * std::exp(-1.8 * t) * Gate(t, seconds, 0.004, 0.04));
        }
    }

    // A frame drum: a sine falling in pitch, like the cannon's boom but soft.
    void Kick(double at, double level) {
        double phase = 0;
        const size_t n = size_t(0.35 * kRate);
        for (size_t i = 0; i < n; ++i) {
            const double t = double(i) / kRate;
            phase += kTau * (50.0 + 70.0 * std::exp(-t / 0.04)) / kRate;
            Add(at, i, level * std::sin(phase) * std::exp(-t / 0.11) * Gate(t, 0.35, 0.002, 0.02));
        }
    }

    // A tabor: low-passed noise with a short tone body.
    void Tabor(double at, double level, Rng& rng) {
        double low = 0;
        const size_t n = size_t(0.18 * kRate);
        for (size_t i = 0; i < n; ++i) {
            const double t = double(i) / kRate;
            low += 0.35 * (rng.Next() - low);
            const double v = 0.8 * low + 0.5 * std::sin(kTau * 190.0 * t);
            Add(at, i, level * v * std::exp(-t / 0.045) * Gate(t, 0.18, 0.001, 0.02));
        }
    }

    // A shaker: high-passed noise, very short.
    void Shaker(double at, double level, Rng& rng) {
        double prev = 0;
        const size_t n = size_t(0.06 * kRate);
        for (size_t i = 0; i < n; ++i) {
            const double t = double(i) / kRate;
            const double x = rng.Next();
            Add(at, i, level * (x - prev) * 0.5 * std::exp(-t / 0.018) * Gate(t, 0.06, 0.003, 0.01));
            prev = x;
        }
    }
};

struct Note {
    int degree; // or kRest
    double beats;
};
constexpr int kRest = 1000;

std::vector<Note> ParseMelody(const std::string& text) {
    std::vector<Note> notes;
    std::istringstream in(text);
    std::string word;
    while (in >> word) {
        const size_t colon = word.find(':');
        const std::string deg = word.substr(0, colon);
        notes.push_back({deg == "r" ? kRest : std::stoi(deg), std::stod(word.substr(colon + 1))});
    }
    return notes;
}

// Renders one piece; false (with a message) if its parts don't fill its bars.
bool Render(const Piece& p, std::vector<double>& out) {
    const double beat = 60.0 / p.bpm, bar = 4 * beat, length = p.bars * bar;
    if (int(p.chords.size()) != p.bars) {
        std::fprintf(stderr, "%s: %zu chords for %d bars\n", p.name.c_str(), p.chords.size(), p.bars);
        return false;
    }
    Track track(length);
    Rng rng{20260611u};

    // Lead.
    double at = 0;
    for (const Note& n : ParseMelody(p.melody)) {
        if (n.degree != kRest)
            track.Recorder(at, Hz(MidiOf(p, n.degree, 2)), n.beats * beat * 0.96, p.leadLevel, rng);
        at += n.beats * beat;
    }
    if (std::abs(at - length) > 1e-6) {
        std::fprintf(stderr, "%s: melody lasts %.3f beats, bars need %d\n", p.name.c_str(), at / beat, 4 * p.bars);
        return false;
    }

    const double eighth = beat / 2, sixteenth = beat / 4;
    for (int b = 0; b < p.bars; ++b) {
        const int chord = p.chords[size_t(b)];
        const double start = b * bar;
        // Plucked chord tones, in the middle octave.
        for (size_t s = 0; s < p.pluck.size(); ++s) {
            const char c = p.pluck[s];
            if (c < '0' || c > '3') continue;
            const int degree = c == '3' ? chord + 7 : chord + 2 * (c - '0');
            track.Pluck(start + s * eighth, Hz(MidiOf(p, degree, 1)), 1.6, p.pluckLevel, rng);
        }
        // Bass: each note holds over the '-' that follow it.
        for (size_t s = 0; s < p.bass.size(); ++s) {
            const char c = p.bass[s];
            if (c != 'R' && c != 'F' && c != 'O') continue;
            size_t hold = 1;
            while (s + hold < p.bass.size() && p.bass[s + hold] == '-') ++hold;
            const int degree = chord + (c == 'F' ? 4 : c == 'O' ? 7 : 0);
            track.Bass(start + s * eighth, Hz(MidiOf(p, degree, 0)), hold * eighth * 0.95, p.bassLevel);
        }
        // Drums.
        for (size_t s = 0; s < 16; ++s) {
            const double t = start + s * sixteenth;
            const auto hit = [&](const std::string& pattern) {
                if (s >= pattern.size()) return 0.0;
                return pattern[s] == 'x' ? 1.0 : pattern[s] == 'o' ? 0.45 : 0.0;
            };
            if (double v = hit(p.kick)) track.Kick(t, v * p.drumLevel);
            if (double v = hit(p.tabor)) track.Tabor(t, v * 0.6 * p.drumLevel, rng);
            if (double v = hit(p.shaker)) track.Shaker(t, v * 0.5 * p.drumLevel, rng);
        }
    }

    // Drone on root and fifth. A loop's drone has a whole number of cycles in the loop, so it
    // runs through the seam; a closing piece's drone fades out with the last bar.
    const double droneEnd = p.loop ? length + kTailSeconds : length + 1.0;
    for (int voice = 0; voice < 2; ++voice) {
        double hz = Hz(p.root + 12 + (voice ? 7 : 0));
        if (p.loop) hz = std::round(hz * length) / length;
        const double swell = p.loop ? std::round(length / 4.0) / length : 0.25; // slow breathing
        const size_t n = size_t(droneEnd * kRate);
        for (size_t i = 0; i < n; ++i) {
            const double t = double(i) / kRate;
            double v = 0;
            for (int h = 1; h <= 6; ++h) v += std::sin(kTau * hz * h * t) / (h * h);
            const double gate = p.loop ? 1.0 : Gate(t, droneEnd, 0.3, 1.5);
            const double breath = 0.8 + 0.2 * std::sin(kTau * swell * t);
            track.Add(0, i, p.droneLevel * (voice ? 0.6 : 1.0) * v * breath * gate);
        }
    }

    out = track.samples;
    if (p.loop) { // fold the ring-out of the last bars onto the first
        const size_t n = size_t(length * kRate);
        for (size_t i = n; i < out.size(); ++i) out[i - n] += out[i];
        out.resize(n);
    } else { // keep the ring-out, end on the last sound
        size_t end = out.size();
        while (end > 0 && std::abs(out[end - 1]) < 1e-4) --end;
        out.resize(std::min(out.size(), end + size_t(0.05 * kRate)));
    }
    double peak = 0;
    for (double v : out) peak = std::max(peak, std::abs(v));
    for (double& v : out) v *= kPeak / peak;
    return true;
}

bool WriteWav(const std::string& path, const std::vector<double>& samples) {
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return false;
    const auto u32 = [&](uint32_t v) { std::fwrite(&v, 4, 1, f); };
    const auto u16 = [&](uint16_t v) { std::fwrite(&v, 2, 1, f); };
    const uint32_t bytes = uint32_t(samples.size() * 2);
    std::fwrite("RIFF", 1, 4, f);
    u32(36 + bytes);
    std::fwrite("WAVEfmt ", 1, 8, f);
    u32(16);
    u16(1); // PCM
    u16(1); // mono
    u32(kRate);
    u32(kRate * 2);
    u16(2);
    u16(16);
    std::fwrite("data", 1, 4, f);
    u32(bytes);
    for (double v : samples) {
        const int16_t s = int16_t(std::lround(std::clamp(v, -1.0, 1.0) * 32767.0));
        std::fwrite(&s, 2, 1, f);
    }
    return std::fclose(f) == 0;
}

std::vector<Piece> Pieces() {
    std::vector<Piece> pieces;
    // Title: D dorian, stately, a wide tune over a held drone.
    pieces.push_back({"title", 50, kDorian, 84, 12, true, {0, 6, 3, 0, 2, 6, 4, 0, 0, 6, 3, 0},
                      "4:1.5 3:0.5 2:1 0:1  1:1 2:0.5 1:0.5 -1:2  3:1 5:1 4:1 3:1  2:1 1:1 0:2 "
                      "2:1 4:1 7:1.5 6:0.5  1:1 4:1 6:1.5 4:0.5  4:1.5 5:0.5 4:1 1:1  0:3 r:1 "
                      "7:1.5 6:0.5 4:1 5:1  6:1.5 4:0.5 1:1 2:1  3:1 5:1 7:1 5:1  4:1 2:1 0:2",
                      "0.1.2.1.", "R-------", "x.......x.......", "........o.......", "",
                      0.22, 0.30, 0.35, 0.05, 0.55});
    // Building against the clock: A dorian, plucked eighths, a steady tabor.
    pieces.push_back({"build", 45, kDorian, 108, 16, true, {0, 0, 6, 3, 0, 0, 6, 4, 2, 3, 6, 0, 2, 3, 4, 0},
                      "0:0.5 2:0.5 4:0.5 2:0.5 4:1 7:1  6:0.5 7:0.5 6:0.5 4:0.5 5:1 4:1 "
                      "3:0.5 4:0.5 6:0.5 4:0.5 3:1 1:1  3:0.5 5:0.5 3:0.5 1:0.5 0:1 r:1 "
                      "0:0.5 2:0.5 4:0.5 2:0.5 4:1 7:1  6:0.5 7:0.5 9:0.5 7:0.5 6:1 4:1 "
                      "3:0.5 4:0.5 6:0.5 8:0.5 7:1 6:1  4:1.5 3:0.5 1:1 4:1 "
                      "2:0.5 4:0.5 7:0.5 4:0.5 2:1 4:1  3:0.5 5:0.5 7:0.5 5:0.5 3:1 5:1 "
                      "6:0.5 5:0.5 4:0.5 3:0.5 1:1 3:1  4:2 r:1 4:0.5 5:0.5 "
                      "6:0.5 7:0.5 9:1 7:1 6:1  5:0.5 6:0.5 7:1 5:1 3:1 "
                      "4:0.5 5:0.5 6:0.5 4:0.5 1:1 3:1  2:1 1:0.5 -1:0.5 0:2",
                      "01213121", "R---F---", "x.......x.......", "....x.......x.o.", "o.o.o.o.o.o.o.o.",
                      0.20, 0.26, 0.40, 0.035, 0.6});
    // Under fire: E aeolian, fast, a pounding drum and a restless bass.
    pieces.push_back({"defend", 40, kAeolian, 132, 16, true, {0, 0, 5, 6, 0, 0, 3, 4, 5, 6, 0, 0, 5, 6, 3, 4},
                      "r:1 4:0.5 3:0.5 4:1 7:1  6:0.5 7:0.5 6:0.5 4:0.5 3:1 4:1 "
                      "2:0.5 4:0.5 2:0.5 0:0.5 2:1 5:1  6:1.5 5:0.5 4:1 3:1 "
                      "r:1 4:0.5 3:0.5 4:1 7:1  8:0.5 9:0.5 8:0.5 7:0.5 6:1 4:1 "
                      "3:0.5 4:0.5 5:0.5 4:0.5 3:1 0:1  1:1.5 3:0.5 4:2 "
                      "7:0.5 7:0.5 7:0.5 6:0.5 5:1 4:1  6:0.5 6:0.5 6:0.5 5:0.5 4:1 3:1 "
                      "4:0.5 7:0.5 4:0.5 2:0.5 0:1 2:1  4:3 r:1 "
                      "9:1 8:0.5 7:0.5 5:1 7:1  8:1 7:0.5 6:0.5 3:1 6:1 "
                      "7:0.5 6:0.5 5:0.5 3:0.5 7:1 5:1  4:1 3:0.5 1:0.5 4:1 r:1",
                      "0.2.0.2.", "R.RR.RF.", "x..x..x.x.x.x...", "....x.......x..o", "xoxoxoxoxoxoxoxo",
                      0.19, 0.18, 0.45, 0.04, 0.75});
    // The level is won: G major, a bright rising phrase ending on a held chord.
    pieces.push_back({"levelwon", 43, kIonian, 132, 4, false, {0, 3, 4, 0},
                      "0:0.5 2:0.5 4:1 7:2  5:1 7:0.5 9:0.5 7:2  8:1 6:1 4:1 8:1  7:4",
                      "0123....", "R---F---", "x...x...x...x...", "..o...o...o..xxx", "",
                      0.24, 0.28, 0.35, 0.03, 0.5});
    // The level is lost: C aeolian, slow, falling to the low tonic.
    pieces.push_back({"defeated", 48, kAeolian, 88, 4, false, {0, 5, 3, 0},
                      "4:1 3:1 2:1 1:1  2:1 0:1 -1:1 -2:1  -2:1.5 -3:0.5 -4:2  -7:4",
                      "0...2...", "R-------", "x...............", "", "",
                      0.24, 0.26, 0.35, 0.05, 0.5});
    // "Der Vorabend": B aeolian, slow and quiet, a lone tune over a soft heartbeat on the drum.
    pieces.push_back({"vorabend", 47, kAeolian, 76, 10, true, {0, 3, 5, 2, 0, 5, 3, 4, 5, 4},
                      "0:2 2:1 4:1  3:1.5 2:0.5 1:2  2:1 4:1 5:1 4:1  2:3 r:1 "
                      "4:2 5:1 7:1  6:1.5 5:0.5 4:2  5:1 4:1 2:1 1:1  0:3 r:1 "
                      "-1:1 0:1 2:1 4:1  3:2 1:1 -1:1",
                      "0...1.2.", "R-------", "x.......x.......", "", "",
                      0.20, 0.26, 0.32, 0.05, 0.35});
    return pieces;
}

// --- The logo: "TORVANE" in block letters beside a small round tower, on black. ---

constexpr int kLogoW = 537, kLogoH = 200;

const char* Glyph(char c) {
    switch (c) { // 5 by 7, rows from the top
    case 'T': return "#####..#....#....#....#....#....#..";
    case 'O': return ".###.#...##...##...##...##...#.###.";
    case 'R': return "####.#...##...#####.#.#..#..#.#...#";
    case 'V': return "#...##...##...##...#.#.#..#.#...#..";
    case 'A': return ".###.#...##...#######...##...##...#";
    case 'N': return "#...###..##.#.##..###...##...##...#";
    case 'E': return "######....####.#....#....#....#####";
    default: return "...................................";
    }
}

struct Image {
    std::vector<uint8_t> rgb = std::vector<uint8_t>(size_t(kLogoW) * kLogoH * 3, 0);
    void Fill(int x0, int y0, int w, int h, double r, double g, double b) {
        for (int y = std::max(0, y0); y < std::min(kLogoH, y0 + h); ++y)
            for (int x = std::max(0, x0); x < std::min(kLogoW, x0 + w); ++x) {
                uint8_t* p = &rgb[(size_t(y) * kLogoW + x) * 3];
                p[0] = uint8_t(std::clamp(r, 0.0, 255.0));
                p[1] = uint8_t(std::clamp(g, 0.0, 255.0));
                p[2] = uint8_t(std::clamp(b, 0.0, 255.0));
            }
    }
};

void DrawTower(Image& img, int x0, int yBase) {
    // A round tower: shaded body, a band of battlements, a dark door and a window slit.
    const int w = 56, h = 96;
    for (int x = 0; x < w; ++x) {
        const double u = (x + 0.5) / w * 2.0 - 1.0; // -1..1 across the round body
        const double light = 0.35 + 0.65 * std::sqrt(std::max(0.0, 1.0 - u * u)) * (0.75 - 0.25 * u);
        for (int y = 0; y < h; ++y) {
            const bool joint = (y % 12 == 11) || ((x + (y / 12 % 2) * 7) % 14 == 13);
            const double k = light * (joint ? 0.7 : 1.0);
            img.Fill(x0 + x, yBase - h + y, 1, 1, 196 * k, 170 * k, 128 * k);
        }
    }
    for (int m = 0; m < 4; ++m) img.Fill(x0 - 4 + m * 17, yBase - h - 14, 13, 14, 176, 150, 110);
    img.Fill(x0 - 4, yBase - h - 2, w + 8, 6, 150, 126, 90);
    img.Fill(x0 + 20, yBase - 26, 16, 26, 22, 14, 10);
    img.Fill(x0 + 24, yBase - 30, 8, 4, 22, 14, 10);
    img.Fill(x0 + 26, yBase - 72, 4, 16, 22, 14, 10);
    img.Fill(x0 - 16, yBase, w + 32, 3, 150, 40, 32); // a red line at its foot
}

void DrawWord(Image& img, const std::string& word, int x0, int y0, int cell) {
    for (size_t i = 0; i < word.size(); ++i) {
        const char* g = Glyph(word[i]);
        for (int r = 0; r < 7; ++r)
            for (int c = 0; c < 5; ++c) {
                if (g[r * 5 + c] != '#') continue;
                const int x = x0 + int(i) * 6 * cell + c * cell, y = y0 + r * cell;
                const double shade = 1.0 - 0.35 * r / 6.0; // gold, darker towards the foot
                img.Fill(x, y, cell, cell, 240 * shade, 196 * shade, 96 * shade);
                if (r == 0 || g[(r - 1) * 5 + c] != '#') // light falls on the upper edges
                    img.Fill(x, y, cell, 2, 255, 240, 190);
            }
    }
}

bool WriteLogo(const std::string& path) {
    Image img;
    const int cell = 10;
    const std::string word = "TORVANE";
    const int wordW = int(word.size()) * 6 * cell - cell, towerW = 56, gap = 34;
    const int x0 = (kLogoW - (towerW + gap + wordW)) / 2;
    const int base = 156; // the emblem's 110 pixels of height sit a little above the middle
    DrawTower(img, x0, base);
    DrawWord(img, word, x0 + towerW + gap, base - 7 * cell - 8, cell);
    return stbi_write_jpg(path.c_str(), kLogoW, kLogoH, 3, img.rgb.data(), 92) != 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: compose-music OUTDIR\n");
        return 2;
    }
    const std::string dir = argv[1];
    for (const Piece& p : Pieces()) {
        std::vector<double> samples;
        if (!Render(p, samples)) return 1;
        const std::string path = dir + "/" + p.name + ".wav";
        if (!WriteWav(path, samples)) {
            std::fprintf(stderr, "cannot write %s\n", path.c_str());
            return 1;
        }
        std::printf("%s: %.2f s\n", path.c_str(), double(samples.size()) / kRate);
    }
    if (!WriteLogo(dir + "/logo.jpg")) {
        std::fprintf(stderr, "cannot write %s/logo.jpg\n", dir.c_str());
        return 1;
    }
    return 0;
}
