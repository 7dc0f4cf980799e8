#include "game/PadControls.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>

namespace torvane::pad {
namespace {

using namespace pge;

// By pad button: A, B, X, Y, Back, Start, LB, RB, LT, RT, then the D-pad (with the left
// stick) up, down, left, right.
constexpr PixelEngine::PadKeys kPlay = {SPACE, ESCAPE, TAB, UP,   S,    ENTER, NONE,
                                        DOWN,  NONE,   DOWN, UP, DOWN, LEFT, RIGHT};
// The shoulders turn the pages; X and Y stand for the letters of the title's other hints.
constexpr PixelEngine::PadKeys kTitle = {SPACE, ESCAPE, L,    P,  S,    ENTER, LEFT,
                                         RIGHT, E,      NONE, UP, DOWN, LEFT,  RIGHT};
// One button for each switch of the card, from the top: difficulty, repair, turn, pieces.
constexpr PixelEngine::PadKeys kSettings = {D, ESCAPE, R,    A,  S,    ESCAPE, NONE,
                                            T, NONE,   NONE, UP, DOWN, LEFT,   RIGHT};
constexpr PixelEngine::PadKeys kPause = {ESCAPE, ESCAPE, L,    Q,  S,    ESCAPE, NONE,
                                         NONE,   NONE,   NONE, UP, DOWN, LEFT,   RIGHT};
// The name field reads the pad itself.
constexpr PixelEngine::PadKeys kNameEntry = {NONE, NONE, NONE, NONE, NONE, NONE, NONE,
                                             NONE, NONE, NONE, NONE, NONE, NONE, NONE};
// What the name field does with the pad, as the keys that do the same: Start saves as Enter,
// B leaves the field as Esc, the D-pad turns and moves as the arrows.
constexpr PixelEngine::PadKeys kNameEntryShown = {NONE, ESCAPE, NONE, NONE, NONE, ENTER, NONE,
                                                  NONE, NONE,   NONE, UP,   DOWN, LEFT,  RIGHT};
constexpr PixelEngine::PadKeys kEditor = {SPACE, ESCAPE, T,    DEL, NONE, ENTER, NONE,
                                          NONE,  NONE,   NONE, UP,  DOWN, LEFT,  RIGHT};
// While a name is typed, no button types a letter.
constexpr PixelEngine::PadKeys kEditorTyping = {NONE, ESCAPE, NONE, DEL, NONE, ENTER, NONE,
                                                NONE, NONE,   NONE, UP,  DOWN, LEFT,  RIGHT};

// The arcade name field's letters, in the order up turns through them.
constexpr const char* kRing[] = {
    "A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M", "N", "O", "P", "Q", "R", "S", "T",
    "U", "V", "W", "X", "Y", "Z", "Ä", "Ö", "Ü", "a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k",
    "l", "m", "n", "o", "p", "q", "r", "s", "t", "u", "v", "w", "x", "y", "z", "ä", "ö", "ü", "ß", "0",
    "1", "2", "3", "4", "5", "6", "7", "8", "9", " "};
constexpr int kRingSize = int(std::size(kRing));

// How key hints name keys, and how hints name buttons.
constexpr std::pair<const char*, Key> kArrows[] = {{"←", LEFT}, {"→", RIGHT}, {"↑", UP}, {"↓", DOWN}};
constexpr std::pair<const char*, Key> kKeyNames[] = {
    {"Space", SPACE}, {"Tab", TAB}, {"Enter", ENTER}, {"Esc", ESCAPE}, {"Del", DEL}};
constexpr const char* kButtonNames[PAD_BUTTONS] = {"A",  "B",  "X",  "Y",  "Back", "Start", "LB",
                                                   "RB", "LT", "RT", "↑",  "↓",    "←",     "→"};
constexpr const char* kCross = "✚";

// The keys a hint's word names, each with its name: a key or letter, or a run of arrows;
// NONE for a word that names no key.
std::vector<std::pair<Key, std::string>> KeysOf(const std::string& word) {
    for (const auto& [name, key] : kKeyNames)
        if (word == name) return {{key, word}};
    if (word.size() == 1 && word[0] >= 'A' && word[0] <= 'Z') return {{Key(A + (word[0] - 'A')), word}};
    std::vector<std::pair<Key, std::string>> arrows;
    for (size_t at = 0; at < word.size();) {
        const auto* arrow = std::find_if(std::begin(kArrows), std::end(kArrows), [&](const auto& a) {
            return word.compare(at, std::char_traits<char>::length(a.first), a.first) == 0;
        });
        if (arrow == std::end(kArrows)) return {{NONE, word}};
        arrows.emplace_back(arrow->second, arrow->first);
        at += std::char_traits<char>::length(arrow->first);
    }
    return arrows;
}

} // namespace

const PixelEngine::PadKeys& KeysFor(Context context) {
    switch (context) {
    case Context::Title: return kTitle;
    case Context::Settings: return kSettings;
    case Context::Pause: return kPause;
    case Context::NameEntry: return kNameEntry;
    case Context::Editor: return kEditor;
    case Context::EditorTyping: return kEditorTyping;
    case Context::Play: break;
    }
    return kPlay;
}

std::vector<std::pair<std::string, PadButton>> ShownButtons(const std::string& keys, Context context) {
    const PixelEngine::PadKeys& table = context == Context::NameEntry ? kNameEntryShown : KeysFor(context);
    std::vector<std::pair<std::string, PadButton>> shown;
    std::istringstream words(keys);
    bool crossed = false; // the D-pad's cross stands before the run of directions that goes on
    for (std::string word; words >> word;) {
        for (const auto& [key, name] : KeysOf(word)) {
            const auto found = std::find(table.begin(), table.end(), key);
            if (key == NONE || found == table.end()) {
                shown.emplace_back(name, PAD_BUTTONS);
                crossed = false;
                continue;
            }
            const PadButton button = PadButton(found - table.begin());
            const bool dpad = button >= PAD_UP;
            shown.emplace_back(dpad && !crossed ? std::string(kCross) + kButtonNames[button] : kButtonNames[button],
                               button);
            crossed = dpad;
        }
    }
    return shown;
}

std::string StepLetter(const std::string& letter, int steps) {
    const auto found = std::find_if(std::begin(kRing), std::end(kRing), [&](const char* l) { return letter == l; });
    // Outside the ring: one place before "A", so that a step up gives "A".
    const int at = found == std::end(kRing) ? -1 : int(found - std::begin(kRing));
    return kRing[((at + steps) % kRingSize + kRingSize) % kRingSize];
}

} // namespace torvane::pad
