#include "game/content/StepCoder.h"

#include <cmath>
#include <cstring>

namespace torvane::replay {
namespace {

constexpr double kTicksPerSecond = 100000.0;
constexpr int64_t kMaxTicks = 6000000;
constexpr uint32_t kTop = 1u << 24;
// Odds are of 2048 and move a 32nd of the way at each bit.
constexpr int kOddsBits = 11;
constexpr int kAdapt = 5;
// The zigzag code of a difference that the tree holds; 63 says a far one follows: the
// length of its code in bits, learnt as well, then the bits below its top one as they are.
constexpr uint32_t kEscape = 63;

float FromBits(uint32_t b) {
    float f = 0.0f;
    std::memcpy(&f, &b, sizeof f);
    return f;
}

uint32_t Zig(int64_t v) { return static_cast<uint32_t>((static_cast<uint64_t>(v) << 1) ^ static_cast<uint64_t>(v >> 63)); }
int64_t Unzig(uint32_t z) { return static_cast<int64_t>(z >> 1) ^ -static_cast<int64_t>(z & 1); }

int64_t FloorDiv16(int64_t v) { return v >= 0 ? v / 16 : -((-v + 15) / 16); }

} // namespace

uint32_t Bits(float f) {
    uint32_t b = 0;
    std::memcpy(&b, &f, sizeof b);
    return b;
}

float TicksToStep(int64_t ticks) { return static_cast<float>(ticks) / 100000.0f; }

StepModel::StepModel() {
    for (uint16_t& odds : tree) odds = 1024;
    for (uint16_t& odds : length) odds = 1024;
}

int64_t StepModel::Expected() const { return FloorDiv16(expectQ + 8); }

void StepModel::Learn(int64_t ticks) { expectQ += ticks - Expected(); }

// ---- encoding ----

void StepEncoder::ShiftLow() {
    if (static_cast<uint32_t>(low_) < 0xFF000000u || (low_ >> 32) != 0) {
        const uint8_t carry = static_cast<uint8_t>(low_ >> 32);
        uint8_t pending = cache_;
        do {
            out_.push_back(static_cast<char>(static_cast<uint8_t>(pending + carry)));
            pending = 0xFF;
        } while (--cacheSize_ != 0);
        cache_ = static_cast<uint8_t>(low_ >> 24);
    }
    ++cacheSize_;
    low_ = (low_ & 0x00FFFFFFu) << 8;
}

void StepEncoder::Bit(uint16_t& odds, int bit) {
    const uint32_t bound = (range_ >> kOddsBits) * odds;
    if (bit == 0) {
        range_ = bound;
        odds = static_cast<uint16_t>(odds + (((1u << kOddsBits) - odds) >> kAdapt));
    } else {
        low_ += bound;
        range_ -= bound;
        odds = static_cast<uint16_t>(odds - (odds >> kAdapt));
    }
    for (; range_ < kTop; range_ <<= 8) ShiftLow();
}

void StepEncoder::Direct(uint32_t value, int bits) {
    for (int i = bits - 1; i >= 0; --i) {
        range_ >>= 1;
        if ((value >> i) & 1) low_ += range_;
        for (; range_ < kTop; range_ <<= 8) ShiftLow();
    }
}

void StepEncoder::Put(float dt) {
    const uint32_t bits = Bits(dt);
    const double scaled = static_cast<double>(dt) * kTicksPerSecond;
    const bool near = std::fabs(scaled) <= static_cast<double>(kMaxTicks);
    const int64_t ticks = near ? std::llround(scaled) : 0;
    if (near && Bits(TicksToStep(ticks)) == bits) {
        Bit(model_.grid, 0);
        const uint32_t z = Zig(ticks - model_.Expected());
        const uint32_t symbol = z < kEscape ? z : kEscape;
        for (uint32_t node = 1, i = 6; i-- > 0;) {
            const int bit = static_cast<int>((symbol >> i) & 1);
            Bit(model_.tree[node], bit);
            node = (node << 1) | static_cast<uint32_t>(bit);
        }
        if (symbol == kEscape) {
            int bits = 0;
            while (bits < 32 && (z >> bits) != 0) ++bits;
            for (uint32_t node = 1, i = 5; i-- > 0;) {
                const int bit = static_cast<int>((static_cast<uint32_t>(bits) >> i) & 1);
                Bit(model_.length[node], bit);
                node = (node << 1) | static_cast<uint32_t>(bit);
            }
            Direct(z, bits - 1);
        }
        model_.Learn(ticks);
        return;
    }
    Bit(model_.grid, 1);
    Bit(model_.sameRaw, bits == model_.lastRaw ? 0 : 1);
    if (bits != model_.lastRaw) Direct(bits, 32);
    model_.lastRaw = bits;
}

std::string StepEncoder::Finish() {
    for (int i = 0; i < 5; ++i) ShiftLow();
    return std::move(out_);
}

// ---- decoding ----

StepDecoder::StepDecoder(const std::string& bytes, size_t from, size_t to) : at_(from), end_(to) {
    for (int i = 0; i < 5; ++i) code_ = (code_ << 8) | Byte(bytes);
}

uint8_t StepDecoder::Byte(const std::string& bytes) {
    if (at_ >= end_ || at_ >= bytes.size()) return 0;
    return static_cast<uint8_t>(bytes[at_++]);
}

int StepDecoder::Bit(const std::string& bytes, uint16_t& odds) {
    const uint32_t bound = (range_ >> kOddsBits) * odds;
    int bit = 0;
    if (code_ < bound) {
        range_ = bound;
        odds = static_cast<uint16_t>(odds + (((1u << kOddsBits) - odds) >> kAdapt));
    } else {
        code_ -= bound;
        range_ -= bound;
        odds = static_cast<uint16_t>(odds - (odds >> kAdapt));
        bit = 1;
    }
    for (; range_ < kTop; range_ <<= 8) code_ = (code_ << 8) | Byte(bytes);
    return bit;
}

uint32_t StepDecoder::Direct(const std::string& bytes, int bits) {
    uint32_t value = 0;
    for (int i = 0; i < bits; ++i) {
        range_ >>= 1;
        const uint32_t one = code_ >= range_ ? 1u : 0u;
        if (one) code_ -= range_;
        value = (value << 1) | one;
        for (; range_ < kTop; range_ <<= 8) code_ = (code_ << 8) | Byte(bytes);
    }
    return value;
}

bool StepDecoder::Next(const std::string& bytes, float& dt) {
    if (Bit(bytes, model_.grid) == 0) {
        uint32_t symbol = 1;
        for (int i = 0; i < 6; ++i) symbol = (symbol << 1) | static_cast<uint32_t>(Bit(bytes, model_.tree[symbol]));
        symbol -= 64;
        if (symbol == kEscape) {
            uint32_t bits = 1;
            for (int i = 0; i < 5; ++i) bits = (bits << 1) | static_cast<uint32_t>(Bit(bytes, model_.length[bits]));
            bits -= 32;
            // The code's top bit stands above the bits that follow; a code that short is no far one.
            if (bits < 6) return false;
            symbol = (1u << (bits - 1)) | Direct(bytes, static_cast<int>(bits) - 1);
        }
        const int64_t ticks = model_.Expected() + Unzig(symbol);
        if (ticks < -kMaxTicks || ticks > kMaxTicks) return false;
        model_.Learn(ticks);
        dt = TicksToStep(ticks);
        return true;
    }
    if (Bit(bytes, model_.sameRaw) != 0) model_.lastRaw = Direct(bytes, 32);
    dt = FromBits(model_.lastRaw);
    return std::fabs(dt) <= kMaxStep;
}

} // namespace torvane::replay
