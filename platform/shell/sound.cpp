// Sounds: "WAVE" resources and waves in memory, played to their end.
#include "platform/api/gdi.h"
#include "platform/api/kernel.h"
#include "platform/api/shell.h"
#include "platform/api/user.h"
#include "platform/host/host.h"

namespace {

// What has been drawn shows while the sound blocks the program.
void PlayWave(const uint8_t* wave, uint32_t size)
{
    GdiFlush();
    host->playSound(wave, size);
}

} // namespace

BOOL WINAPI PlaySoundA(LPCSTR name, HMODULE module, DWORD flags)
{
    if (!host) {
        return FALSE;
    }
    if (!name) {
        return TRUE; // every sound has ended before its call returned
    }
    if ((flags & SND_RESOURCE) != SND_RESOURCE) {
        return sndPlaySoundA(name, flags);
    }
    const HRSRC resource = FindResourceA(module, name, "WAVE");
    const void* wave = LockResource(LoadResource(module, resource));
    if (!wave) {
        return FALSE;
    }
    PlayWave(static_cast<const uint8_t*>(wave), SizeofResource(module, resource));
    return TRUE;
}

// Plays only from memory, where the RIFF header tells the size.
BOOL WINAPI sndPlaySoundA(LPCSTR name, UINT flags)
{
    if (!name) {
        return TRUE;
    }
    if (!host || !(flags & SND_MEMORY)) {
        return FALSE;
    }
    const uint8_t* wave = reinterpret_cast<const uint8_t*>(name);
    const uint32_t size = static_cast<uint32_t>(wave[4]) | static_cast<uint32_t>(wave[5]) << 8 |
                          static_cast<uint32_t>(wave[6]) << 16 | static_cast<uint32_t>(wave[7]) << 24;
    PlayWave(wave, size + 8);
    return TRUE;
}

BOOL WINAPI MessageBeep(UINT)
{
    if (!host) {
        return FALSE;
    }
    host->beep();
    return TRUE;
}
