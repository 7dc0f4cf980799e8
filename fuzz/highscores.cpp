// Any text as the high-score file: parsed, written again, and a new score entered.
#include "game/content/Highscores.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace torvane::highscores;
    std::vector<Entry> list = Parse(std::string(reinterpret_cast<const char*>(data), size));
    if (list.size() > kMaxEntries) __builtin_trap();
    Parse(Serialise(list));
    const Entry entry{"Fuzz", size > 0 ? int32_t(data[0]) * 1000 : 0, 3, 1700000000};
    if (Qualifies(list, entry.score)) Insert(list, entry);
    return 0;
}
