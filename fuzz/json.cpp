// The JSON reader on any text, and every accessor on what it gives.
#include "engine/Json.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

// Walks the whole value so that every accessor meets every kind of value.
size_t Visit(const adv::json::Value& v, int depth) {
    size_t n = v.String().size() + size_t(v.Bool(false)) + size_t(v.Int(0) & 1);
    if (v.Number(0.0) != v.Number(0.0)) ++n;
    for (const adv::json::Value& item : v.Items()) n += Visit(item, depth + 1);
    for (const auto& [key, member] : v.members) n += Visit(v[key], depth + 1) + member.items.size();
    return n + v[size_t(0)].items.size() + v["a"].members.size();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    adv::json::Value value;
    std::string error;
    if (adv::json::Parse(std::string(reinterpret_cast<const char*>(data), size), value, &error)) {
        Visit(value, 0);
        adv::json::Value moved = std::move(value);
        Visit(moved, 0);
    } else if (error.find(" (Zeichen ") == std::string::npos) {
        __builtin_trap(); // every error names its position
    }
    return 0;
}
