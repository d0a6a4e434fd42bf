// What the log window's files share. The list: the lines of one log, or of two that are compared,
// a page of them at a time, with the details of the selected one and the window's state in words.
// Owns the logs while they are shown.
#ifndef LOGGER_LOG_WINDOW_LINES_H
#define LOGGER_LOG_WINDOW_LINES_H

#include <cstdint>
#include <string>
#include <vector>

#include "logger/log_view.h"

constexpr int LGW_PAGE_LINES = 5000;

struct LGW_Side {
    LOGV_Log log;
    LOGV_View view;  // filtered and sorted
    LOGV_View cells; // every row, where a line is a row
};
extern LGW_Side LGW_sides[2]; // the log, and the one it is compared with
extern bool LGW_isComparing;

struct LGW_Line {
    uint8_t side = 0;
    bool isBoth = false;
    uint32_t row = 0;
};
extern std::vector<LGW_Line> LGW_lines;
extern size_t LGW_firstLine;   // of the page
extern std::string LGW_notice; // of the last thing that was done; shown with the state

bool LGW_HasLog();
const LOGV_Row &LGW_GetRow(const LGW_Line &line);
const char *LGW_GetPresence(const LGW_Line &line); // in which of two logs
std::string LGW_FormatCount(size_t count);         // "10,001"

void LGW_SetColumns();
void LGW_ShowDetails(); // of the selected line
void LGW_ShowState();
void LGW_ShowLine(size_t line); // lists the page with the line and selects it
// Lists what the filter lets through; the selected message stays selected if it is there.
void LGW_Refill();

// --- what narrows and orders it (log_window_filter.cpp) --------------------------------------
void LGW_FillTypes();           // the ring of types, by the logs that are there; the choice stays
void LGW_ApplyFilter();         // the fields as they stand, then LGW_Refill
void LGW_SortLines();           // by the ring of columns; LGW_Refill shows it
void LGW_SortByKey(int column); // LOGV_Column; again the same: the other way round
bool LGW_IsLocalTime();

#endif
