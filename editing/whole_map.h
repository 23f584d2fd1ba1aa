// Operations on every cell of the map. Each asks a Yes/No question first and changes nothing on No.
#pragma once

void RemoveAllFeatures();
void ZeroAllMoveCosts();
void SetWoodsAndTownsToR2();

// The changes themselves, without question, repaint or beep.
void ClearEveryFeature();
void ClearEveryMoveCost();
void RaiseWoodsAndTownsToR2(); // only cells of a lower cost
