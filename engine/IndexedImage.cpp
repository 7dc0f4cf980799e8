#include "engine/IndexedImage.h"

#include "pge/Files.h"
#include "pge/ImageLoader.h"

#include <stb_image.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace adv {
namespace {

const uint8_t kSignature[8] = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A};

uint32_t ReadU32(const uint8_t* p) { return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3]; }

uint8_t Paeth(int a, int b, int c) {
    const int p = a + b - c;
    const int pa = std::abs(p - a), pb = std::abs(p - b), pc = std::abs(p - c);
    if (pa <= pb && pa <= pc) return uint8_t(a);
    return uint8_t(pb <= pc ? b : c);
}

// Undoes the PNG filters for one byte per pixel; `raw` holds (width + 1) * height bytes.
bool Unfilter(const uint8_t* raw, int32_t width, int32_t height, std::vector<uint8_t>& out) {
    const size_t w = size_t(width);
    out.assign(w * size_t(height), 0);
    for (size_t y = 0; y < size_t(height); ++y) {
        const uint8_t filter = raw[y * (w + 1)];
        const uint8_t* in = raw + y * (w + 1) + 1;
        uint8_t* row = out.data() + y * w;
        const uint8_t* up = y > 0 ? row - w : nullptr;
        for (size_t x = 0; x < w; ++x) {
            const int a = x > 0 ? row[x - 1] : 0;
            const int b = up ? up[x] : 0;
            const int c = x > 0 && up ? up[x - 1] : 0;
            int predicted = 0;
            switch (filter) {
            case 0: predicted = 0; break;
            case 1: predicted = a; break;
            case 2: predicted = b; break;
            case 3: predicted = (a + b) / 2; break;
            case 4: predicted = Paeth(a, b, c); break;
            default: return false;
            }
            row[x] = uint8_t(in[x] + predicted);
        }
    }
    return true;
}

} // namespace

int PaletteCycle::Frame(float time) const {
    const int64_t n = int64_t(end) - start + 1;
    if (n < 1 || !(fps > 0.0f)) return 0;
    const double raw = std::floor(double(fps) * double(time));
    // Far beyond any real run time; keeps the conversion defined.
    if (!(std::fabs(raw) < 1e18)) return 0;
    // Reduced before multiplying, so no direction can overflow; the residue is the same.
    const int64_t turned = (int64_t(raw) % n) * (direction % n);
    return int((turned % n + n) % n);
}

bool IndexedImage::Load(const std::string& path) {
    std::string bytes;
    if (!pge::files::ReadAll(path, bytes, pge::kMaxImageFileBytes)) return false;
    return Decode(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

bool IndexedImage::Decode(const uint8_t* file, size_t size) {
    if (size < 8 || std::memcmp(file, kSignature, 8) != 0) return false;

    palette.fill(pge::Pixel(0, 0, 0, 255));
    bool acceptable = false;
    std::vector<uint8_t> compressed;
    size_t at = 8;
    while (size - at >= 12) {
        const uint64_t length = ReadU32(&file[at]);
        const uint8_t* type = &file[at + 4];
        if (at + 12 + length > size) return false;
        const uint8_t* data = &file[at + 8];
        if (std::memcmp(type, "IHDR", 4) == 0) {
            // A short header is not read at all: its chunk may end the file.
            acceptable = length >= 13 && data[8] == 8 && data[9] == 3 && data[12] == 0;
            width = acceptable ? int32_t(ReadU32(data)) : 0;
            height = acceptable ? int32_t(ReadU32(data + 4)) : 0;
        } else if (std::memcmp(type, "PLTE", 4) == 0) {
            for (uint64_t i = 0; i < length / 3 && i < 256; ++i)
                palette[i] = pge::Pixel(data[i * 3], data[i * 3 + 1], data[i * 3 + 2], 255);
        } else if (std::memcmp(type, "tRNS", 4) == 0) {
            for (uint64_t i = 0; i < length && i < 256; ++i) palette[i].a = data[i];
        } else if (std::memcmp(type, "IDAT", 4) == 0) {
            compressed.insert(compressed.end(), data, data + length);
        } else if (std::memcmp(type, "IEND", 4) == 0) {
            break;
        }
        at += 12 + length;
    }
    if (!acceptable || width < 1 || height < 1 || compressed.empty() || compressed.size() > size_t(INT_MAX))
        return false;

    int inflatedSize = 0;
    char* inflated =
        stbi_zlib_decode_malloc(reinterpret_cast<const char*>(compressed.data()), int(compressed.size()), &inflatedSize);
    if (!inflated) return false;
    const uint64_t needed = (uint64_t(width) + 1) * uint64_t(height);
    const bool ok = uint64_t(inflatedSize) >= needed &&
                    Unfilter(reinterpret_cast<const uint8_t*>(inflated), width, height, pixels);
    stbi_image_free(inflated);
    return ok;
}

std::array<pge::Pixel, 256> IndexedImage::CycledPalette(const std::vector<PaletteCycle>& cycles, float time) const {
    std::array<pge::Pixel, 256> out = palette;
    for (const PaletteCycle& c : cycles) {
        if (c.start < 0 || c.end > 255 || c.end <= c.start) continue;
        const int n = c.end - c.start + 1;
        const int s = c.Frame(time);
        for (int i = 0; i < n; ++i) out[size_t(c.start + i)] = palette[size_t(c.start + (s + i) % n)];
    }
    return out;
}

} // namespace adv
