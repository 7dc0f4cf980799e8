#include "engine/Mixer.h"

#include "pge/Files.h"
#include "pge/SdlSubsystem.h"

#include <SDL.h>
#include <mpg123.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace adv::mixer {
namespace {

// An hour of music at 128 kbit/s; a track file beyond it is no track.
constexpr size_t kMaxTrackBytes = size_t(64) << 20;
// 512 frames is about 12 ms at 44100 Hz: short enough that an effect follows its key press.
constexpr Uint16 kDeviceFrames = 512;
constexpr int kDeviceRate = 44100;
// Streams are decoded half a second ahead, in pieces of at most 4096 frames, polled every 20 ms.
constexpr double kStreamSeconds = 0.5;
constexpr size_t kDecodeFrames = 4096;
constexpr auto kDecoderPoll = std::chrono::milliseconds(20);

std::once_flag s_mpg123Ready;
uint32_t s_offlineRate = 0;

// Catmull-Rom through four neighbouring samples, at fraction f between x0 and x1.
float Cubic(float xm1, float x0, float x1, float x2, float f) {
    const float c1 = 0.5f * (x1 - xm1);
    const float c2 = xm1 - 2.5f * x0 + 2.0f * x1 - 0.5f * x2;
    const float c3 = 0.5f * (x2 - xm1) + 1.5f * (x0 - x1);
    return ((c3 * f + c2) * f + c1) * f + x0;
}

} // namespace

struct Sound {
    Engine* engine = nullptr;
    double step = 1.0; // source frames per device frame

    // An in-memory clip: mono, not owned.
    const float* mono = nullptr;
    int64_t count = 0;

    // A stream: frame k of the file (counted on across loops) sits at ring[k % ringFrames].
    // Only the decoder touches the handle; frames below `written` are never rewritten
    // while the mixer may still read them.
    mpg123_handle* decoder = nullptr;
    // The file's bytes, which the decoder reads as it would read the file.
    std::string file;
    size_t filePosition = 0;
    // Never cleared: the mixer reads only the frames that the decoder has written.
    std::unique_ptr<float[]> ring;
    int64_t ringFrames = 0;
    std::unique_ptr<float[]> scratch;

    // Guarded by the engine's lock.
    int64_t written = 0;
    int64_t endFrame = -1; // where a stream that does not loop ends, once its decoder saw it
    int64_t loopFrom = 0;  // `written` at the last rewind: a file that yields nothing never loops
    double position = 0.0;
    bool playing = false;
    bool atEnd = false;
    bool looping = false;
    float volume = 1.0f;
    float fadeFrom = 1.0f;
    float fadeTo = 1.0f;
    int64_t fadeFrames = 0;
    int64_t fadeDone = 0;
    bool stopAfterFade = false;

    ~Sound() {
        if (decoder) mpg123_delete(decoder);
    }
};

struct Engine {
    uint32_t rate = 0;
    SDL_AudioDeviceID device = 0;
    // Held by the mixer while it mixes one device buffer and by the frame thread for single
    // field changes: no file access or decoding ever happens under it.
    std::mutex lock;
    std::vector<Sound*> sounds;
    // One decoder pass at a time; a stream is destroyed only between passes.
    std::mutex decodeLock;
    std::thread decoderThread;
    std::condition_variable wake;
    bool quit = false; // guarded by lock
};

