#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

namespace {

constexpr int soundSlotCount = 5;

// Sounds loaded for playing from memory. This program plays its sounds from the resources and fills no slot.
struct {
    HGLOBAL loaded[soundSlotCount];
    int current;
    bool playing;
} sounds;

void ReleaseCurrentSlot()
{
    HGLOBAL& slot = sounds.loaded[sounds.current];
    if (slot != nullptr) {
        FreeResource(slot);
    }
    slot = nullptr;
    sounds.playing = false;
}

} // namespace

void PlaySoundResource(int id)
{
    PlaySoundA(nullptr, nullptr, 0);
    PlaySoundA(MAKEINTRESOURCEA(id), shell.appInstance, SND_RESOURCE | SND_NODEFAULT | SND_NOSTOP);
}

void StopSound()
{
    sndPlaySoundA(nullptr, 0);
    ReleaseCurrentSlot();
}

void ReleaseSoundSlots()
{
    for (sounds.current = 0; sounds.current < soundSlotCount; sounds.current++) {
        ReleaseCurrentSlot();
    }
    sounds.current = 0;
}

void RefusalSound()
{
    PlaySoundResource(refusalSound);
}

void SystemBeep()
{
    MessageBeep(MB_ICONASTERISK);
}
