#include "platform/host/qt/sound_pulse.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <pulse/pulseaudio.h>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds connectDeadline(300);
constexpr milliseconds playDeadline(500); // beyond the sound's own length
constexpr milliseconds retryAfter(10000);

bool serverFailed = false;
Clock::time_point failureTime;

struct Samples {
    const uint8_t* data = nullptr;
    uint32_t size = 0;
    pa_sample_spec format = {};
};

uint32_t Number(const uint8_t* bytes, int count)
{
    uint32_t value = 0;
    for (int i = count - 1; i >= 0; i--) {
        value = value << 8 | bytes[i];
    }
    return value;
}

bool ReadFormat(const uint8_t* chunk, uint32_t size, Samples* samples)
{
    if (size < 16 || Number(chunk, 2) != 1) {
        return false;
    }
    const uint32_t bits = Number(chunk + 14, 2);
    if (bits != 8 && bits != 16) {
        return false;
    }
    samples->format.format = bits == 8 ? PA_SAMPLE_U8 : PA_SAMPLE_S16LE;
    samples->format.channels = static_cast<uint8_t>(std::min<uint32_t>(Number(chunk + 2, 2), 255));
    samples->format.rate = Number(chunk + 4, 4);
    return pa_sample_spec_valid(&samples->format) != 0;
}

// False when the file is damaged or of another kind.
bool ReadWave(const uint8_t* wave, uint32_t size, Samples* samples)
{
    if (size < 12 || std::memcmp(wave, "RIFF", 4) != 0 || std::memcmp(wave + 8, "WAVE", 4) != 0) {
        return false;
    }
    bool formatKnown = false;
    uint32_t at = 12;
    while (size - at >= 8) {
        const uint8_t* chunk = wave + at + 8;
        const uint32_t rest = size - at - 8;
        const uint32_t length = std::min(Number(wave + at + 4, 4), rest);
        if (std::memcmp(wave + at, "fmt ", 4) == 0) {
            formatKnown = ReadFormat(chunk, length, samples);
        } else if (std::memcmp(wave + at, "data", 4) == 0) {
            const uint32_t frame = formatKnown ? static_cast<uint32_t>(pa_frame_size(&samples->format)) : 0;
            if (frame == 0) {
                return false;
            }
            samples->data = chunk;
            samples->size = length / frame * frame;
            return samples->size > 0;
        }
        at += 8 + std::min(length + (length & 1), rest); // chunks begin at even places
    }
    return false;
}

// Turns the main loop until done says so; false when the time is over or the loop failed.
template <typename Done>
bool RunUntil(pa_mainloop* loop, Clock::time_point deadline, Done done)
{
    while (!done()) {
        const auto rest = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now()).count();
        if (rest <= 0 || pa_mainloop_prepare(loop, static_cast<int>(rest)) < 0 || pa_mainloop_poll(loop) < 0 ||
            pa_mainloop_dispatch(loop) < 0) {
            return false;
        }
    }
    return true;
}

bool Connect(pa_mainloop* loop, pa_context* context)
{
    if (pa_context_connect(context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
        return false;
    }
    RunUntil(loop, Clock::now() + connectDeadline, [context] {
        return pa_context_get_state(context) == PA_CONTEXT_READY ||
               !PA_CONTEXT_IS_GOOD(pa_context_get_state(context));
    });
    return pa_context_get_state(context) == PA_CONTEXT_READY;
}

void PlayOn(pa_mainloop* loop, pa_stream* stream, const Samples& samples)
{
    const auto length = milliseconds(pa_bytes_to_usec(samples.size, &samples.format) / 1000);
    const Clock::time_point deadline = Clock::now() + length + playDeadline;
    if (pa_stream_connect_playback(stream, nullptr, nullptr, PA_STREAM_NOFLAGS, nullptr, nullptr) < 0) {
        return;
    }
    const auto usable = [stream] { return PA_STREAM_IS_GOOD(pa_stream_get_state(stream)); };
    RunUntil(loop, deadline, [&] { return pa_stream_get_state(stream) == PA_STREAM_READY || !usable(); });
    if (pa_stream_get_state(stream) != PA_STREAM_READY) {
        return;
    }
    size_t written = 0;
    while (written < samples.size) {
        if (!RunUntil(loop, deadline, [&] { return pa_stream_writable_size(stream) > 0 || !usable(); }) ||
            !usable()) {
            return;
        }
        const size_t part = std::min(pa_stream_writable_size(stream), samples.size - written);
        if (pa_stream_write(stream, samples.data + written, part, nullptr, 0, PA_SEEK_RELATIVE) < 0) {
            return;
        }
        written += part;
    }
    pa_operation* drain = pa_stream_drain(stream, nullptr, nullptr);
    if (drain == nullptr) {
        return;
    }
    RunUntil(loop, deadline, [&] { return pa_operation_get_state(drain) != PA_OPERATION_RUNNING || !usable(); });
    pa_operation_unref(drain);
}

} // namespace

void PlayWave(const uint8_t* wave, uint32_t size)
{
    Samples samples;
    if ((wave == nullptr) || !ReadWave(wave, size, &samples)) {
        return;
    }
    if (serverFailed && Clock::now() - failureTime < retryAfter) {
        return;
    }
    pa_mainloop* loop = pa_mainloop_new();
    if (loop == nullptr) {
        return;
    }
    pa_context* context = pa_context_new(pa_mainloop_get_api(loop), "Kestrel Map Tool");
    if (context != nullptr) {
        serverFailed = !Connect(loop, context);
        if (serverFailed) {
            failureTime = Clock::now();
        } else if (pa_stream* stream = pa_stream_new(context, "sound", &samples.format, nullptr)) {
            PlayOn(loop, stream, samples);
            pa_stream_disconnect(stream);
            pa_stream_unref(stream);
        }
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
    pa_mainloop_free(loop);
}
