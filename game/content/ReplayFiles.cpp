#include "game/content/ReplayFiles.h"

#include "game/content/Preferences.h"
#include "pge/Files.h"

#include <stb_image.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

// From Debian's libstb: the deflate step of stb_image_write, declared in its implementation part only.
extern "C" unsigned char* stbi_zlib_compress(unsigned char* data, int data_len, int* out_len, int quality);

namespace torvane::replay {
namespace {

constexpr char kMark[4] = {'T', 'R', 'P', 'L'};
// Mark, version, the stream's length and checksum.
constexpr size_t kHeadBytes = 13;
// Deflate packs no more than 1032 bytes into one.
constexpr size_t kMostDeflate = 1032;

uint32_t Checksum(const std::string& bytes) {
    uint32_t h = 2166136261u;
    for (const char c : bytes) h = (h ^ static_cast<unsigned char>(c)) * 16777619u;
    return h;
}

void PutU32(std::string& out, uint32_t v) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}

uint32_t GetU32(const std::string& bytes, size_t at) {
    uint32_t v = 0;
    for (int i = 0; i < 4; ++i) v |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    return v;
}

// Reads a whole replay file: a regular one, of at most kMaxFileBytes.
bool ReadBytes(const std::string& path, std::string& out, Error& error) {
    std::error_code failed;
    const uintmax_t size = std::filesystem::file_size(path, failed);
    if (!failed && size > kMaxFileBytes) {
        error = {"Datei zu groß: {0} Bytes", {std::to_string(size)}};
        return false;
    }
    if (!pge::files::ReadAll(path, out, kMaxFileBytes)) {
        error = {"Datei nicht lesbar", {}};
        return false;
    }
    return true;
}

} // namespace

std::string Pack(const std::string& stream) {
    std::string file(kMark, sizeof kMark);
    file.push_back(static_cast<char>(kFormatVersion));
    PutU32(file, static_cast<uint32_t>(stream.size()));
    PutU32(file, Checksum(stream));
    int packedSize = 0;
    // The compressor only reads its input, whatever its declaration says.
    unsigned char* packed = stbi_zlib_compress(reinterpret_cast<unsigned char*>(const_cast<char*>(stream.data())),
                                               static_cast<int>(stream.size()), &packedSize, 8);
    if (packed) file.append(reinterpret_cast<const char*>(packed), static_cast<size_t>(packedSize));
    std::free(packed);
    return file;
}

bool Unpack(const std::string& file, std::string& stream, Error& error) {
    if (file.empty()) {
        error = {"Datei ist leer", {}};
        return false;
    }
    if (file.compare(0, sizeof kMark, std::string(kMark, sizeof kMark).substr(0, file.size())) != 0) {
        error = {"Keine Aufzeichnung", {}};
        return false;
    }
    if (file.size() < kHeadBytes) {
        error = {"Datei nach {0} Bytes abgeschnitten", {std::to_string(file.size())}};
        return false;
    }
    const int version = static_cast<unsigned char>(file[4]);
    if (version != kFormatVersion) {
        error = {"Aufzeichnung der Version {0}, dieses Spiel liest Version {1}",
                 {std::to_string(version), std::to_string(kFormatVersion)}};
        return false;
    }
    const size_t size = GetU32(file, 5);
    const size_t packed = file.size() - kHeadBytes;
    if (size > kMaxStreamBytes || size > packed * kMostDeflate) {
        error = {"Byte {0}: gepackte Daten beschädigt oder abgeschnitten", {std::to_string(kHeadBytes)}};
        return false;
    }
    stream.assign(size, '\0');
    const int got = stbi_zlib_decode_buffer(stream.data(), static_cast<int>(size), file.data() + kHeadBytes,
                                            static_cast<int>(packed));
    if (got < 0 || static_cast<size_t>(got) != size) {
        error = {"Byte {0}: gepackte Daten beschädigt oder abgeschnitten", {std::to_string(kHeadBytes)}};
        return false;
    }
    if (Checksum(stream) != GetU32(file, 9)) {
        error = {"Prüfsumme falsch: Daten beschädigt", {}};
        return false;
    }
    return true;
}

bool Save(const std::string& path, const std::string& stream) { return pge::files::WriteAll(path, Pack(stream)); }

bool Load(const std::string& path, Replay& out, Error& error) {
    std::string file, stream;
    return ReadBytes(path, file, error) && Unpack(file, stream, error) && Decode(stream, out, error);
}

std::string Folder() {
    const std::string data = preferences::Directory();
    return data.empty() ? "" : data + "/replays";
}

std::string FileOf(const highscores::Entry& entry) {
    char name[96];
    std::snprintf(name, sizeof name, "%d_%d_%lld_%08x.trep", entry.score, entry.level,
                  static_cast<long long>(entry.time), Checksum(highscores::Serialise({entry})));
    return name;
}

bool Has(const highscores::Entry& entry) {
    const std::string folder = Folder();
    std::error_code failed;
    return !folder.empty() && std::filesystem::is_regular_file(folder + "/" + FileOf(entry), failed);
}

bool Keep(const highscores::Entry& entry, const std::string& stream) {
    const std::string folder = Folder();
    if (folder.empty()) return false;
    std::error_code failed;
    std::filesystem::create_directories(folder, failed);
    return Save(folder + "/" + FileOf(entry), stream);
}

void Prune(const std::vector<highscores::Entry>& list) {
    const std::string folder = Folder();
    if (folder.empty()) return;
    std::vector<std::string> kept;
    for (const highscores::Entry& e : list) kept.push_back(FileOf(e));
    std::error_code failed;
    for (const auto& item : std::filesystem::directory_iterator(folder, failed)) {
        const std::string name = item.path().filename().string();
        // Only the files of entries: score, level, time and eight hex digits.
        int score = 0, level = 0, used = 0;
        long long time = 0;
        unsigned hash = 0;
        const bool entryFile = std::sscanf(name.c_str(), "%d_%d_%lld_%8x.trep%n", &score, &level, &time, &hash,
                                           &used) == 4 &&
                               used == static_cast<int>(name.size());
        if (!entryFile || std::find(kept.begin(), kept.end(), name) != kept.end()) continue;
        std::filesystem::remove(item.path(), failed);
    }
}

} // namespace torvane::replay