namespace {

float FadeGain(const Sound& s) {
    if (s.fadeDone >= s.fadeFrames) return s.fadeTo;
    return s.fadeFrom + (s.fadeTo - s.fadeFrom) * float(double(s.fadeDone) / double(s.fadeFrames));
}

// k brought into 0..n-1 as a looping clip wraps. The neighbours of the interpolation lie at
// most one clip length outside, so a comparison does, except for clips of a sample or two.
int64_t Wrap(int64_t k, int64_t n) {
    if (k >= n)
        k -= n;
    else if (k < 0)
        k += n;
    return k >= 0 && k < n ? k : ((k % n) + n) % n;
}

float MonoAt(const Sound& s, int64_t k) {
    if (s.looping) k = Wrap(k, s.count);
    return k >= 0 && k < s.count ? s.mono[k] : 0.0f;
}

// Adds one sound into out; called with the engine locked.
void MixSound(Sound& s, float* out, size_t frames) {
    for (size_t j = 0; j < frames; ++j) {
        if (s.stopAfterFade && s.fadeDone >= s.fadeFrames) {
            s.playing = false;
            return;
        }
        int64_t k = int64_t(std::floor(s.position));
        if (s.mono) {
            if (k >= s.count) {
                if (!s.looping) {
                    s.playing = false;
                    s.atEnd = true;
                    return;
                }
                s.position -= double(s.count);
                k -= s.count;
            }
        } else if (s.endFrame >= 0 && k >= s.endFrame) {
            s.playing = false;
            s.atEnd = true;
            return;
        } else if (s.endFrame < 0 && k + 2 >= s.written) {
            return; // the decoder is behind: wait in silence rather than skip
        }
        const float f = float(s.position - double(k));
        const float gain = s.volume * FadeGain(s);
        if (s.mono) {
            const float v = gain * Cubic(MonoAt(s, k - 1), MonoAt(s, k), MonoAt(s, k + 1), MonoAt(s, k + 2), f);
            out[j * kChannels] += v;
            out[j * kChannels + 1] += v;
        } else {
            // The four neighbours k - 1 to k + 2 from the ring, with one division for the
            // slot of the first and comparisons after it; frames outside 0..written are silent.
            float x[4][kChannels] = {};
            int64_t slot = std::max<int64_t>(k - 1, 0) % s.ringFrames;
            for (int64_t n = 0; n < 4; ++n) {
                const int64_t at = k - 1 + n;
                if (at < 0) continue;
                if (at < s.written)
                    for (size_t c = 0; c < kChannels; ++c) x[n][c] = s.ring[size_t(slot) * kChannels + c];
                if (++slot == s.ringFrames) slot = 0;
            }
            for (size_t c = 0; c < kChannels; ++c)
                out[j * kChannels + c] += gain * Cubic(x[0][c], x[1][c], x[2][c], x[3][c], f);
        }
        s.position += s.step;
        if (s.fadeDone < s.fadeFrames) ++s.fadeDone;
    }
}

// Decodes one piece of a stream into its ring; false when there is nothing more to do for now.
bool DecodePiece(Engine& engine, Sound& s) {
    int64_t from;
    size_t room;
    {
        std::lock_guard<std::mutex> guard(engine.lock);
        if (s.endFrame >= 0) {
            if (!s.looping || s.atEnd) return false;
            // Looping was switched on after the decoder had seen the end: go on from the start.
            if (mpg123_seek(s.decoder, 0, SEEK_SET) < 0) return false;
            s.endFrame = -1;
            s.loopFrom = s.written;
        }
        // One frame before the read position stays for the interpolation.
        const int64_t keepFrom = std::max<int64_t>(0, int64_t(std::floor(s.position)) - 1);
        from = s.written;
        room = size_t(std::max<int64_t>(0, keepFrom + s.ringFrames - s.written));
    }
    room = std::min(room, kDecodeFrames);
    if (room == 0) return false;

    size_t bytes = 0;
    const int result = mpg123_read(s.decoder, s.scratch.get(), room * kChannels * sizeof(float), &bytes);
    const size_t got = bytes / (kChannels * sizeof(float));
    // At most the ring's length, so the piece wraps round its end once at most.
    const size_t at = size_t(from % s.ringFrames), first = std::min(got, size_t(s.ringFrames) - at);
    std::copy_n(s.scratch.get(), first * kChannels, s.ring.get() + at * kChannels);
    std::copy_n(s.scratch.get() + first * kChannels, (got - first) * kChannels, s.ring.get());
    bool ended = result != MPG123_OK && result != MPG123_NEW_FORMAT;
    std::lock_guard<std::mutex> guard(engine.lock);
    s.written += int64_t(got);
    if (result == MPG123_DONE && s.looping && s.written > s.loopFrom) {
        ended = mpg123_seek(s.decoder, 0, SEEK_SET) < 0;
        s.loopFrom = s.written;
    }
    if (ended) s.endFrame = s.written;
    return !ended;
}

void DecodeAhead(Engine& engine, Sound& s) {
    while (DecodePiece(engine, s)) {
    }
}

void DecoderLoop(Engine* engine) {
    std::unique_lock<std::mutex> guard(engine->lock);
    while (!engine->quit) {
        engine->wake.wait_for(guard, kDecoderPoll);
        if (engine->quit) break;
        guard.unlock();
        Pump(*engine);
        guard.lock();
    }
}

void Callback(void* userdata, Uint8* stream, int len) {
    Render(*static_cast<Engine*>(userdata), reinterpret_cast<float*>(stream),
           size_t(len) / (kChannels * sizeof(float)));
}

// The decoder's reading and seeking in a stream's bytes, as it would in the file.
ssize_t ReadTrack(void* handle, void* buffer, size_t count) {
    Sound& s = *static_cast<Sound*>(handle);
    const size_t n = std::min(count, s.file.size() - s.filePosition);
    std::memcpy(buffer, s.file.data() + s.filePosition, n);
    s.filePosition += n;
    return ssize_t(n);
}

off_t SeekTrack(void* handle, off_t offset, int whence) {
    Sound& s = *static_cast<Sound*>(handle);
    const int64_t base = whence == SEEK_SET   ? 0
                         : whence == SEEK_CUR ? int64_t(s.filePosition)
                         : whence == SEEK_END ? int64_t(s.file.size())
                                              : -1;
    if (base < 0 || offset < -base || offset > int64_t(s.file.size()) - base) return -1;
    s.filePosition = size_t(base + offset);
    return off_t(s.filePosition);
}

void Register(Engine& engine, Sound* s) {
    std::lock_guard<std::mutex> guard(engine.lock);
    engine.sounds.push_back(s);
}

} // namespace

