// Sound over libpulse.
#pragma once

#include <cstdint>

// Plays a RIFF WAVE file (plain samples of 8 or 16 bits) to its end. Silent and prompt where no server answers, and
// never longer than the sound itself by more than half a second.
void PlayWave(const uint8_t* wave, uint32_t size);
