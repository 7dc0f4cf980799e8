// Any text as the settings file; the settings it leaves are written again and give the
// first levels' configuration in both modes.
#include "game/content/Preferences.h"
#include "game/rules/Level.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    torvane::GetSettings() = torvane::Settings();
    torvane::preferences::Apply(std::string(reinterpret_cast<const char*>(data), size));
    torvane::preferences::Apply(torvane::preferences::Serialise());
    for (int classic : {0, 1}) {
        torvane::GetSettings().classic = classic;
        for (int level : {1, 4, 9}) torvane::ConfigFor(level);
    }
    return 0;
}
