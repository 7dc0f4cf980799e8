#include "pge/ImageLoader.h"

#include "pge/Files.h"

#include <stb_image.h>

#include <cctype>
#include <climits>
#include <cstring>
#include <filesystem>

namespace pge {

namespace {

// The decoder trusts a JPEG's Huffman table counts and writes past its table when
// they add up to more than 256 codes. Such a file is refused before decoding. Like
// the decoder, this looks at every marker "FF C4" after the start marker.
bool HuffmanTablesSound(const uint8_t* bytes, size_t size) {
    size_t at = 0;
    while (at < size && bytes[at] == 0xFF) ++at;
    if (at < 1 || at >= size || bytes[at] != 0xD8) return true; // no JPEG
    const auto byte = [&](size_t i) { return i < size ? size_t(bytes[i]) : 0; }; // 0 past the end, as it reads
    for (; at + 1 < size; ++at) {
        if (bytes[at] != 0xFF || bytes[at + 1] != 0xC4) continue;
        // Tables follow while the segment's length is not used up, as the decoder reads them.
        int64_t left = int64_t(byte(at + 2) << 8 | byte(at + 3)) - 2;
        for (size_t table = at + 4; left > 0 && table < size;) {
            size_t codes = 0;
            for (size_t i = 1; i <= 16; ++i) codes += byte(table + i);
            if (codes > 256) return false;
            left -= int64_t(17 + codes);
            table += 17 + codes;
        }
    }
    return true;
}

// The decoder reads a binary PNM's samples without checking that the file holds them, and
// a maximum above 255 doubles their size. A short file is refused before decoding.
bool PnmSamplesPresent(const uint8_t* bytes, size_t size, int w, int h, int channels) {
    if (size < 2 || bytes[0] != 'P' || (bytes[1] != '5' && bytes[1] != '6')) return true; // no binary PNM
    size_t at = 2;
    int64_t numbers[3] = {0, 0, 0};
    for (int64_t& n : numbers) { // width, height, maximum; blanks and comments between them
        while (at < size && (std::isspace(bytes[at]) || bytes[at] == '#')) {
            if (bytes[at] == '#')
                while (at < size && bytes[at] != '\n' && bytes[at] != '\r') ++at;
            else
                ++at;
        }
        for (; at < size && std::isdigit(bytes[at]) && n <= INT_MAX; ++at) n = n * 10 + (bytes[at] - '0');
    }
    ++at; // the one blank before the samples
    const int64_t sample = numbers[2] > 255 ? 2 : 1;
    return at <= size && int64_t(size - at) >= int64_t(w) * h * channels * sample;
}

// The decoder makes room for a PNG chunk by the length it announces, before it reads a
// byte of it: 113 bytes can claim two gigabytes. A chunk that runs past the end of the
// file is refused before decoding.
bool PngChunksFit(const uint8_t* bytes, size_t size) {
    static const uint8_t kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    if (size < 8 || std::memcmp(bytes, kSignature, 8) != 0) return true; // no PNG
    for (size_t at = 8; size - at >= 8;) {
        const uint64_t length = uint64_t(bytes[at]) << 24 | uint64_t(bytes[at + 1]) << 16 |
                                uint64_t(bytes[at + 2]) << 8 | bytes[at + 3];
        // Length and type, the data and the checksum.
        if (12 + length > size - at) return false;
        if (std::memcmp(bytes + at + 4, "IEND", 4) == 0) break;
        at += 12 + length;
    }
    return true;
}

} // namespace

std::unique_ptr<ImageLoader> loader;

rcode DecodeImage(Sprite* spr, const uint8_t* bytes, size_t size) {
    spr->pColData.clear();
    spr->width = 0;
    spr->height = 0;
    if (size > size_t(INT_MAX) || !HuffmanTablesSound(bytes, size) || !PngChunksFit(bytes, size)) return FAIL;
    int w = 0, h = 0, channels = 0;
    // The header's size first: a few bytes can announce gigabytes.
    if (!stbi_info_from_memory(bytes, int(size), &w, &h, &channels) || w < 1 || h < 1 || w > kMaxImageSide ||
        h > kMaxImageSide || int64_t(w) * h > kMaxImagePixels || !PnmSamplesPresent(bytes, size, w, h, channels))
        return FAIL;
    stbi_uc* pixels = stbi_load_from_memory(bytes, int(size), &w, &h, &channels, 4);
    if (!pixels) return FAIL;
    // A picture without pixels is no picture.
    if (w < 1 || h < 1) {
        stbi_image_free(pixels);
        return FAIL;
    }
    spr->SetSize(w, h);
    std::memcpy(spr->pColData.data(), pixels, size_t(w) * size_t(h) * 4);
    stbi_image_free(pixels);
    return OK;
}

rcode ImageLoader_STB::LoadImageResource(Sprite* spr, const std::string& path, void*) {
    spr->pColData.clear();
    spr->width = 0;
    spr->height = 0;
    std::error_code ec;
    if (!std::filesystem::exists(std::filesystem::status(path, ec))) return NO_FILE;
    std::string bytes;
    if (!files::ReadAll(path, bytes, kMaxImageFileBytes)) return FAIL;
    return DecodeImage(spr, reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

rcode ImageLoader_STB::SaveImageResource(Sprite*, const std::string&) { return OK; }

rcode LoadImage(Sprite* spr, const std::string& path, void* pack) {
    if (loader) return loader->LoadImageResource(spr, path, pack);
    return ImageLoader_STB().LoadImageResource(spr, path, pack);
}

} // namespace pge
