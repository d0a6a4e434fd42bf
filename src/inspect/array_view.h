// What an array inspector holds, shared by its window and its transfers.
#ifndef INSPECT_ARRAY_VIEW_H
#define INSPECT_ARRAY_VIEW_H

#include <cstdint>
#include <string>
#include <vector>

#include "code/live_reads.h"
#include "inspect/array_place.h"
#include "watch/windows/outcome_colors.h"

struct ARI_View {
    int panel = 0;
    ARI_Array array;
    uint32_t firstRow = 0; // of the page
    LVR_Set live;          // of the lines in view
    uint32_t failedMs = 0; // when the last refresh failed; 0 = it did not
};

void ARI_ShowOutcome(const ARI_View &view, const std::string &text, int color = COLOR_PLAIN);
uint32_t ARI_CountElements(const ARI_View &view);
bool ARI_Refresh(ARI_View *view); // reads the lines in view and no other

// Read, draw, copy, save, load all of it; write what was typed into a cell.
void ARI_ShowCurve(ARI_View *view);
void ARI_CopyAll(ARI_View *view);
void ARI_SaveCsv(ARI_View *view);
void ARI_LoadCsv(ARI_View *view);
void ARI_EditCell(ARI_View *view);

#endif
