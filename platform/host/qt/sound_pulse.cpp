#include "platform/host/qt/sound_pulse.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <pulse/pulseaudio.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds returnAfter(40); // beyond the sound's own length, heard to its end or not
constexpr milliseconds connectDeadline(300);
constexpr milliseconds drainDeadline(3000); // beyond the sound's own length
constexpr milliseconds endDeadline(500);    // of the program, for what still sounds
constexpr milliseconds retryAfter(10000);
constexpr milliseconds serverBuffer(40); // what a server takes by itself can be longer than the sound, and late
// Silence before the sound: where a server mixes a new stream into what it has rendered already, whoever listens to
// the mixture misses that much.
constexpr milliseconds leadIn(25);

// A sound on its way. It belongs to the thread of the main loop, which frees it.
struct Playback {
    std::vector<uint8_t> samples;
    pa_sample_spec format = {};
    milliseconds length = {};
    pa_context* context = nullptr;
    pa_stream* stream = nullptr;
    pa_time_event* deadline = nullptr;
};

// Made with the first sound. A server may need longer than a call may last to bring a sound to the ear, so a thread
// serves the connections. The mutex is taken last where the loop's lock is held too.
struct Player {
    pa_threaded_mainloop* loop = nullptr;
    std::mutex mutex; // of all that follows
    std::condition_variable ended;
    int underWay = 0;
    const Playback* awaited = nullptr;    // the newest, null once it has ended
    const Playback* connecting = nullptr; // the newest, null once it is connected or has ended
    bool serverFailed = false;
    Clock::time_point failureTime;
};

Player* player = nullptr; // stays where the process ends without FinishSounds: its thread still runs then

// ---- the file ----

uint32_t Number(const uint8_t* bytes, int count)
{
    uint32_t value = 0;
    for (int i = count - 1; i >= 0; i--) {
        value = value << 8 | bytes[i];
    }
    return value;
}

bool ReadFormat(const uint8_t* chunk, uint32_t size, Playback* playback)
{
    if (size < 16 || Number(chunk, 2) != 1) {
        return false;
    }
    const uint32_t bits = Number(chunk + 14, 2);
    if (bits != 8 && bits != 16) {
        return false;
    }
    playback->format.format = bits == 8 ? PA_SAMPLE_U8 : PA_SAMPLE_S16LE;
    playback->format.channels = static_cast<uint8_t>(std::min<uint32_t>(Number(chunk + 2, 2), 255));
    playback->format.rate = Number(chunk + 4, 4);
    return pa_sample_spec_valid(&playback->format) != 0;
}

size_t SizeOf(milliseconds length, const pa_sample_spec& format)
{
    return pa_usec_to_bytes(static_cast<pa_usec_t>(length.count()) * PA_USEC_PER_MSEC, &format);
}

// False when the file is damaged or of another kind.
bool ReadWave(const uint8_t* wave, uint32_t size, Playback* playback)
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
            formatKnown = ReadFormat(chunk, length, playback);
        } else if (std::memcmp(wave + at, "data", 4) == 0) {
            const uint32_t frame = formatKnown ? static_cast<uint32_t>(pa_frame_size(&playback->format)) : 0;
            if (frame == 0) {
                return false;
            }
            const uint32_t whole = length / frame * frame;
            playback->length = milliseconds(pa_bytes_to_usec(whole, &playback->format) / PA_USEC_PER_MSEC);
            playback->samples.assign(SizeOf(leadIn, playback->format),
                                     playback->format.format == PA_SAMPLE_U8 ? 128 : 0);
            playback->samples.insert(playback->samples.end(), chunk, chunk + whole);
            return whole > 0;
        }
        at += 8 + std::min(length + (length & 1), rest); // chunks begin at even places
    }
    return false;
}

// ---- in the thread of the main loop, or with its lock held ----

void NoteFailure()
{
    player->serverFailed = true;
    player->failureTime = Clock::now();
}

void End(Playback* playback)
{
    if (playback->deadline != nullptr) {
        pa_threaded_mainloop_get_api(player->loop)->time_free(playback->deadline);
    }
    if (playback->stream != nullptr) {
        pa_stream_set_state_callback(playback->stream, nullptr, nullptr);
        pa_stream_disconnect(playback->stream);
        pa_stream_unref(playback->stream);
    }
    if (playback->context != nullptr) {
        pa_context_set_state_callback(playback->context, nullptr, nullptr);
        pa_context_disconnect(playback->context);
        pa_context_unref(playback->context);
    }
    const std::lock_guard<std::mutex> lock(player->mutex);
    if (player->connecting == playback) {
        player->connecting = nullptr;
        NoteFailure();
    }
    if (player->awaited == playback) {
        player->awaited = nullptr;
    }
    player->underWay--;
    player->ended.notify_all();
    delete playback;
}

void DeadlineReached(pa_mainloop_api*, pa_time_event*, const timeval*, void* data)
{
    End(static_cast<Playback*>(data));
}