void EngineDeleter::operator()(Engine* engine) const {
    if (!engine) return;
    if (engine->decoderThread.joinable()) {
        {
            std::lock_guard<std::mutex> guard(engine->lock);
            engine->quit = true;
        }
        engine->wake.notify_all();
        engine->decoderThread.join();
    }
    if (engine->device) {
        SDL_CloseAudioDevice(engine->device); // waits for a running callback
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
    }
    delete engine;
}

void SoundDeleter::operator()(Sound* sound) const {
    if (!sound) return;
    Engine& engine = *sound->engine;
    {
        std::lock_guard<std::mutex> decoding(engine.decodeLock);
        std::lock_guard<std::mutex> guard(engine.lock);
        engine.sounds.erase(std::remove(engine.sounds.begin(), engine.sounds.end(), sound), engine.sounds.end());
    }
    delete sound;
}

EnginePtr Init() {
    if (s_offlineRate > 0) return InitOffline(s_offlineRate);
    // SIGTERM and SIGINT stay the framework's.
    if (!pge::StartSdlSubsystem(SDL_INIT_AUDIO)) return nullptr;
    EnginePtr engine(new Engine);
    SDL_AudioSpec want{};
    want.freq = kDeviceRate;
    want.format = AUDIO_F32SYS;
    want.channels = Uint8(kChannels);
    want.samples = kDeviceFrames;
    want.callback = Callback;
    want.userdata = engine.get();
    SDL_AudioSpec have{};
    engine->device = SDL_OpenAudioDevice(nullptr, 0, &want, &have, SDL_AUDIO_ALLOW_FREQUENCY_CHANGE);
    if (engine->device == 0) {
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
        return nullptr;
    }
    engine->rate = uint32_t(have.freq);
    engine->decoderThread = std::thread(DecoderLoop, engine.get());
    SDL_PauseAudioDevice(engine->device, 0);
    return engine;
}

EnginePtr InitOffline(uint32_t sampleRate) {
    EnginePtr engine(new Engine);
    engine->rate = sampleRate;
    return engine;
}

void UseOffline(uint32_t sampleRate) { s_offlineRate = sampleRate; }

bool Offline() { return s_offlineRate > 0; }

uint32_t SampleRate(const Engine& engine) { return engine.rate; }

void Render(Engine& engine, float* out, size_t frames) {
    std::fill(out, out + frames * kChannels, 0.0f);
    {
        std::lock_guard<std::mutex> guard(engine.lock);
        for (Sound* s : engine.sounds)
            if (s->playing) MixSound(*s, out, frames);
    }
    for (size_t i = 0; i < frames * kChannels; ++i) out[i] = std::clamp(out[i], -1.0f, 1.0f);
}

