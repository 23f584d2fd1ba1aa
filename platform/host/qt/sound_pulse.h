// Sound over libpulse.
#pragma once

#include <cstdint>

// Plays a RIFF WAVE file (plain samples of 8 or 16 bits). Returns when it has been heard, at most 60 ms after its own
// length: where the server brings it to the ear later than that, it is heard to its end all the same. Silent and
// prompt where no server answers.
void PlayWave(const uint8_t* wave, uint32_t size);
// Waits up to half a second for what is still to be heard. Nothing is played afterwards.
void FinishSounds();
