// The two editing palettes. Each runs its own loop and returns when it is closed; the map window stays alive under
// it.
#pragma once

void RunFeaturesPalette();
void RunMoveCostPalette();
