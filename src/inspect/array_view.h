// What an array inspector holds, shared by its window and its transfers.
#ifndef INSPECT_ARRAY_VIEW_H
#define INSPECT_ARRAY_VIEW_H

#include <cstdint>
#include <string>
#include <vector>

#include "code/live_reads.h"
#include "inspect/array_place.h"
#include "watch/windows/outcome_colors.h"

struct INS_ArrayView {
    int panel = 0;
    INS_Array array;
    uint32_t firstRow = 0; // of the page
    CODE_LiveReads live;   // of the lines in view
    uint32_t failedMs = 0; // when the last refresh failed; 0 = it did not
};

void INS_ShowArrayOutcome(const INS_ArrayView &view, const std::string &text,
                          int color = COLOR_PLAIN);
uint32_t INS_CountElements(const INS_ArrayView &view);
bool INS_RefreshArray(INS_ArrayView *view); // reads the lines in view and no other

// Read, draw, copy, save, load all of it; write what was typed into a cell.
void INS_ShowCurve(INS_ArrayView *view);
void INS_CopyAll(INS_ArrayView *view);
void INS_SaveCsv(INS_ArrayView *view);
void INS_LoadCsv(INS_ArrayView *view);
void INS_EditCell(INS_ArrayView *view);

#endif