void Pump(Engine& engine) {
    std::lock_guard<std::mutex> decoding(engine.decodeLock);
    std::vector<Sound*> streams;
    {
        std::lock_guard<std::mutex> guard(engine.lock);
        for (Sound* s : engine.sounds)
            if (s->decoder) streams.push_back(s);
    }
    for (Sound* s : streams) DecodeAhead(engine, *s);
}

SoundPtr InitFromFile(Engine& engine, const std::string& path) {
    std::call_once(s_mpg123Ready, [] { mpg123_init(); });
    SoundPtr sound(new Sound);
    sound->engine = &engine;
    sound->decoder = mpg123_new(nullptr, nullptr);
    if (!sound->decoder) return nullptr;
    mpg123_param(sound->decoder, MPG123_ADD_FLAGS, MPG123_QUIET | MPG123_FORCE_STEREO, 0.0); // keeps gapless on
    // Any rate the file has, always as stereo float; the mixer resamples.
    mpg123_format_none(sound->decoder);
    const long* rates = nullptr;
    size_t rateCount = 0;
    mpg123_rates(&rates, &rateCount);
    for (size_t i = 0; i < rateCount; ++i)
        mpg123_format(sound->decoder, rates[i], MPG123_MONO | MPG123_STEREO, MPG123_ENC_FLOAT_32);
    long rate = 0;
    int channels = 0, encoding = 0;
    // The whole file, read at once: only a regular file of a track's size, nothing that
    // would make the decoder wait, and no reading from the disk while it plays.
    if (!pge::files::ReadAll(path, sound->file, kMaxTrackBytes) ||
        mpg123_replace_reader_handle(sound->decoder, ReadTrack, SeekTrack, nullptr) != MPG123_OK ||
        mpg123_open_handle(sound->decoder, sound.get()) != MPG123_OK ||
        mpg123_getformat(sound->decoder, &rate, &channels, &encoding) != MPG123_OK || rate <= 0 ||
        channels != int(kChannels) || encoding != MPG123_ENC_FLOAT_32)
        return nullptr;
    sound->step = double(rate) / double(engine.rate);
    sound->ringFrames = int64_t(std::ceil(double(rate) * kStreamSeconds));
    sound->ring.reset(new float[size_t(sound->ringFrames) * kChannels]);
    sound->scratch.reset(new float[kDecodeFrames * kChannels]);
    // The first half second is decoded here, so that a file that cannot be decoded is
    // found at once and the music starts without waiting for the decoder thread.
    DecodeAhead(engine, *sound);
    if (sound->written == 0) return nullptr;
    Register(engine, sound.get());
    return sound;
}

SoundPtr InitFromMemory(Engine& engine, const float* samples, size_t count, uint32_t sampleRate) {
    if (!samples || count == 0 || sampleRate == 0) return nullptr;
    SoundPtr sound(new Sound);
    sound->engine = &engine;
    sound->mono = samples;
    sound->count = int64_t(count);
    sound->step = double(sampleRate) / double(engine.rate);
    Register(engine, sound.get());
    return sound;
}

void Start(Sound& sound) {
    std::lock_guard<std::mutex> guard(sound.engine->lock);
    sound.playing = !sound.atEnd;
}

bool AtEnd(const Sound& sound) {
    std::lock_guard<std::mutex> guard(sound.engine->lock);
    return sound.atEnd;
}

void SetVolume(Sound& sound, float volume) {
    std::lock_guard<std::mutex> guard(sound.engine->lock);
    sound.volume = volume;
}

void SetLooping(Sound& sound, bool loop) {
    std::lock_guard<std::mutex> guard(sound.engine->lock);
    sound.looping = loop;
}

void FadeIn(Sound& sound, uint32_t ms) {
    std::lock_guard<std::mutex> guard(sound.engine->lock);
    sound.fadeFrom = 0.0f;
    sound.fadeTo = 1.0f;
    sound.fadeFrames = int64_t(ms) * sound.engine->rate / 1000;
    sound.fadeDone = 0;
}

void StopWithFade(Sound& sound, uint32_t ms) {
    std::lock_guard<std::mutex> guard(sound.engine->lock);
    sound.fadeFrom = FadeGain(sound);
    sound.fadeTo = 0.0f;
    sound.fadeFrames = int64_t(ms) * sound.engine->rate / 1000;
    sound.fadeDone = 0;
    sound.stopAfterFade = true;
    if (sound.fadeFrames == 0) sound.playing = false;
}

} // namespace adv::mixer
