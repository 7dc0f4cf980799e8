#pragma once
// The frames' steps of a replay, coded close to what they hold: a frame costs three or four
// bits when frames come a thousand a second with a jitter of a few ticks. Each step that
// lies on the frame clock's grid of 10 microseconds is coded as its difference to what the
// steps before it lead to expect, with a range coder whose bits learn their odds as they
// go; a step off the grid (the simulator's fixed steps) costs nearly nothing when it
// repeats. Deflate, which comes afterwards, has fixed codes only: it could not do this.
#include <cstddef>
#include <cstdint>
#include <string>

namespace torvane::replay {

// What both sides learn from the steps so far; identical on both by construction.
struct StepModel {
    uint16_t grid = 1024;      // odds of a step on the grid, of 2048
    uint16_t sameRaw = 1024;   // odds of a step off the grid repeating the one before
    uint16_t tree[64] = {};    // odds of the bits of a difference's zigzag code
    uint16_t length[32] = {};  // odds of the bits of a far difference's length in bits
    uint32_t lastRaw = 0;      // the bits of the last step off the grid
    int64_t expectQ = 0;       // 16 times the steps' running mean, in ticks

    StepModel();
    int64_t Expected() const;
    void Learn(int64_t ticks);
};

class StepEncoder {
public:
    void Put(float dt);
    // The bytes of all steps put; the encoder is done.
    std::string Finish();

private:
    void Bit(uint16_t& odds, int bit);
    void Direct(uint32_t value, int bits);
    void ShiftLow();

    StepModel model_;
    std::string out_;
    uint64_t low_ = 0;
    uint32_t range_ = 0xFFFFFFFFu;
    uint8_t cache_ = 0;
    uint64_t cacheSize_ = 1;
};

class StepDecoder {
public:
    StepDecoder() = default;
    // The steps' bytes lie in bytes[from, to); past them the decoder reads zeros. The
    // decoder keeps no hold of the bytes: each call is given them again.
    StepDecoder(const std::string& bytes, size_t from, size_t to);
    // The next step; false when it is none a recording can hold.
    bool Next(const std::string& bytes, float& dt);
    // The byte the decoder has read up to, for a message.
    size_t At() const { return at_; }

private:
    int Bit(const std::string& bytes, uint16_t& odds);
    uint32_t Direct(const std::string& bytes, int bits);
    uint8_t Byte(const std::string& bytes);

    StepModel model_;
    size_t at_ = 0;
    size_t end_ = 0;
    uint32_t range_ = 0xFFFFFFFFu;
    uint32_t code_ = 0;
};

// The bits of a float, to compare to the bit.
uint32_t Bits(float f);
// The seconds of a step of whole ticks, as the frame clock gives them.
float TicksToStep(int64_t ticks);
// Steps are at most a minute either way; the rules cut them to 0.05 s anyway.
inline constexpr float kMaxStep = 60.0f;

} // namespace torvane::replay
