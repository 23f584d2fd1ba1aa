// Sounds: "WAVE" resources, played to their end, which the system's sound server may reach a little after the call.
#include "platform/api/gdi.h"
#include "platform/api/kernel.h"
#include "platform/api/shell.h"
#include "platform/api/user.h"
#include "platform/host/host.h"

BOOL WINAPI PlaySoundA(LPCSTR name, HMODULE module, DWORD flags)
{
    if (host == nullptr) {
        return FALSE;
    }
    if (name == nullptr) {
        return TRUE; // what still sounds has been played: the server holds the rest, and alerts follow one another
    }
    if ((flags & SND_RESOURCE) != SND_RESOURCE) {
        return FALSE;
    }
    const HRSRC resource = FindResourceA(module, name, "WAVE");
    const void* wave = LockResource(LoadResource(module, resource));
    if (wave == nullptr) {
        return FALSE;
    }
    GdiFlush(); // what has been drawn shows while the sound blocks the program
    host->playSound(static_cast<const uint8_t*>(wave), SizeofResource(module, resource));
    return TRUE;
}

BOOL WINAPI sndPlaySoundA(LPCSTR name, UINT)
{
    return name == nullptr;
}

BOOL WINAPI MessageBeep(UINT)
{
    if (host == nullptr) {
        return FALSE;
    }
    host->beep();
    return TRUE;
}