void Drained(pa_stream*, int, void* data)
{
    End(static_cast<Playback*>(data));
}

// All of it is written at once: the server holds far more than it buffers for playing.
void StreamChanged(pa_stream* stream, void* data)
{
    auto* playback = static_cast<Playback*>(data);
    if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) {
        End(playback);
        return;
    }
    if (pa_stream_get_state(stream) != PA_STREAM_READY) {
        return;
    }
    pa_operation* drain = nullptr;
    if (pa_stream_write(stream, playback->samples.data(), playback->samples.size(), nullptr, 0, PA_SEEK_RELATIVE) ==
        0) {
        drain = pa_stream_drain(stream, Drained, playback);
    }
    if (drain == nullptr) {
        End(playback);
    } else {
        pa_operation_unref(drain);
    }
}

bool OpenStream(Playback* playback)
{
    playback->stream = pa_stream_new(playback->context, "sound", &playback->format, nullptr);
    if (playback->stream == nullptr) {
        return false;
    }
    pa_stream_set_state_callback(playback->stream, StreamChanged, playback);
    pa_buffer_attr buffer = {};
    buffer.maxlength = buffer.prebuf = buffer.minreq = buffer.fragsize = UINT32_MAX; // the server's choice
    buffer.tlength = static_cast<uint32_t>(SizeOf(serverBuffer, playback->format));
    return pa_stream_connect_playback(playback->stream, nullptr, &buffer, PA_STREAM_ADJUST_LATENCY, nullptr,
                                      nullptr) == 0;
}

void SetDeadline(Playback* playback, milliseconds after)
{
    const pa_usec_t due = pa_rtclock_now() + static_cast<pa_usec_t>(after.count()) * PA_USEC_PER_MSEC;
    if (playback->deadline == nullptr) {
        playback->deadline = pa_context_rttime_new(playback->context, due, DeadlineReached, playback);
    } else {
        pa_context_rttime_restart(playback->context, playback->deadline, due);
    }
}

void ContextChanged(pa_context* context, void* data)
{
    auto* playback = static_cast<Playback*>(data);
    if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context))) {
        End(playback);
        return;
    }
    if (pa_context_get_state(context) != PA_CONTEXT_READY) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(player->mutex);
        if (player->connecting == playback) {
            player->connecting = nullptr;
        }
        player->serverFailed = false;
    }
    SetDeadline(playback, playback->length + drainDeadline);
    if (!OpenStream(playback)) {
        End(playback);
    }
}

// ---- in the program's own thread ----

bool StartPlayer()
{
    if (player != nullptr) {
        return true;
    }
    auto* made = new Player;
    made->loop = pa_threaded_mainloop_new();
    if (made->loop == nullptr || pa_threaded_mainloop_start(made->loop) != 0) {
        if (made->loop != nullptr) {
            pa_threaded_mainloop_free(made->loop);
        }
        delete made;
        return false;
    }
    player = made;
    return true;
}

void Begin(Playback* playback)
{
    {
        const std::lock_guard<std::mutex> lock(player->mutex);
        player->underWay++;
        player->awaited = player->connecting = playback;
    }
    pa_threaded_mainloop_lock(player->loop);
    playback->context = pa_context_new(pa_threaded_mainloop_get_api(player->loop), "Kestrel Map Tool");
    if (playback->context == nullptr ||
        pa_context_connect(playback->context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
        End(playback);
    } else {
        pa_context_set_state_callback(playback->context, ContextChanged, playback);
        SetDeadline(playback, connectDeadline);
    }
    pa_threaded_mainloop_unlock(player->loop);
}

} // namespace

void PlayWave(const uint8_t* wave, uint32_t size)
{
    const Clock::time_point start = Clock::now();
    auto playback = std::make_unique<Playback>();
    if ((wave == nullptr) || !ReadWave(wave, size, playback.get()) || !StartPlayer()) {
        return;
    }
    const Clock::time_point deadline = start + playback->length + returnAfter;
    {
        const std::lock_guard<std::mutex> lock(player->mutex);
        if (player->serverFailed && start - player->failureTime < retryAfter) {
            return;
        }
    }
    Begin(playback.release());
    std::unique_lock<std::mutex> lock(player->mutex);
    player->ended.wait_until(lock, deadline, [] { return player->awaited == nullptr; });
    if (player->connecting != nullptr) {
        NoteFailure(); // until it answers after all
    }
}

void FinishSounds()
{
    if (player == nullptr) {
        return;
    }
    bool allEnded = false;
    {
        std::unique_lock<std::mutex> lock(player->mutex);
        allEnded = player->ended.wait_for(lock, endDeadline, [] { return player->underWay == 0; });
    }
    pa_threaded_mainloop_stop(player->loop);
    if (allEnded) {
        pa_threaded_mainloop_free(player->loop);
        delete player;
    }
    player = nullptr;
}
