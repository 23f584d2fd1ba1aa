// Operations on every cell of the map. Each asks a Yes/No question first and changes nothing on No.
#pragma once

void RemoveAllFeatures();
void ZeroAllMoveCosts();
void SetWoodsAndTownsToR2();
