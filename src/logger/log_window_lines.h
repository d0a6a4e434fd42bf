// What the log window's files share. The list: the lines of one log, or of two that are compared,
// a page of them at a time, with the details of the selected one and the window's state in words.
// Owns the logs while they are shown.
#ifndef LOGGER_LOG_WINDOW_LINES_H
#define LOGGER_LOG_WINDOW_LINES_H

#include <cstdint>
#include <string>
#include <vector>

#include "logger/log_view.h"

constexpr int LOGV_PAGE_LINES = 5000;

struct LOGV_Side {
    LOGV_Log log;
    LOGV_View view;  // filtered and sorted
    LOGV_View cells; // every row, where a line is a row
};
extern LOGV_Side LOGV_sides[2]; // the log, and the one it is compared with
extern bool LOGV_isComparing;

struct LOGV_Line {
    uint8_t side = 0;
    bool isBoth = false;
    uint32_t row = 0;
};
extern std::vector<LOGV_Line> LOGV_lines;
extern size_t LOGV_firstLine;   // of the page
extern std::string LOGV_notice; // of the last thing that was done; shown with the state

bool LOGV_HasLog();
const LOGV_Row &LOGV_GetSideRow(const LOGV_Line &line);
const char *LOGV_GetPresence(const LOGV_Line &line); // in which of two logs
std::string LOGV_FormatCount(size_t count);          // "10,001"

void LOGV_SetColumns();
void LOGV_ShowDetails(); // of the selected line
void LOGV_ShowState();
void LOGV_ShowLine(size_t line); // lists the page with the line and selects it
// Lists what the filter lets through; the selected message stays selected if it is there.
void LOGV_Refill();

// --- what narrows and orders it (log_window_filter.cpp) --------------------------------------
void LOGV_FillTypes();           // the ring of types, by the logs that are there; the choice stays
void LOGV_ApplyFilter();         // the fields as they stand, then LOGV_Refill
void LOGV_SortLines();           // by the ring of columns; LOGV_Refill shows it
void LOGV_SortByKey(int column); // LOGV_Column; again the same: the other way round
bool LOGV_IsLocalTime();

#endif
